package com.brinova.tv.orvella.services.scan;

import java.util.Objects;

/**
 * Configuration of a North-American cable (clear QAM) scan (the "sb_cqam" builder).
 *
 * <p>The native side reads the scan type, the channel range, the modulations and the
 * frequency plan from this object when it is created; the settings are copied first.
 */
public class ZelTvCqamScanConfig extends ZelTvScanConfig {
    static {
        ZelTvScanLibrary.load();
    }

    private final ZelTvCqamScanSettings mSettings;

    /**
     * @throws ZelTvScanException when the native configuration cannot be created
     */
    public ZelTvCqamScanConfig(ZelTvCqamScanSettings settings) {
        Objects.requireNonNull(settings, "settings");
        mSettings = settings.copy();
        int status = nativeSetup(mSettings);
        if (status != 0 || !isValid()) {
            throw new ZelTvScanException("CQAM configuration not created for " + settings, status);
        }
    }

    public ZelTvCqamScanSettings getSettings() {
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

    int getModeMask() {
        return mSettings.getModeMask();
    }

    int getFreqPlan() {
        return mSettings.getFreqPlan();
    }

    /** Called by the native side on a scan-builder thread for every scan-maps command. */
    void onScanMapCommands(int command, String country, int[] input, int[] output) {
        deliverScanMapCommand(command, country, input, output);
    }

    private native int nativeSetup(ZelTvCqamScanSettings settings);

    private native int nativeRelease();
}
