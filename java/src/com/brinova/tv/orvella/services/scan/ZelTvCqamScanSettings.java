package com.brinova.tv.orvella.services.scan;

import java.util.Objects;

/**
 * What a North-American cable (clear QAM) scan is to do: which channels, which modulations,
 * and which of the cable frequency plans (standard, HRC or IRC) the system uses. Channels
 * are indexes of the builder's channel table (the cable channel number, 1 to 158). Read
 * once, when a {@link ZelTvCqamScanConfig} is created.
 */
public class ZelTvCqamScanSettings {
    /** Every channel of the plan. */
    public static final int SCAN_TYPE_FULL = 1;
    /** One channel: the start index. */
    public static final int SCAN_TYPE_SINGLE = 4;
    /** The channels from the start index to the end index. */
    public static final int SCAN_TYPE_RANGE = 5;

    /** Modulations to try (mode mask bits). */
    public static final int MODE_QAM64 = 0x1;
    public static final int MODE_QAM256 = 0x2;

    /** Frequency plans: let the builder find out, or one of the three US cable plans. */
    public static final int FREQ_PLAN_AUTO = 0;
    public static final int FREQ_PLAN_STD = 1;
    public static final int FREQ_PLAN_HRC = 2;
    public static final int FREQ_PLAN_IRC = 3;

    private String mCountry;
    private int mScanType = SCAN_TYPE_FULL;
    private int mStartIndex;
    private int mEndIndex;
    private int mModeMask = MODE_QAM64 | MODE_QAM256;
    private int mFreqPlan = FREQ_PLAN_AUTO;

    /** A full scan of both modulations with the plan found by the builder. */
    public ZelTvCqamScanSettings(String country) {
        mCountry = Objects.requireNonNull(country, "country");
    }

    public ZelTvCqamScanSettings copy() {
        ZelTvCqamScanSettings s = new ZelTvCqamScanSettings(mCountry);
        s.mScanType = mScanType;
        s.mStartIndex = mStartIndex;
        s.mEndIndex = mEndIndex;
        s.mModeMask = mModeMask;
        s.mFreqPlan = mFreqPlan;
        return s;
    }

    /** One channel. */
    public ZelTvCqamScanSettings single(int index) {
        mScanType = SCAN_TYPE_SINGLE;
        mStartIndex = index;
        mEndIndex = index;
        return this;
    }

    /** The channels {@code first} to {@code last}. */
    public ZelTvCqamScanSettings range(int first, int last) {
        mScanType = SCAN_TYPE_RANGE;
        mStartIndex = first;
        mEndIndex = last;
        return this;
    }

    public ZelTvCqamScanSettings modes(int modeMask) {
        mModeMask = modeMask;
        return this;
    }

    public ZelTvCqamScanSettings plan(int freqPlan) {
        mFreqPlan = freqPlan;
        return this;
    }

    public String getCountry() {
        return mCountry;
    }

    public int getScanType() {
        return mScanType;
    }

    public void setScanType(int scanType) {
        mScanType = scanType;
    }

    public int getStartIndex() {
        return mStartIndex;
    }

    public int getEndIndex() {
        return mEndIndex;
    }

    public int getModeMask() {
        return mModeMask;
    }

    public int getFreqPlan() {
        return mFreqPlan;
    }

    /** The plan's name, for display. */
    public static String planName(int freqPlan) {
        switch (freqPlan) {
            case FREQ_PLAN_STD:
                return "STD";
            case FREQ_PLAN_HRC:
                return "HRC";
            case FREQ_PLAN_IRC:
                return "IRC";
            default:
                return "auto";
        }
    }

    @Override
    public String toString() {
        return "CQAM{country=" + mCountry + ", scanType=" + mScanType + ", channels="
                + mStartIndex + "-" + mEndIndex + ", modes=0x" + Integer.toHexString(mModeMask)
                + ", plan=" + planName(mFreqPlan) + "}";
    }
}
