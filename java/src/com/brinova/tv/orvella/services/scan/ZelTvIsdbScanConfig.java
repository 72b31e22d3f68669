package com.brinova.tv.orvella.services.scan;

import java.util.Objects;

/**
 * Configuration of an ISDB-T scan (the "sb_isdb" builder).
 *
 * <p>The native side reads the scan type and the channel range from this object when it is
 * created, and turns each channel into the builder's channel-table index through
 * {@link #getScanIndex(int)}; the country comes from the settings.
 */
public class ZelTvIsdbScanConfig extends ZelTvScanConfig {
    static {
        ZelTvScanLibrary.load();
    }

    private final ZelTvIsdbScanSettings mSettings;

    /**
     * @throws ZelTvScanException when the native configuration cannot be created
     */
    public ZelTvIsdbScanConfig(ZelTvIsdbScanSettings settings) {
        Objects.requireNonNull(settings, "settings");
        mSettings = settings.copy();
        int status = nativeSetup(mSettings);
        if (status != 0 || !isValid()) {
            throw new ZelTvScanException("ISDB configuration not created for " + settings, status);
        }
    }

    public ZelTvIsdbScanSettings getSettings() {
        return mSettings.copy();
    }

    @Override
    protected int releaseNative() {
        return nativeRelease();
    }

    /**
     * The builder's channel-table index of a UHF channel: 0 for the first channel of the plan,
     * counting up; 0 as well for a channel outside the plan.
     */
    public static int scanIndexOf(int channel) {
        boolean inPlan = channel >= ZelTvIsdbScanSettings.FIRST_CHANNEL
                && channel <= ZelTvIsdbScanSettings.LAST_CHANNEL;
        return inPlan ? channel - ZelTvIsdbScanSettings.FIRST_CHANNEL : 0;
    }

    // ---- read by the native side ----

    int getScanType() {
        return mSettings.getScanType();
    }

    int getScanStartIndex() {
        return mSettings.getStartChannel();
    }

    int getScanEndIndex() {
        return mSettings.getEndChannel();
    }

    /**
     * Called by the native side with a channel (the low 16 bits of the start or end); a
     * subclass may number the builder's table differently.
     */
    protected int getScanIndex(int channel) {
        return scanIndexOf(channel);
    }

    /** Called by the native side on a scan-builder thread for every scan-maps command. */
    void onScanMapCommands(int command, String country, int[] input, int[] output) {
        deliverScanMapCommand(command, country, input, output);
    }

    private native int nativeSetup(ZelTvIsdbScanSettings settings);

    private native int nativeRelease();
}
