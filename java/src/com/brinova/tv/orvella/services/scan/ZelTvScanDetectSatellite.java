package com.brinova.tv.orvella.services.scan;

import java.util.List;

/**
 * Satellite detection of a satellite scan: the builder reports each satellite it has
 * identified, with its orbital position and the signal level it receives.
 *
 * <p>Reports arrive during the scan on a builder thread. Satellite detection and
 * {@link ZelTvScanDetectLNB LNB detection} share the builder's one satellite report: with
 * both added to an engine, only the one added last receives reports.
 */
public class ZelTvScanDetectSatellite extends ZelTvScanExtension {
    static {
        ZelTvScanLibrary.load();
    }

    private static final int MAX_ARRAY = 50;

    /** A satellite identified: its identity, orbital position and signal level. */
    public record Detection(ZelTvScanSatelliteId satellite, int orbit, int signalLevel) {
        @Override
        public String toString() {
            return satellite + " at " + orbitName(orbit) + ", signal " + signalLevel;
        }
    }

    /** Receives each detection, on the builder's thread. */
    @FunctionalInterface
    public interface Listener {
        void onSatelliteDetected(Detection detection);
    }

    private final ScanReports<Detection> mReports = new ScanReports<>("satellite detection");

    /** @throws ZelTvScanException when the native extension cannot be created */
    public ZelTvScanDetectSatellite() {
        super(MAX_ARRAY);
        int[] setup = newSetupArray();
        bindNativeExtension(nativeSetup(setup), setup);
    }

    public void setListener(Listener listener) {
        mReports.setListener(listener == null ? null : listener::onSatelliteDetected);
    }

    /** Every detection so far, in the order the builder reported them. */
    public List<Detection> getDetections() {
        return mReports.all();
    }

    /** "19.2E", "30.0W": an orbital position in tenths of a degree, east positive. */
    public static String orbitName(int orbit) {
        int tenths = Math.abs(orbit);
        return tenths / 10 + "." + tenths % 10 + (orbit < 0 ? "W" : "E");
    }

    /** Called by the native side on a builder thread. */
    void onDetectSatellite(String satelliteId, int orbit, int signalLevel) {
        mReports.report(new Detection(ZelTvScanSatelliteId.parse(satelliteId), orbit, signalLevel));
    }

    private native int nativeSetup(int[] setup);
}
