package com.brinova.tv.orvella.services.scan;

import java.util.ArrayList;
import java.util.Collections;
import java.util.List;

/**
 * Favourite network of a terrestrial scan: when a scan has found services of two or more
 * networks, the user picks the network whose services come first.
 *
 * <p>At the end of the scan the builder's candidates are read and handed to the
 * {@link Chooser} (on the engine's event thread, before the scan's end event is delivered);
 * the index it returns is set in the builder. Without a chooser nothing is set and the
 * builder keeps its own order.
 */
public class ZelTvScanFavNetwork extends ZelTvScanExtension {
    static {
        ZelTvScanLibrary.load();
    }

    private static final int MAX_ARRAY = 50;
    private static final int NAME_AT = 3;
    private static final int NAME_MAX = 33;
    /** A bound on the candidates read, in case a builder never answers "no more". */
    private static final int MAX_CANDIDATES = 1024;

    /** A candidate network: its index in the builder's candidate list and its name. */
    public record Network(int index, String name) {}

    /** Picks the favourite network. */
    @FunctionalInterface
    public interface Chooser {
        /** Returned to set no favourite network. */
        int NONE = -1;

        /**
         * @param candidates the candidates, two or more, in the builder's order
         * @return the {@link Network#index()} of the chosen network, or {@link #NONE}
         */
        int choose(List<Network> candidates);
    }

    private volatile Chooser mChooser;

    /** @throws ZelTvScanException when the native extension cannot be created */
    public ZelTvScanFavNetwork() {
        super(MAX_ARRAY);
        int[] setup = newSetupArray();
        bindNativeExtension(nativeSetup(setup), setup);
    }

    public void setChooser(Chooser chooser) {
        mChooser = chooser;
    }

    /**
     * Reads the candidate networks of the last scan (the builder rebuilds them on each read).
     * Empty when the scan found fewer than two.
     */
    public List<Network> getCandidates() {
        List<Network> networks = new ArrayList<>();
        for (int index = 0; index < MAX_CANDIDATES; index++) {
            int[] call = newCallArray(MAX_ARRAY);
            call[2] = index;
            if (nativeGetFavNetwork(call) != STATUS_OK) {
                break;
            }
            networks.add(new Network(index, decodeName(call, NAME_AT, NAME_MAX)));
        }
        return Collections.unmodifiableList(networks);
    }

    /**
     * Sets the favourite network.
     *
     * @param index a candidate's {@link Network#index()}
     * @return {@link #STATUS_OK}, or {@link #STATUS_NOT_FOUND} for an unknown index or when the
     *     builder refused it
     */
    public int select(int index) {
        int[] call = newCallArray(3);
        call[2] = index;
        return nativeSetFavNetwork(call);
    }

    /** Called by the native side on the engine's event thread when the user must choose. */
    void onFavNetwork() {
        Chooser chooser = mChooser;
        if (chooser == null) {
            return;
        }
        deliver("favourite network", () -> {
            List<Network> candidates = getCandidates();
            if (candidates.isEmpty()) {
                return;
            }
            int chosen = chooser.choose(candidates);
            if (chosen != Chooser.NONE && select(chosen) != STATUS_OK) {
                ScanCallbacks.warn("favourite network " + chosen + " not accepted");
            }
        });
    }

    private native int nativeGetFavNetwork(int[] call);

    private native int nativeSetFavNetwork(int[] call);

    private native int nativeSetup(int[] setup);
}
