package com.brinova.tv.orvella.services.scan;

import java.util.ArrayList;
import java.util.Collections;
import java.util.List;
import java.util.Objects;

/**
 * One satellite the dish receives, as the application keeps it: its identity (satellite id
 * and record id, the pair that {@link #getIdText()} writes as "id,recordId"), orbital
 * position, LNB and transponders. The satellite configurations answer the builder's
 * satellite and transponder questions from a list of these.
 */
public final class ZelTvDvbsSatellite {
    /** Universal LNB: oscillators 9750 and 10600 MHz, band switch at 11700 MHz. */
    public static final int LNB_UNIVERSAL = 0;
    /** Single-band LNB with a 10750 MHz oscillator. */
    public static final int LNB_SINGLE = 1;

    /** Horizontal and vertical polarisation, as the builder counts them. */
    public static final int POL_HORIZONTAL = 1;
    public static final int POL_VERTICAL = 2;

    /** The builder keeps at most this many characters of a name. */
    public static final int MAX_NAME_LENGTH = 64;

    /** One transponder: downlink frequency (MHz), polarisation and symbol rate (kBd). */
    public static final class Transponder {
        private final int mFrequency;
        private final int mPolarization;
        private final int mSymbolRate;
        private final int mTransportStreamId;

        public Transponder(int frequencyMhz, int polarization, int symbolRateKbd,
                int transportStreamId) {
            if (polarization != POL_HORIZONTAL && polarization != POL_VERTICAL) {
                throw new IllegalArgumentException("polarisation " + polarization);
            }
            mFrequency = frequencyMhz;
            mPolarization = polarization;
            mSymbolRate = symbolRateKbd;
            mTransportStreamId = transportStreamId;
        }

        public int getFrequency() {
            return mFrequency;
        }

        public int getPolarization() {
            return mPolarization;
        }

        public int getSymbolRate() {
            return mSymbolRate;
        }

        public int getTransportStreamId() {
            return mTransportStreamId;
        }

        /** "11494 H 22000", as a TV's menu shows a transponder. */
        @Override
        public String toString() {
            return mFrequency + " " + polarizationName(mPolarization) + " " + mSymbolRate;
        }
    }

    private final int mSatelliteId;
    private final int mRecordId;
    private final String mName;
    private final int mOrbit;
    private final int mLnb;
    private final List<Transponder> mTransponders;

    /**
     * @param orbit orbital position in tenths of a degree, east positive (19.2 E is 192)
     * @param lnb {@link #LNB_UNIVERSAL} or {@link #LNB_SINGLE}
     * @param transponders in the order the builder is to tune them; the first is the home
     *     transponder the builder is told of
     */
    public ZelTvDvbsSatellite(int satelliteId, int recordId, String name, int orbit, int lnb,
            List<Transponder> transponders) {
        mSatelliteId = satelliteId;
        mRecordId = recordId;
        mName = Objects.requireNonNull(name, "name");
        mOrbit = orbit;
        mLnb = lnb;
        mTransponders = Collections.unmodifiableList(new ArrayList<>(transponders));
    }

    public int getSatelliteId() {
        return mSatelliteId;
    }

    public int getRecordId() {
        return mRecordId;
    }

    /** The satellite identity text: satellite id, a comma, record id. */
    public String getIdText() {
        return mSatelliteId + "," + mRecordId;
    }

    public String getName() {
        return mName;
    }

    public int getOrbit() {
        return mOrbit;
    }

    public int getLnb() {
        return mLnb;
    }

    public List<Transponder> getTransponders() {
        return mTransponders;
    }

    /** The transponder at `index`, or null past the end. */
    public Transponder getTransponder(int index) {
        return index >= 0 && index < mTransponders.size() ? mTransponders.get(index) : null;
    }

    /** The transponder at a frequency (within 2 MHz, as a tuner locks) and polarisation. */
    public Transponder findTransponder(int frequencyMhz, int polarization) {
        for (Transponder t : mTransponders) {
            if (Math.abs(t.getFrequency() - frequencyMhz) <= 2
                    && t.getPolarization() == polarization) {
                return t;
            }
        }
        return null;
    }

    /** "19.2E", "5.0W": an orbital position in tenths of a degree as a menu shows it. */
    public static String orbitName(int orbit) {
        int abs = Math.abs(orbit);
        return abs / 10 + "." + abs % 10 + (orbit < 0 ? "W" : "E");
    }

    public static String polarizationName(int polarization) {
        return polarization == POL_VERTICAL ? "V" : polarization == POL_HORIZONTAL ? "H" : "?";
    }

    @Override
    public String toString() {
        return mName + " (" + orbitName(mOrbit) + ", " + getIdText() + ")";
    }
}
