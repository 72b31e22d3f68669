package com.brinova.tv.orvella.services.scan;

import java.util.ArrayList;
import java.util.Collections;
import java.util.List;

/**
 * LCN v2 channel list of a terrestrial scan: a network may offer several channel lists, each
 * numbering the services its own way; when a scan finds two or more, the user picks one.
 *
 * <p>At the end of the scan the lists are read and handed to the {@link Chooser} (on the
 * engine's event thread, before the scan's end event); the id it returns is set in the
 * builder. A list may also be chosen before the scan with {@link #preselect}, which must
 * happen before the extension is added to the engine.
 */
public class ZelTvScanLcnV2ChannelList extends ZelTvScanExtension {
    static {
        ZelTvScanLibrary.load();
    }

    private static final int MAX_ARRAY = 50;
    private static final int NAME_AT = 4;
    private static final int NAME_MAX = 24;
    private static final int MAX_LISTS = 256;

    /** A channel list: its index in the builder's table, its id (0 to 255) and its name. */
    public record ChannelList(int index, int id, String name) {}

    /** Picks the channel list. */
    @FunctionalInterface
    public interface Chooser {
        /** Returned to set no channel list. */
        int NONE = -1;

        /**
         * @param lists the channel lists, two or more, in the builder's order
         * @return the {@link ChannelList#id()} of the chosen list, or {@link #NONE}
         */
        int choose(List<ChannelList> lists);
    }

    private volatile Chooser mChooser;

    /** @throws ZelTvScanException when the native extension cannot be created */
    public ZelTvScanLcnV2ChannelList() {
        super(MAX_ARRAY);
        int[] setup = newSetupArray();
        bindNativeExtension(nativeSetup(setup), setup);
    }

    public void setChooser(Chooser chooser) {
        mChooser = chooser;
    }

    /** Reads the channel lists the last scan found. */
    public List<ChannelList> getChannelLists() {
        List<ChannelList> lists = new ArrayList<>();
        for (int index = 0; index < MAX_LISTS; index++) {
            int[] call = newCallArray(MAX_ARRAY);
            call[2] = index;
            if (nativeGetLcnV2ChList(call) != STATUS_OK) {
                break;
            }
            lists.add(new ChannelList(index, call[3] & 0xFF, decodeName(call, NAME_AT, NAME_MAX)));
        }
        return Collections.unmodifiableList(lists);
    }

    /**
     * Sets the channel list with this id (0 to 255; only the low 8 bits reach the builder).
     *
     * @return {@link #STATUS_OK}, or {@link #STATUS_NOT_FOUND} when the builder refused it
     */
    public int select(int id) {
        int[] call = newCallArray(3);
        call[2] = id;
        return nativeSetLcnV2ChListId(call);
    }

    /**
     * Chooses a channel list before the scan. It reaches the builder when the extension is
     * added to the engine; call it before {@link ZelTvScanEngine#addExtension}. A preselection
     * cannot be undone.
     */
    public int preselect(int id) {
        int[] call = newCallArray(3);
        call[2] = id;
        return nativeSetSelectedLcnV2ChListId(call);
    }

    /** Called by the native side on the engine's event thread when the user must choose. */
    void onLcnv2ChannelListConflict() {
        Chooser chooser = mChooser;
        if (chooser == null) {
            return;
        }
        deliver("LCN v2 channel list", () -> {
            List<ChannelList> lists = getChannelLists();
            if (lists.isEmpty()) {
                return;
            }
            int chosen = chooser.choose(lists);
            if (chosen != Chooser.NONE && select(chosen) != STATUS_OK) {
                ScanCallbacks.warn("LCN v2 channel list " + chosen + " not accepted");
            }
        });
    }

    private native int nativeGetLcnV2ChList(int[] call);

    private native int nativeSetLcnV2ChListId(int[] call);

    private native int nativeSetSelectedLcnV2ChListId(int[] call);

    private native int nativeSetup(int[] setup);
}
