package com.brinova.tv.orvella.services.scan;

import java.util.Objects;

/**
 * What an ISDB-T scan is to do: every UHF channel, one channel or a range of channels.
 * Channels are the physical UHF channel numbers of the 6 MHz plan ({@link #FIRST_CHANNEL}
 * to {@link #LAST_CHANNEL}). Read once, when a {@link ZelTvIsdbScanConfig} is created.
 */
public class ZelTvIsdbScanSettings {
    /** Every channel of the plan. */
    public static final int SCAN_TYPE_FULL = 1;
    /** One channel: the start channel. */
    public static final int SCAN_TYPE_SINGLE = 6;
    /** The channels from the start channel to the end channel. */
    public static final int SCAN_TYPE_RANGE = 7;

    /** The UHF channels of the 6 MHz ISDB-T plan (Brazil and most of Latin America). */
    public static final int FIRST_CHANNEL = 14;
    public static final int LAST_CHANNEL = 69;

    private String mCountry;
    private int mScanType;
    private int mStartChannel;
    private int mEndChannel;

    /** A full scan. */
    public ZelTvIsdbScanSettings(String country) {
        this(country, SCAN_TYPE_FULL, FIRST_CHANNEL, LAST_CHANNEL);
    }

    public ZelTvIsdbScanSettings(String country, int scanType, int startChannel, int endChannel) {
        mCountry = Objects.requireNonNull(country, "country");
        mScanType = scanType;
        mStartChannel = startChannel;
        mEndChannel = endChannel;
    }

    public static ZelTvIsdbScanSettings single(String country, int channel) {
        return new ZelTvIsdbScanSettings(country, SCAN_TYPE_SINGLE, channel, channel);
    }

    public static ZelTvIsdbScanSettings range(String country, int first, int last) {
        return new ZelTvIsdbScanSettings(country, SCAN_TYPE_RANGE, first, last);
    }

    public ZelTvIsdbScanSettings copy() {
        return new ZelTvIsdbScanSettings(mCountry, mScanType, mStartChannel, mEndChannel);
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

    public int getStartChannel() {
        return mStartChannel;
    }

    public int getEndChannel() {
        return mEndChannel;
    }

    /** Centre frequency (Hz) of a UHF channel: 473 1/7 MHz for 14, then every 6 MHz. */
    public static int frequencyOf(int channel) {
        return 473_142_857 + (channel - FIRST_CHANNEL) * 6_000_000;
    }

    @Override
    public String toString() {
        return "ISDB-T{country=" + mCountry + ", scanType=" + mScanType + ", channels="
                + mStartChannel + "-" + mEndChannel + "}";
    }
}
