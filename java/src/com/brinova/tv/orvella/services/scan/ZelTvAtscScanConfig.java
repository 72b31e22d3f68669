package com.brinova.tv.orvella.services.scan;

import java.util.Objects;

/**
 * Configuration of an ATSC terrestrial scan (the "sb_atsc" builder).
 *
 * <p>The native side reads the scan type and the channel range from this object (not from
 * the settings) when it is created; the settings are copied first, so both agree.
 */
public class ZelTvAtscScanConfig extends ZelTvScanConfig {
    static {
        ZelTvScanLibrary.load();
    }

    private final ZelTvAtscScanSettings mSettings;

    /**
     * @throws ZelTvScanException when the native configuration cannot be created
     */
    public ZelTvAtscScanConfig(ZelTvAtscScanSettings settings) {
        Objects.requireNonNull(settings, "settings");
        mSettings = settings.copy();
        int status = nativeSetup(mSettings);
        if (status != 0 || !isValid()) {
            throw new ZelTvScanException("ATSC configuration not created for " + settings, status);
        }
    }

    public ZelTvAtscScanSettings getSettings() {
        return mSettings.copy();
    }

    @Override
    protected int releaseNative() {
        return nativeRelease();
    }

    // ---- read by the native side ----

    int getScanType() {
        return mSettings.getScanType();
    }

    int getScanStartIndex() {
        return mSettings.getStartIndex();
    }

    int getScanEndIndex() {
        return mSettings.getEndIndex();
    }

    /** Called by the native side on a scan-builder thread for every scan-maps command. */
    void onScanMapCommands(int command, String country, int[] input, int[] output) {
        deliverScanMapCommand(command, country, input, output);
    }

    private native int nativeSetup(ZelTvAtscScanSettings settings);

    private native int nativeRelease();
}
