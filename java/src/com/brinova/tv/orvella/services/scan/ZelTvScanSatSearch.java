package com.brinova.tv.orvella.services.scan;

/**
 * Satellite search settings: whether the dish has a customer-specific LNB (one whose
 * oscillators are not a standard LNB's). The setting goes into every following scan; until
 * it is set the builder is told "no".
 */
public class ZelTvScanSatSearch extends ZelTvScanExtension {
    static {
        ZelTvScanLibrary.load();
    }

    private static final int MAX_ARRAY = 50;

    /** The search settings the builder reads. */
    public static class SatSearchInfo {
        private final boolean mCustomerLnb;

        public SatSearchInfo(boolean customerLnb) {
            mCustomerLnb = customerLnb;
        }

        public boolean getIsCustomerLNB() {
            return mCustomerLnb;
        }
    }

    /** @throws ZelTvScanException when the native extension cannot be created */
    public ZelTvScanSatSearch() {
        super(MAX_ARRAY);
        int[] setup = newSetupArray();
        bindNativeExtension(nativeSetup(setup), setup);
    }

    public int setCustomerLnb(boolean customerLnb) {
        return NativeSetSatSearch(new SatSearchInfo(customerLnb));
    }

    private native int NativeSetSatSearch(SatSearchInfo info);

    private native int nativeSetup(int[] setup);
}
