package com.brinova.tv.orvella.services.scan;

import java.util.Objects;

/**
 * What a DTMB scan is to do: automatic over the country's channels, or manual on one
 * frequency. Read once, when a {@link ZelTvDtmbScanConfig} is created from it; the
 * configuration refuses values the builder does not know.
 */
public class ZelTvDtmbScanSettings {
    /** Highest service id rule the builder knows. */
    public static final int MAX_SERVICE_ID_RULE = 12;
    /** Service update types the builder knows: 0 keep, 1 replace, 2 append. */
    public static final int UPDATE_TYPE_KEEP = 0;

    /** How the scan finds its frequencies. */
    public enum DtmbScanType {
        /** Every channel of the country's plan. */
        AUTO(1),
        /** One frequency, {@link #getManualFrequency()}. */
        MANUAL(2);

        private final int mId;

        DtmbScanType(int id) {
            mId = id;
        }

        /** The number the native side maps to the builder's scan mode. */
        public int idOf() {
            return mId;
        }
    }

    private String mCountry;
    private String mUiLanguage;
    private DtmbScanType mScanType;
    private int mManualFrequency;
    private int mServiceIdRule;
    private int mServiceUpdateType;
    private boolean mLcnDisabled;

    /** An automatic scan that replaces the service list. */
    public ZelTvDtmbScanSettings(String country, String uiLanguage) {
        mCountry = Objects.requireNonNull(country, "country");
        mUiLanguage = Objects.requireNonNull(uiLanguage, "uiLanguage");
        mScanType = DtmbScanType.AUTO;
        mServiceUpdateType = ZelTvDvbtScanSettings.UPDATE_TYPE_REPLACE;
    }

    /** A manual scan of one frequency (Hz). */
    public static ZelTvDtmbScanSettings manual(String country, String uiLanguage,
            int frequencyHz) {
        ZelTvDtmbScanSettings s = new ZelTvDtmbScanSettings(country, uiLanguage);
        s.setScanType(DtmbScanType.MANUAL);
        s.setManualFrequency(frequencyHz);
        return s;
    }

    /** A copy with the same values. */
    public ZelTvDtmbScanSettings copy() {
        ZelTvDtmbScanSettings s = new ZelTvDtmbScanSettings(mCountry, mUiLanguage);
        s.mScanType = mScanType;
        s.mManualFrequency = mManualFrequency;
        s.mServiceIdRule = mServiceIdRule;
        s.mServiceUpdateType = mServiceUpdateType;
        s.mLcnDisabled = mLcnDisabled;
        return s;
    }

    public String getCountry() {
        return mCountry;
    }

    public void setCountry(String country) {
        mCountry = Objects.requireNonNull(country, "country");
    }

    public String getUiLanguage() {
        return mUiLanguage;
    }

    public void setUiLanguage(String uiLanguage) {
        mUiLanguage = Objects.requireNonNull(uiLanguage, "uiLanguage");
    }

    /** Never null for settings made here; a subclass answering null fails the setup. */
    public DtmbScanType getScanType() {
        return mScanType;
    }

    public void setScanType(DtmbScanType scanType) {
        mScanType = Objects.requireNonNull(scanType, "scanType");
    }

    /** The frequency (Hz) of a manual scan; the builder asks for it when the scan is set up. */
    public int getManualFrequency() {
        return mManualFrequency;
    }

    public void setManualFrequency(int frequencyHz) {
        mManualFrequency = frequencyHz;
    }

    /** How the builder numbers services, 0 to {@link #MAX_SERVICE_ID_RULE}. */
    public int getServiceIdRule() {
        return mServiceIdRule;
    }

    public void setServiceIdRule(int rule) {
        mServiceIdRule = rule;
    }

    public int getServiceUpdateType() {
        return mServiceUpdateType;
    }

    public void setServiceUpdateType(int type) {
        mServiceUpdateType = type;
    }

    public boolean isLcnDisabled() {
        return mLcnDisabled;
    }

    public void setLcnDisabled(boolean disabled) {
        mLcnDisabled = disabled;
    }

    @Override
    public String toString() {
        return "DTMB{country=" + mCountry + ", language=" + mUiLanguage + ", scanType="
                + mScanType + (mScanType == DtmbScanType.MANUAL ? "@" + mManualFrequency : "")
                + ", serviceIdRule=" + mServiceIdRule + ", updateType=" + mServiceUpdateType
                + "}";
    }
}
