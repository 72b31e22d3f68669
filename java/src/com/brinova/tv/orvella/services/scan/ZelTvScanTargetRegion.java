package com.brinova.tv.orvella.services.scan;

import java.util.ArrayList;
import java.util.Collections;
import java.util.List;

/**
 * Target region of a terrestrial scan: networks may signal regions in up to three levels
 * (for instance country, primary and secondary region), under which services carry different
 * channel numbers; the user picks one.
 *
 * <p>At the end of the scan the regions are read and handed to the {@link Chooser} (on the
 * engine's event thread, before the scan's end event); the region it returns is set in the
 * builder. A region may also be chosen before the scan with {@link #preselect}, which must
 * happen before the extension is added to the engine.
 */
public class ZelTvScanTargetRegion extends ZelTvScanExtension {
    static {
        ZelTvScanLibrary.load();
    }

    private static final int MAX_ARRAY = 50;
    private static final int NAME_AT = 7;
    private static final int NAME_MAX = 33;
    private static final int MAX_REGIONS = 1024;

    /**
     * A region: its index in the builder's table, its level (number of significant codes,
     * 0 to 3), its three codes and its name.
     */
    public record Region(int index, int level, int code0, int code1, int code2, String name) {
        /** The codes as "c0.c1.c2", as far as the level goes ("-" for level 0). */
        public String codePath() {
            StringBuilder path = new StringBuilder();
            int[] codes = {code0, code1, code2};
            for (int i = 0; i < Math.min(level, 3); i++) {
                path.append(i == 0 ? "" : ".").append(codes[i]);
            }
            return path.length() == 0 ? "-" : path.toString();
        }
    }

    /** Picks the target region. */
    @FunctionalInterface
    public interface Chooser {
        /**
         * @param regions the regions, one or more, in the builder's order
         * @return the chosen region, or null to set none
         */
        Region choose(List<Region> regions);
    }

    private volatile Chooser mChooser;

    /** @throws ZelTvScanException when the native extension cannot be created */
    public ZelTvScanTargetRegion() {
        super(MAX_ARRAY);
        int[] setup = newSetupArray();
        bindNativeExtension(nativeSetup(setup), setup);
    }

    public void setChooser(Chooser chooser) {
        mChooser = chooser;
    }

    /** Reads the regions of the last scan (the builder's table is fetched again). */
    public List<Region> getRegions() {
        List<Region> regions = new ArrayList<>();
        for (int index = 0; index < MAX_REGIONS; index++) {
            int[] call = newCallArray(MAX_ARRAY);
            call[2] = index;
            if (nativeGetTargetRegion(call) != STATUS_OK) {
                break;
            }
            regions.add(new Region(index, call[3], call[4], call[5], call[6],
                    decodeName(call, NAME_AT, NAME_MAX)));
        }
        return Collections.unmodifiableList(regions);
    }

    /** Sets a region read by {@link #getRegions()}. */
    public int select(Region region) {
        return select(region.level(), region.code0(), region.code1(), region.code2());
    }

    /**
     * Sets the region with this level and codes (codes beyond the level are ignored; of
     * several equal regions the builder takes the last).
     *
     * @return {@link #STATUS_OK}, or {@link #STATUS_NOT_FOUND} when no region of the last scan
     *     matches or the builder refused it
     */
    public int select(int level, int code0, int code1, int code2) {
        int[] call = newCallArray(6);
        call[2] = level;
        call[3] = code0;
        call[4] = code1;
        call[5] = code2;
        return nativeSetTargetRegion(call);
    }

    /**
     * Chooses a region before the scan. It reaches the builder when the extension is added
     * to the engine; call it before {@link ZelTvScanEngine#addExtension}.
     */
    public int preselect(int level, int code0, int code1, int code2) {
        int[] call = newCallArray(6);
        call[2] = level;
        call[3] = code0;
        call[4] = code1;
        call[5] = code2;
        return nativeSetSelectedTargetRegion(call);
    }

    /**
     * Whether an LCN conflict remains with the region set: the builder has conflicts and the
     * last scan found more than one region.
     */
    public boolean hasLcnConflict() {
        int[] call = newCallArray(3);
        nativeGetIfLcnConflict(call);
        return call[2] == 1;
    }

    /** Called by the native side on the engine's event thread when the user must choose. */
    void onTargetRegion() {
        Chooser chooser = mChooser;
        if (chooser == null) {
            return;
        }
        deliver("target region", () -> {
            List<Region> regions = getRegions();
            if (regions.isEmpty()) {
                return;
            }
            Region chosen = chooser.choose(regions);
            if (chosen != null && select(chosen) != STATUS_OK) {
                ScanCallbacks.warn("target region " + chosen + " not accepted");
            }
        });
    }

    private native int nativeGetTargetRegion(int[] call);

    private native int nativeSetTargetRegion(int[] call);

    private native int nativeGetIfLcnConflict(int[] call);

    private native int nativeSetSelectedTargetRegion(int[] call);

    private native int nativeSetup(int[] setup);
}
