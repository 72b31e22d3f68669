package com.brinova.tv.orvella.services.scan;

import java.util.List;

/**
 * Bouquet of a satellite scan: the application names the bouquet association table (BAT)
 * the builder is to read, by its bouquet id, with the version it already knows, and hears
 * the bouquet and version the scan found.
 *
 * <p>The bouquet is written into every following scan; reports arrive on a builder thread.
 */
public class ZelTvScanBouquet extends ZelTvScanExtension {
    static {
        ZelTvScanLibrary.load();
    }

    private static final int MAX_ARRAY = 50;

    /** The bouquet to read: its id (16 bits) and the BAT version known (8 bits). */
    public static class BouquetInfo {
        private final int mBatId;
        private final int mBatVersion;

        public BouquetInfo(int batId, int batVersion) {
            mBatId = batId;
            mBatVersion = batVersion;
        }

        public int getBatId() {
            return mBatId;
        }

        public int getBatVersion() {
            return mBatVersion;
        }
    }

    /** A BAT the scan found: its bouquet id and version. */
    public record Found(int batId, int version) {}

    /** Receives each BAT found, on the builder's thread. */
    @FunctionalInterface
    public interface Listener {
        void onBouquetFound(Found bouquet);
    }

    private final ScanReports<Found> mReports = new ScanReports<>("bouquet");

    /** @throws ZelTvScanException when the native extension cannot be created */
    public ZelTvScanBouquet() {
        super(MAX_ARRAY);
        int[] setup = newSetupArray();
        bindNativeExtension(nativeSetup(setup), setup);
    }

    /**
     * The bouquet for the next scans: the builder gets the id's low 16 bits and the
     * version's low 8 bits (both 0 until this is called).
     */
    public int setBouquet(int batId, int knownVersion) {
        return NativeSetBouquet(new BouquetInfo(batId, knownVersion));
    }

    public void setListener(Listener listener) {
        mReports.setListener(listener == null ? null : listener::onBouquetFound);
    }

    /** The bouquets found so far, oldest first. */
    public List<Found> getFound() {
        return mReports.all();
    }

    /** Called by the native side on a builder thread. */
    void onBouquetInfo(int batId, int version) {
        mReports.report(new Found(batId, version));
    }

    private native int NativeSetBouquet(BouquetInfo info);

    private native int nativeSetup(int[] setup);
}
