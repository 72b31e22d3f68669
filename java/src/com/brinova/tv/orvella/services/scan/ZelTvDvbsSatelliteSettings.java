package com.brinova.tv.orvella.services.scan;

import java.util.Objects;

/**
 * What a scan of one satellite is to do: its transponders, or one of them, with an
 * associated satellite. Read once, when a {@link ZelTvDvbsSatelliteConfig} is created from
 * it.
 */
public class ZelTvDvbsSatelliteSettings {
    private final String mCountry;
    private final int mOperator;
    private final int mScanType;
    private final String mSatelliteId;
    private final String mSatelliteAssoId;
    private final int mManualFrequency;
    private final int mManualPolarization;
    private final int mManualSymbolRate;

    /**
     * @param country ISO 3166 alpha-3 code, such as "TUR"
     * @param scanType one of {@link ZelTvDvbsScanSettings}'s scan types
     * @param satelliteId the satellite's identity text, "satelliteId,recordId"
     * @param satelliteAssoId the associated satellite's identity text; a record id of 0 means
     *     none
     * @param transponder the manual transponder, or null
     */
    public ZelTvDvbsSatelliteSettings(String country, int operator, int scanType,
            String satelliteId, String satelliteAssoId, ZelTvDvbsSatellite.Transponder transponder) {
        mCountry = Objects.requireNonNull(country, "country");
        mOperator = operator;
        mScanType = scanType;
        mSatelliteId = Objects.requireNonNull(satelliteId, "satelliteId");
        mSatelliteAssoId = Objects.requireNonNull(satelliteAssoId, "satelliteAssoId");
        mManualFrequency = transponder == null ? 0 : transponder.getFrequency();
        mManualPolarization = transponder == null ? 0 : transponder.getPolarization();
        mManualSymbolRate = transponder == null ? 0 : transponder.getSymbolRate();
    }

    public String getCountry() {
        return mCountry;
    }

    public int getOperator() {
        return mOperator;
    }

    public int getScanType() {
        return mScanType;
    }

    public String getSatelliteId() {
        return mSatelliteId;
    }

    public String getSatelliteAssoId() {
        return mSatelliteAssoId;
    }

    public int getManualFrequency() {
        return mManualFrequency;
    }

    public int getManualPolarization() {
        return mManualPolarization;
    }

    public int getManualSymbolRate() {
        return mManualSymbolRate;
    }

    @Override
    public String toString() {
        return "DVB-S satellite{country=" + mCountry + ", satellite=" + mSatelliteId
                + ", associated=" + mSatelliteAssoId + ", scanType=" + mScanType + "}";
    }
}
