package com.brinova.tv.orvella.services.scan;

import java.util.List;

/**
 * LNB detection of a satellite scan: for each LNB input of the dish (a DiSEqC port, for
 * instance) the builder reports which satellite it receives there.
 *
 * <p>Reports arrive during the scan on a builder thread. LNB detection and
 * {@link ZelTvScanDetectSatellite satellite detection} share the builder's one satellite
 * report: with both added to an engine, only the one added last receives reports.
 */
public class ZelTvScanDetectLNB extends ZelTvScanExtension {
    static {
        ZelTvScanLibrary.load();
    }

    private static final int MAX_ARRAY = 50;

    /** A satellite found behind an LNB input: its identity, orbital position and name. */
    public record Detection(ZelTvScanSatelliteId satellite, int orbit, String name) {
        /** "ASTRA 1KR at 19.2E": the orbit in tenths of a degree as a menu shows it. */
        @Override
        public String toString() {
            return name + " at " + ZelTvScanDetectSatellite.orbitName(orbit) + " (" + satellite + ")";
        }
    }

    /** Receives each detection, on the builder's thread. */
    @FunctionalInterface
    public interface Listener {
        void onLnbDetected(Detection detection);
    }

    private final ScanReports<Detection> mReports = new ScanReports<>("LNB detection");

    /** @throws ZelTvScanException when the native extension cannot be created */
    public ZelTvScanDetectLNB() {
        super(MAX_ARRAY);
        int[] setup = newSetupArray();
        bindNativeExtension(nativeSetup(setup), setup);
    }

    public void setListener(Listener listener) {
        mReports.setListener(listener == null ? null : listener::onLnbDetected);
    }

    /** Every detection so far, in the order the builder reported them. */
    public List<Detection> getDetections() {
        return mReports.all();
    }

    /** Called by the native side on a builder thread. */
    void onDetectedLNBInfo(String satelliteId, int orbit, String name) {
        mReports.report(new Detection(ZelTvScanSatelliteId.parse(satelliteId), orbit, name));
    }

    private native int nativeSetup(int[] setup);
}
