package com.brinova.tv.orvella.services.scan;

import java.util.Arrays;
import java.util.Collections;
import java.util.List;

/**
 * Regional channel lists of a satellite operator scan: an operator may offer several
 * channel lists that differ by region (regional news, local channel numbers). A first scan
 * asks the builder for the lists it offers; once one is chosen, the following scans install
 * that list. Every scan also gives the builder the time zone.
 *
 * <p>The lists arrive during the scan on a builder thread and go to the {@link Chooser};
 * its choice (or {@link #select}) takes effect at the next start.
 */
public class ZelTvScanRegionChannelList extends ZelTvScanExtension {
    static {
        ZelTvScanLibrary.load();
    }

    private static final int MAX_ARRAY = 50;
    /** The longest list name the builder keeps, in bytes; longer ones are cut. */
    public static final int MAX_NAME_LENGTH = 31;

    /** Picks a regional list among those a scan offered. */
    @FunctionalInterface
    public interface Chooser {
        /**
         * Called on the builder's thread with the lists offered.
         *
         * @return the chosen list's name, or null to choose none now
         */
        String choose(List<String> lists);
    }

    private final ScanReports<List<String>> mOffers = new ScanReports<>("region channel list");
    private final int mTimeZone;
    private volatile String mSelected;

    /**
     * @param timeZone the builder's 16-bit time-zone value, given to it at every start
     * @throws ZelTvScanException when the native extension cannot be created
     */
    public ZelTvScanRegionChannelList(int timeZone) {
        super(MAX_ARRAY);
        mTimeZone = timeZone;
        int[] setup = new int[3];
        setup[2] = timeZone;
        bindNativeExtension(nativeSetup(setup), setup);
    }

    public int getTimeZone() {
        return mTimeZone;
    }

    /** Lets `chooser` pick from the lists that a scan offers; null to only keep them. */
    public void setChooser(Chooser chooser) {
        mOffers.setListener(chooser == null ? null : lists -> {
            String chosen = chooser.choose(lists);
            if (chosen != null) {
                select(chosen);
            }
        });
    }

    /**
     * Chooses the list the next scans install; from then on the builder is no longer asked
     * for the lists.
     */
    public int select(String name) {
        int status = nativeSetRegionChannelList(newCallArray(2), name);
        if (status == STATUS_OK) {
            mSelected = name;
        }
        return status;
    }

    /** The list chosen, or null while the builder is still asked for the lists. */
    public String getSelected() {
        return mSelected;
    }

    /** The lists of the latest offer, empty before any. */
    public List<String> getOfferedLists() {
        List<String> latest = mOffers.latest();
        return latest == null ? List.of() : latest;
    }

    /** Called by the native side on a builder thread. */
    void onRegionChannelList(String[] names) {
        mOffers.report(Collections.unmodifiableList(Arrays.asList(names.clone())));
    }

    private native int nativeSetRegionChannelList(int[] call, String name);

    private native int nativeSetup(int[] setup);
}
