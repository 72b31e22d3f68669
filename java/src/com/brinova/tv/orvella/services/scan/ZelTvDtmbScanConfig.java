package com.brinova.tv.orvella.services.scan;

import java.util.Objects;

/**
 * Configuration of a DTMB scan (the "sb_dtmb" builder).
 *
 * <p>The constructor creates the native configuration and throws a
 * {@link ZelTvScanException} with the setup's status when the settings are refused: -1 for a
 * missing or unknown value (country, scan type, a service id rule above 12, an update type
 * above 2), -4 for a missing language. A manual scan's frequency is asked of this object
 * while the native configuration is set up, as scan-maps command
 * {@link #COMMAND_MANUAL_FREQUENCY}; the configuration answers it from its settings itself.
 */
public class ZelTvDtmbScanConfig extends ZelTvScanConfig {
    static {
        ZelTvScanLibrary.load();
    }

    /** The scan-maps command that asks for the manual frequency. */
    public static final int COMMAND_MANUAL_FREQUENCY = 0;

    private final ZelTvDtmbScanSettings mSettings;

    /**
     * @throws ZelTvScanException when the settings are refused
     */
    public ZelTvDtmbScanConfig(ZelTvDtmbScanSettings settings) {
        Objects.requireNonNull(settings, "settings");
        mSettings = settings.copy();
        int status = nativeSetup(mSettings);
        if (status != 0 || !isValid()) {
            throw new ZelTvScanException("DTMB configuration not created for " + settings, status);
        }
    }

    /** A copy of the settings the configuration was created from. */
    public ZelTvDtmbScanSettings getSettings() {
        return mSettings.copy();
    }

    @Override
    protected int releaseNative() {
        return nativeRelease();
    }

    /** The manual frequency is this object's own answer; every other command goes on. */
    void onScanMapCommands(int command, String country, int[] input, int[] output) {
        if (command == COMMAND_MANUAL_FREQUENCY && output.length > 0) {
            output[0] = mSettings.getManualFrequency();
            return;
        }
        deliverScanMapCommand(command, country, input, output);
    }

    private native int nativeSetup(ZelTvDtmbScanSettings settings);

    private native int nativeRelease();
}
