package com.brinova.tv.orvella.services.scan;

/**
 * The HD+ service guide of a satellite scan on ASTRA 19.2°E: the builder reads the service
 * guide table (SGT), which orders and names the HD+ channels.
 *
 * <p>Before a scan the application gives the SGT version it already has, whether a blind scan
 * goes on over all networks, and whether HD mode is on ({@link #setHDPlus}); they are written
 * into the satellite scan's parameters when the scan starts. During the scan the builder
 * reports the SGT version it found to the {@link SGTListener}, on its own thread.
 */
public class ZelTvScanHDPlus extends ZelTvScanExtension {
    static {
        ZelTvScanLibrary.load();
    }

    private static final int MAX_ARRAY = 50;

    /** The HD+ settings of a scan. */
    public static final class HDPlusInfo {
        private int mSgtVersion;
        private boolean mBlindScanContinue;
        private boolean mHdMode;

        public HDPlusInfo() {}

        /**
         * @param sgtVersion the SGT version already known; the scan keeps its low 8 bits
         * @param blindScanContinue the scan goes on over every network, not only HD+'s
         * @param hdMode HD mode on
         */
        public HDPlusInfo(int sgtVersion, boolean blindScanContinue, boolean hdMode) {
            mSgtVersion = sgtVersion;
            mBlindScanContinue = blindScanContinue;
            mHdMode = hdMode;
        }

        public int getSGTVersion() {
            return mSgtVersion;
        }

        public boolean getIsBlindScanContinue() {
            return mBlindScanContinue;
        }

        public boolean getIsHDMode() {
            return mHdMode;
        }

        public HDPlusInfo setSGTVersion(int version) {
            mSgtVersion = version;
            return this;
        }

        public HDPlusInfo setBlindScanContinue(boolean on) {
            mBlindScanContinue = on;
            return this;
        }

        public HDPlusInfo setHDMode(boolean on) {
            mHdMode = on;
            return this;
        }

        @Override
        public String toString() {
            return "SGT version " + mSgtVersion + (mBlindScanContinue ? ", blind scan" : "")
                    + (mHdMode ? ", HD mode" : "");
        }
    }

    /** Receives the SGT version the builder found, on a builder thread. */
    @FunctionalInterface
    public interface SGTListener {
        void onSGTVersion(int version);
    }

    private volatile SGTListener mListener;

    /** @throws ZelTvScanException when the native extension cannot be created */
    public ZelTvScanHDPlus() {
        super(MAX_ARRAY);
        int[] setup = newSetupArray();
        bindNativeExtension(nativeSetup(setup), setup);
    }

    public void setSGTListener(SGTListener listener) {
        mListener = listener;
    }

    /** Sets the HD+ settings of the next scans. */
    public void setHDPlus(HDPlusInfo info) {
        HDPlusInfo copy = new HDPlusInfo(info.getSGTVersion(), info.getIsBlindScanContinue(),
                info.getIsHDMode());
        NativeSetHDPlus(copy);
    }

    void onSGTVersion(int version) {
        SGTListener listener = mListener;
        if (listener != null) {
            deliver("SGT version", () -> listener.onSGTVersion(version));
        }
    }

    private native int nativeSetup(int[] setup);

    private native int NativeSetHDPlus(HDPlusInfo info);
}
