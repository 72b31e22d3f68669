package com.brinova.tv.orvella.services.scan;

import java.util.Objects;

/**
 * What a satellite (DVB-S/S2) operator scan is to do. Read once, when a
 * {@link ZelTvDvbsScanConfig} is created from it.
 */
public class ZelTvDvbsScanSettings {
    /** Every transponder of the satellite, as the configuration's satellite list names them. */
    public static final int SCAN_TYPE_SATELLITE = 1;
    /** The manual transponder, then every transponder its network information lists. */
    public static final int SCAN_TYPE_NETWORK = 3;
    /** The manual transponder only. */
    public static final int SCAN_TYPE_SINGLE_TRANSPONDER = 4;

    /** Channel types: no preference, free-to-air only, scrambled only, both. */
    public static final int CHANNEL_TYPE_ANY = 0;
    public static final int CHANNEL_TYPE_FREE = 1;
    public static final int CHANNEL_TYPE_SCRAMBLED = 2;
    public static final int CHANNEL_TYPE_ALL = 3;

    /** Service types: every kind, TV only, radio only. */
    public static final int SERVICE_TYPE_ANY = 0;
    public static final int SERVICE_TYPE_TV = 1;
    public static final int SERVICE_TYPE_RADIO = 2;

    /** Service updates: none reported, the list built anew, services added to it. */
    public static final int UPDATE_TYPE_NONE = 0;
    public static final int UPDATE_TYPE_REPLACE = 1;
    public static final int UPDATE_TYPE_APPEND = 2;

    private String mCountry;
    private String mUiLanguage;
    private int mOperator;
    private int mScanType = SCAN_TYPE_SATELLITE;
    private String mSatelliteId;
    private int mChannelType = CHANNEL_TYPE_ANY;
    private int mServiceType = SERVICE_TYPE_ANY;
    private int mServiceUpdateType = UPDATE_TYPE_REPLACE;
    private int mManualFrequency;
    private int mManualPolarization;
    private int mManualSymbolRate;

    /**
     * A scan of every transponder of `satellite`.
     *
     * @param country ISO 3166 alpha-3 code, such as "DEU"
     * @param uiLanguage ISO 639-2 code of the user's language, such as "deu"
     */
    public ZelTvDvbsScanSettings(String country, String uiLanguage, ZelTvDvbsSatellite satellite) {
        this(country, uiLanguage, satellite.getIdText());
    }

    /** @param satelliteId the satellite identity text, "satelliteId,recordId" */
    public ZelTvDvbsScanSettings(String country, String uiLanguage, String satelliteId) {
        mCountry = Objects.requireNonNull(country, "country");
        mUiLanguage = Objects.requireNonNull(uiLanguage, "uiLanguage");
        mSatelliteId = Objects.requireNonNull(satelliteId, "satelliteId");
    }

    /** A copy of `other`. */
    public ZelTvDvbsScanSettings(ZelTvDvbsScanSettings other) {
        this(other.mCountry, other.mUiLanguage, other.mSatelliteId);
        mOperator = other.mOperator;
        mScanType = other.mScanType;
        mChannelType = other.mChannelType;
        mServiceType = other.mServiceType;
        mServiceUpdateType = other.mServiceUpdateType;
        mManualFrequency = other.mManualFrequency;
        mManualPolarization = other.mManualPolarization;
        mManualSymbolRate = other.mManualSymbolRate;
    }

    /** The manual transponder of a network or single-transponder scan. */
    public ZelTvDvbsScanSettings setTransponder(int scanType, ZelTvDvbsSatellite.Transponder tp) {
        mScanType = scanType;
        mManualFrequency = tp.getFrequency();
        mManualPolarization = tp.getPolarization();
        mManualSymbolRate = tp.getSymbolRate();
        return this;
    }

    public ZelTvDvbsScanSettings setOperator(int operator) {
        mOperator = operator;
        return this;
    }

    public ZelTvDvbsScanSettings setScanType(int scanType) {
        mScanType = scanType;
        return this;
    }

    public ZelTvDvbsScanSettings setChannelType(int channelType) {
        mChannelType = channelType;
        return this;
    }

    public ZelTvDvbsScanSettings setServiceType(int serviceType) {
        mServiceType = serviceType;
        return this;
    }

    public ZelTvDvbsScanSettings setServiceUpdateType(int serviceUpdateType) {
        mServiceUpdateType = serviceUpdateType;
        return this;
    }

    public String getCountry() {
        return mCountry;
    }

    public String getUiLanguage() {
        return mUiLanguage;
    }

    /** The operator whose package is scanned; 0 for none. */
    public int getOperator() {
        return mOperator;
    }

    public int getScanType() {
        return mScanType;
    }

    /** The satellite identity text, "satelliteId,recordId". */
    public String getSatelliteId() {
        return mSatelliteId;
    }

    public int getChannelType() {
        return mChannelType;
    }

    public int getServiceType() {
        return mServiceType;
    }

    public int getServiceUpdateType() {
        return mServiceUpdateType;
    }

    /** MHz; used by the network and single-transponder scans. */
    public int getManualFrequency() {
        return mManualFrequency;
    }

    public int getManualPolarization() {
        return mManualPolarization;
    }

    /** kBd. */
    public int getManualSymbolRate() {
        return mManualSymbolRate;
    }

    @Override
    public String toString() {
        return "DVB-S{country=" + mCountry + ", language=" + mUiLanguage + ", satellite="
                + mSatelliteId + ", scanType=" + mScanType + ", operator=" + mOperator
                + ", transponder=" + mManualFrequency + "/" + mManualPolarization + "/"
                + mManualSymbolRate + "}";
    }
}
