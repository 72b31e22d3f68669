package com.brinova.tv.orvella.services.scan;

import java.util.Objects;

/**
 * What a cable DVB (DVB-C) scan is to do. Read once, when a {@link ZelTvDvbcScanConfig} is
 * created from it. Frequencies are in Hz.
 *
 * <p>For China ("CHN") the configuration opens the Chinese cable builder. Some operators
 * are mapped by country before the builder sees them: in Turkey operators 34 and 41, and in
 * Finland operator 35, become {@link #OPERATOR_OTHERS}; in Austria operator 33 becomes
 * {@link #OPERATOR_UPC}.
 */
public class ZelTvDvbcScanSettings {
    /** Every frequency of the country's cable plan. */
    public static final int SCAN_TYPE_FULL = 1;
    /** One frequency, the default frequency. */
    public static final int SCAN_TYPE_SINGLE_FREQUENCY = 2;
    /** From the default (home) frequency, following the network's tables. */
    public static final int SCAN_TYPE_QUICK = 4;
    /** From the default frequency, searching the whole band for the network's multiplexes. */
    public static final int SCAN_TYPE_ADVANCED = 5;

    /** No particular operator. */
    public static final int OPERATOR_OTHERS = 0;
    /** UPC (Austria's operator 33 is mapped to it). */
    public static final int OPERATOR_UPC = 1;

    /** Network id meaning "any network" for quick and advanced scans. */
    public static final int ANY_NETWORK = -1;

    private String mCountry;
    private String mUiLanguage;
    private int mOperator;
    private int mScanType;
    private int mDefaultFrequency;
    private int mNetworkId;
    private int mServiceUpdateType;

    /** A full scan of any operator's network that replaces the service list. */
    public ZelTvDvbcScanSettings(String country, String uiLanguage) {
        this(builder(country, uiLanguage));
    }

    private ZelTvDvbcScanSettings(Builder b) {
        mCountry = Objects.requireNonNull(b.mCountry, "country");
        mUiLanguage = Objects.requireNonNull(b.mUiLanguage, "uiLanguage");
        mOperator = b.mOperator;
        mScanType = b.mScanType;
        mDefaultFrequency = b.mDefaultFrequency;
        mNetworkId = b.mNetworkId;
        mServiceUpdateType = b.mServiceUpdateType;
    }

    /**
     * @param country ISO 3166 alpha-3 country code, such as "DEU" or "CHN"
     * @param uiLanguage ISO 639-2 code of the user's language, such as "deu"
     */
    public static Builder builder(String country, String uiLanguage) {
        return new Builder(country, uiLanguage);
    }

    /** Builds settings step by step; unset values are a full scan of any network. */
    public static final class Builder {
        private final String mCountry;
        private final String mUiLanguage;
        private int mOperator = OPERATOR_OTHERS;
        private int mScanType = SCAN_TYPE_FULL;
        private int mDefaultFrequency;
        private int mNetworkId = ANY_NETWORK;
        private int mServiceUpdateType = ZelTvDvbtScanSettings.UPDATE_TYPE_REPLACE;

        private Builder(String country, String uiLanguage) {
            mCountry = Objects.requireNonNull(country, "country");
            mUiLanguage = Objects.requireNonNull(uiLanguage, "uiLanguage");
        }

        public Builder operator(int operator) {
            mOperator = operator;
            return this;
        }

        /** A full scan. */
        public Builder full() {
            mScanType = SCAN_TYPE_FULL;
            return this;
        }

        /** One frequency only. */
        public Builder singleFrequency(int frequencyHz) {
            mScanType = SCAN_TYPE_SINGLE_FREQUENCY;
            mDefaultFrequency = frequencyHz;
            return this;
        }

        /** A quick scan from the home frequency (0: the builder's own), of one network or any. */
        public Builder quick(int homeFrequencyHz, int networkId) {
            mScanType = SCAN_TYPE_QUICK;
            mDefaultFrequency = homeFrequencyHz;
            mNetworkId = networkId;
            return this;
        }

        /** An advanced scan from the home frequency, of one network or any. */
        public Builder advanced(int homeFrequencyHz, int networkId) {
            mScanType = SCAN_TYPE_ADVANCED;
            mDefaultFrequency = homeFrequencyHz;
            mNetworkId = networkId;
            return this;
        }

        private Builder withScan(int scanType, int frequencyHz, int networkId) {
            mScanType = scanType;
            mDefaultFrequency = frequencyHz;
            mNetworkId = networkId;
            return this;
        }

        /** One of {@link ZelTvDvbtScanSettings}'s {@code UPDATE_TYPE_} constants. */
        public Builder serviceUpdateType(int type) {
            mServiceUpdateType = type;
            return this;
        }

        public ZelTvDvbcScanSettings build() {
            return new ZelTvDvbcScanSettings(this);
        }
    }

    /** A copy with the same values. */
    public ZelTvDvbcScanSettings copy() {
        return builder(mCountry, mUiLanguage).operator(mOperator)
                .withScan(mScanType, mDefaultFrequency, mNetworkId)
                .serviceUpdateType(mServiceUpdateType).build();
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

    public int getOperator() {
        return mOperator;
    }

    public void setOperator(int operator) {
        mOperator = operator;
    }

    public int getScanType() {
        return mScanType;
    }

    public void setScanType(int scanType) {
        mScanType = scanType;
    }

    /** The start (home) frequency in Hz, for every scan type but the full scan. */
    public int getDefaultFreq() {
        return mDefaultFrequency;
    }

    public void setDefaultFreq(int frequencyHz) {
        mDefaultFrequency = frequencyHz;
    }

    /** The network to scan, or {@link #ANY_NETWORK}; for quick and advanced scans. */
    public int getNetworkId() {
        return mNetworkId;
    }

    public void setNetworkId(int networkId) {
        mNetworkId = networkId;
    }

    public int getServiceUpdateType() {
        return mServiceUpdateType;
    }

    public void setServiceUpdateType(int type) {
        mServiceUpdateType = type;
    }

    @Override
    public String toString() {
        return "DVB-C{country=" + mCountry + ", language=" + mUiLanguage + ", operator="
                + mOperator + ", scanType=" + mScanType + ", frequency=" + mDefaultFrequency
                + ", networkId=" + mNetworkId + ", updateType=" + mServiceUpdateType + "}";
    }
}
