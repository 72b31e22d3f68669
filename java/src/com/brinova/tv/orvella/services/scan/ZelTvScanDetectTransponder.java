package com.brinova.tv.orvella.services.scan;

import java.util.List;

/**
 * Home-transponder detection of a satellite scan: the builder reports the home transponder
 * it has found (the transponder that carries the operator's network information).
 *
 * <p>Reports arrive during the scan on a builder thread. The three transponder values are
 * the builder's own (on the operator builders frequency, polarisation and symbol rate) and
 * are passed through unchanged.
 */
public class ZelTvScanDetectTransponder extends ZelTvScanExtension {
    static {
        ZelTvScanLibrary.load();
    }

    private static final int MAX_ARRAY = 50;

    /** The home transponder found: the record it belongs to and the builder's three values. */
    public record Detection(ZelTvScanSatelliteId record, int value1, int value2, int value3) {
        @Override
        public String toString() {
            return record + " TP " + Integer.toUnsignedString(value1) + ":"
                    + Integer.toUnsignedString(value2) + ":" + Integer.toUnsignedString(value3);
        }
    }

    /** Receives each detection, on the builder's thread. */
    @FunctionalInterface
    public interface Listener {
        void onTransponderDetected(Detection detection);
    }

    private final ScanReports<Detection> mReports = new ScanReports<>("home transponder detection");

    /** @throws ZelTvScanException when the native extension cannot be created */
    public ZelTvScanDetectTransponder() {
        super(MAX_ARRAY);
        int[] setup = newSetupArray();
        bindNativeExtension(nativeSetup(setup), setup);
    }

    public void setListener(Listener listener) {
        mReports.setListener(listener == null ? null : listener::onTransponderDetected);
    }

    /** Every detection so far, in the order the builder reported them. */
    public List<Detection> getDetections() {
        return mReports.all();
    }

    /** Called by the native side on a builder thread. */
    void onDetectTransponder(String recordId, int value1, int value2, int value3) {
        mReports.report(new Detection(ZelTvScanSatelliteId.parse(recordId), value1, value2, value3));
    }

    private native int nativeSetup(int[] setup);
}
