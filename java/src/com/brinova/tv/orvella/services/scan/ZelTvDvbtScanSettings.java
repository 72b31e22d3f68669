package com.brinova.tv.orvella.services.scan;

import java.util.Objects;

/**
 * What a terrestrial DVB (DVB-T/T2) scan is to do. Read once, when a
 * {@link ZelTvDvbtScanConfig} is created from it.
 */
public class ZelTvDvbtScanSettings {
    /** Full scan of every channel of the country's frequency plan. */
    public static final int SCAN_TYPE_FULL = 1;
    /** Quick scan: the builder follows the network information it finds. */
    public static final int SCAN_TYPE_QUICK = 2;
    /** Scan of the range of channels that the builder asks for through scan-maps commands. */
    public static final int SCAN_TYPE_RANGE = 5;

    /** The service list is built anew from what the scan finds. */
    public static final int UPDATE_TYPE_REPLACE = 1;
    /** Services found are added to the services already in the list. */
    public static final int UPDATE_TYPE_APPEND = 2;

    private String mCountry;
    private String mUiLanguage;
    private int mScanType;
    private int mServiceUpdateType;

    /** A full scan that replaces the service list. */
    public ZelTvDvbtScanSettings(String country, String uiLanguage) {
        this(country, uiLanguage, SCAN_TYPE_FULL, UPDATE_TYPE_REPLACE);
    }

    /**
     * @param country ISO 3166 alpha-3 country code, such as "GBR" (the builder takes the first
     *     three characters)
     * @param uiLanguage ISO 639-2 code of the user's language, such as "eng"
     * @param scanType one of the {@code SCAN_TYPE_} constants
     * @param serviceUpdateType one of the {@code UPDATE_TYPE_} constants
     */
    public ZelTvDvbtScanSettings(String country, String uiLanguage, int scanType,
            int serviceUpdateType) {
        mCountry = Objects.requireNonNull(country, "country");
        mUiLanguage = Objects.requireNonNull(uiLanguage, "uiLanguage");
        mScanType = scanType;
        mServiceUpdateType = serviceUpdateType;
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

    public int getScanType() {
        return mScanType;
    }

    public void setScanType(int scanType) {
        mScanType = scanType;
    }

    public int getServiceUpdateType() {
        return mServiceUpdateType;
    }

    public void setServiceUpdateType(int serviceUpdateType) {
        mServiceUpdateType = serviceUpdateType;
    }

    /** Whether the scan type is one the builder knows. */
    public static boolean isKnownScanType(int scanType) {
        return scanType == SCAN_TYPE_FULL || scanType == SCAN_TYPE_QUICK
                || scanType == SCAN_TYPE_RANGE;
    }

    /** Whether the update type is one the builder knows. */
    public static boolean isKnownServiceUpdateType(int type) {
        return type == UPDATE_TYPE_REPLACE || type == UPDATE_TYPE_APPEND;
    }

    @Override
    public String toString() {
        return "DVB-T{country=" + mCountry + ", language=" + mUiLanguage + ", scanType="
                + mScanType + ", updateType=" + mServiceUpdateType + "}";
    }
}
