package com.brinova.tv.orvella.services.scan;

import java.util.Objects;

/**
 * Configuration of a terrestrial DVB scan (the "sb_dvb" builder).
 *
 * <p>The constructor creates the native configuration from the settings and throws a
 * {@link ZelTvScanException} when that fails (a non-zero setup status, or no native object,
 * for instance when the settings give no country). The settings are read once: later changes
 * of the settings object do not reach the builder.
 *
 * <p>Besides the common callbacks, the builder reports how many services a scan added and
 * deleted through {@link ServiceUpdateListener}, on a builder thread.
 */
public class ZelTvDvbtScanConfig extends ZelTvScanConfig {
    static {
        ZelTvScanLibrary.load();
    }

    /** Receives the builder's service-update reports. */
    @FunctionalInterface
    public interface ServiceUpdateListener {
        void onServiceUpdate(int added, int deleted);
    }

    private final ZelTvDvbtScanSettings mSettings;
    private volatile ServiceUpdateListener mServiceUpdateListener;

    /**
     * @throws ZelTvScanException when the native configuration cannot be created
     */
    public ZelTvDvbtScanConfig(ZelTvDvbtScanSettings settings) {
        Objects.requireNonNull(settings, "settings");
        // A copy of what the native side reads, so that later changes of the caller's object
        // do not make the settings check disagree with the builder.
        mSettings = copyOf(settings);
        int status = nativeSetup(mSettings);
        if (status != 0 || !isValid()) {
            throw new ZelTvScanException("DVB-T configuration not created for " + settings, status);
        }
    }

    /** A copy of the settings the configuration was created from. */
    public ZelTvDvbtScanSettings getSettings() {
        return copyOf(mSettings);
    }

    private static ZelTvDvbtScanSettings copyOf(ZelTvDvbtScanSettings s) {
        return new ZelTvDvbtScanSettings(s.getCountry(), s.getUiLanguage(), s.getScanType(),
                s.getServiceUpdateType());
    }

    public void setServiceUpdateListener(ServiceUpdateListener listener) {
        mServiceUpdateListener = listener;
    }

    @Override
    protected int releaseNative() {
        return nativeRelease();
    }

    /**
     * Refuses a scan whose country or language is not three letters long: the builder would
     * get a truncated or empty code. Unknown scan and update types are left to the builder,
     * which treats them as its defaults.
     */
    @Override
    protected int validateSettings() {
        return isCode(mSettings.getCountry()) && isCode(mSettings.getUiLanguage()) ? 0 : -1;
    }

    private static boolean isCode(String code) {
        return code != null && code.length() == 3 && code.chars().allMatch(Character::isLetter);
    }

    /** Called by the native side on a scan-builder thread for every scan-maps command. */
    void onScanMapCommands(int command, String country, int[] input, int[] output) {
        deliverScanMapCommand(command, country, input, output);
    }

    /** Called by the native side on a builder thread: [0] services added, [1] deleted. */
    void onDvbtServiceUpdateNotify(int[] counts) {
        ServiceUpdateListener listener = mServiceUpdateListener;
        if (listener != null && counts != null && counts.length >= 2) {
            int added = counts[0];
            int deleted = counts[1];
            ScanCallbacks.deliver("service update",
                    () -> listener.onServiceUpdate(added, deleted));
        }
    }

    private native int nativeSetup(ZelTvDvbtScanSettings settings);

    private native int nativeRelease();
}
