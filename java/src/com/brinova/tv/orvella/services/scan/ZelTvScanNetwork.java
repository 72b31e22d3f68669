package com.brinova.tv.orvella.services.scan;

import java.util.List;

/**
 * Network information of a satellite scan: the application tells the builder the version of
 * the network information table (NIT) it already knows, and hears the version the scan
 * found, so that it can tell whether the operator's network has changed.
 *
 * <p>The known version is written into every following scan; reports arrive on a builder
 * thread.
 */
public class ZelTvScanNetwork extends ZelTvScanExtension {
    static {
        ZelTvScanLibrary.load();
    }

    private static final int MAX_ARRAY = 50;

    /** What the application knows of the network: the NIT version (0 to 255). */
    public static class NetworkInfo {
        private final int mNitVersion;

        public NetworkInfo(int nitVersion) {
            mNitVersion = nitVersion;
        }

        public int getNitVersion() {
            return mNitVersion;
        }
    }

    /** Receives each NIT version found, on the builder's thread. */
    @FunctionalInterface
    public interface Listener {
        void onNitVersion(int version);
    }

    private final ScanReports<Integer> mReports = new ScanReports<>("network information");

    /** @throws ZelTvScanException when the native extension cannot be created */
    public ZelTvScanNetwork() {
        super(MAX_ARRAY);
        int[] setup = newSetupArray();
        bindNativeExtension(nativeSetup(setup), setup);
    }

    /**
     * The NIT version the application knows; the builder gets its low 8 bits at the next
     * start (0 until this is called).
     */
    public int setKnownNitVersion(int version) {
        return NativeSetNetwork(new NetworkInfo(version));
    }

    public void setListener(Listener listener) {
        mReports.setListener(listener == null ? null : listener::onNitVersion);
    }

    /** The NIT versions found so far, oldest first. */
    public List<Integer> getFoundVersions() {
        return mReports.all();
    }

    /** The NIT version the last report gave, or -1 before any. */
    public int getLatestVersion() {
        Integer latest = mReports.latest();
        return latest == null ? -1 : latest;
    }

    /** Called by the native side on a builder thread. */
    void onNetworkInfo(int version) {
        mReports.report(version);
    }

    private native int NativeSetNetwork(NetworkInfo info);

    private native int nativeSetup(int[] setup);
}
