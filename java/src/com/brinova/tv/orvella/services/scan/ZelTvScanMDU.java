package com.brinova.tv.orvella.services.scan;

import java.util.List;

/**
 * MDU detection of a satellite scan: in a multi-dwelling unit the builder detects the kind
 * of distribution system the receiver hangs on (the builder's own type codes) and reports
 * it with the signal level.
 *
 * <p>Reports arrive during the scan on a builder thread. MDU detection has its own report
 * and coexists with the satellite, LNB and home-transponder detections.
 */
public class ZelTvScanMDU extends ZelTvScanExtension {
    static {
        ZelTvScanLibrary.load();
    }

    private static final int MAX_ARRAY = 50;

    /** A distribution system detected: the builder's type (32 bits, unsigned) and signal. */
    public record Detection(int type, int signalLevel) {
        /** The type as the unsigned value the builder sent. */
        public long unsignedType() {
            return Integer.toUnsignedLong(type);
        }

        @Override
        public String toString() {
            return "MDU type " + unsignedType() + ", signal " + signalLevel;
        }
    }

    /** Receives each detection, on the builder's thread. */
    @FunctionalInterface
    public interface Listener {
        void onMduDetected(Detection detection);
    }

    private final ScanReports<Detection> mReports = new ScanReports<>("MDU detection");

    /** @throws ZelTvScanException when the native extension cannot be created */
    public ZelTvScanMDU() {
        super(MAX_ARRAY);
        int[] setup = newSetupArray();
        bindNativeExtension(nativeSetup(setup), setup);
    }

    public void setListener(Listener listener) {
        mReports.setListener(listener == null ? null : listener::onMduDetected);
    }

    /** Every detection so far, in the order the builder reported them. */
    public List<Detection> getDetections() {
        return mReports.all();
    }

    /** Called by the native side on a builder thread. */
    void onMDUInfo(int type, int signalLevel) {
        mReports.report(new Detection(type, signalLevel));
    }

    private native int nativeSetup(int[] setup);
}
