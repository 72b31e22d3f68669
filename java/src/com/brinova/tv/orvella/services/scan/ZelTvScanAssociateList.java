package com.brinova.tv.orvella.services.scan;

import java.util.List;

/**
 * Associated satellites of a satellite scan: the satellite records the builder is to treat
 * as belonging to the scan (for instance the other positions of a multi-satellite
 * operator). At most {@link #MAX_SATELLITES} are kept; the list goes into every following
 * scan.
 */
public class ZelTvScanAssociateList extends ZelTvScanExtension {
    static {
        ZelTvScanLibrary.load();
    }

    private static final int MAX_ARRAY = 50;
    /** The builder's room for associated satellites; further ones are dropped. */
    public static final int MAX_SATELLITES = 15;

    /** @throws ZelTvScanException when the native extension cannot be created */
    public ZelTvScanAssociateList() {
        super(MAX_ARRAY);
        int[] setup = newSetupArray();
        bindNativeExtension(nativeSetup(setup), setup);
    }

    /** Sets the associated satellites, the first {@link #MAX_SATELLITES} of them. */
    public int setSatellites(List<ZelTvScanSatelliteId> satellites) {
        String[] texts = new String[satellites.size()];
        for (int i = 0; i < texts.length; i++) {
            texts[i] = satellites.get(i).toString();
        }
        return NativeSetAssoSateInfo(texts);
    }

    /**
     * Sets the associated satellites as the builder's texts "id,recordId"; the first
     * {@link #MAX_SATELLITES} are kept.
     */
    public int setSatellites(String... satelliteIds) {
        return NativeSetAssoSateInfo(satelliteIds.clone());
    }

    private native int nativeSetup(int[] setup);

    private native int NativeSetAssoSateInfo(String[] satelliteIds);
}
