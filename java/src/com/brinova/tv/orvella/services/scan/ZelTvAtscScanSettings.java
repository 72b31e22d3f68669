package com.brinova.tv.orvella.services.scan;

import java.util.Objects;

/**
 * What an ATSC terrestrial scan is to do: every RF channel, one channel or a range of them.
 * Channels are given as indexes of the builder's channel table (for the US plan, the RF
 * channel number: 2 to 36). Read once, when a {@link ZelTvAtscScanConfig} is created.
 */
public class ZelTvAtscScanSettings {
    /** Every channel of the plan. */
    public static final int SCAN_TYPE_FULL = 1;
    /** One channel: the start index. */
    public static final int SCAN_TYPE_SINGLE = 4;
    /** The channels from the start index to the end index. */
    public static final int SCAN_TYPE_RANGE = 5;

    private String mCountry;
    private int mScanType;
    private int mStartIndex;
    private int mEndIndex;

    /** A full scan. */
    public ZelTvAtscScanSettings(String country) {
        this(country, SCAN_TYPE_FULL, 0, 0);
    }

    public ZelTvAtscScanSettings(String country, int scanType, int startIndex, int endIndex) {
        mCountry = Objects.requireNonNull(country, "country");
        mScanType = scanType;
        mStartIndex = startIndex;
        mEndIndex = endIndex;
    }

    /** One channel. */
    public static ZelTvAtscScanSettings single(String country, int index) {
        return new ZelTvAtscScanSettings(country, SCAN_TYPE_SINGLE, index, index);
    }

    /** The channels {@code first} to {@code last}. */
    public static ZelTvAtscScanSettings range(String country, int first, int last) {
        return new ZelTvAtscScanSettings(country, SCAN_TYPE_RANGE, first, last);
    }

    public ZelTvAtscScanSettings copy() {
        return new ZelTvAtscScanSettings(mCountry, mScanType, mStartIndex, mEndIndex);
    }

    public String getCountry() {
        return mCountry;
    }

    public void setCountry(String country) {
        mCountry = Objects.requireNonNull(country, "country");
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

    public void setStartIndex(int index) {
        mStartIndex = index;
    }

    public int getEndIndex() {
        return mEndIndex;
    }

    public void setEndIndex(int index) {
        mEndIndex = index;
    }

    @Override
    public String toString() {
        return "ATSC{country=" + mCountry + ", scanType=" + mScanType + ", channels="
                + mStartIndex + "-" + mEndIndex + "}";
    }
}
