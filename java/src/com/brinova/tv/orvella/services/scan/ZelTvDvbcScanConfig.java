package com.brinova.tv.orvella.services.scan;

import java.util.Objects;

/**
 * Configuration of a cable DVB scan (the "sb_dvbc" builder, or "sb_cn_dvbc" for China).
 *
 * <p>The constructor creates the native configuration from the settings and throws a
 * {@link ZelTvScanException} when that fails. Besides the common callbacks, the cable
 * builder reports what it finds while scanning through {@link ScanningListener} (the
 * network's name, frequencies that did not lock, a network id that was not found) and the
 * services a scan added and deleted through {@link ServiceUpdateListener}, on builder threads.
 * Its scan-maps questions carry a number and, for some, a service name:
 * {@link CableScanMapsHandler} receives them; a plain {@link ScanMapsHandler} set with
 * {@link #setScanMapsHandler} answers them without those two.
 */
public class ZelTvDvbcScanConfig extends ZelTvScanConfig {
    static {
        ZelTvScanLibrary.load();
    }

    /** Answers the cable builder's questions, with the number and service name they carry. */
    @FunctionalInterface
    public interface CableScanMapsHandler {
        /**
         * @param serviceName the service the question is about, or null
         * @param value the number that goes with the command
         * @param input the command's input (one element, or three for the service questions)
         * @param output where the answer goes, element 0 first
         */
        void onScanMapCommand(int command, String country, String serviceName, int value,
                int[] input, int[] output);
    }

    /** What the cable builder reports while it scans. */
    public interface ScanningListener {
        /** The name of the network whose tables the scan found. */
        default void onNetworkName(String name) {}

        /** A frequency (Hz) on which nothing locked. */
        default void onFrequencyUnlocked(int frequency) {}

        /** The scan found no network with the id it was given. */
        default void onNetworkIdNotFound(int networkId) {}
    }

    private final ZelTvDvbcScanSettings mSettings;
    private volatile CableScanMapsHandler mCableHandler;
    private volatile ScanningListener mScanningListener;
    private volatile ZelTvDvbtScanConfig.ServiceUpdateListener mServiceUpdateListener;

    /**
     * @throws ZelTvScanException when the native configuration cannot be created
     */
    public ZelTvDvbcScanConfig(ZelTvDvbcScanSettings settings) {
        Objects.requireNonNull(settings, "settings");
        mSettings = settings.copy();
        int status = nativeSetup(mSettings);
        if (status != 0 || !isValid()) {
            throw new ZelTvScanException("DVB-C configuration not created for " + settings, status);
        }
    }

    /** A copy of the settings the configuration was created from. */
    public ZelTvDvbcScanSettings getSettings() {
        return mSettings.copy();
    }

    /** Takes precedence over a plain {@link ScanMapsHandler}. */
    public void setCableScanMapsHandler(CableScanMapsHandler handler) {
        mCableHandler = handler;
    }

    public void setScanningListener(ScanningListener listener) {
        mScanningListener = listener;
    }

    public void setServiceUpdateListener(ZelTvDvbtScanConfig.ServiceUpdateListener listener) {
        mServiceUpdateListener = listener;
    }

    @Override
    protected int releaseNative() {
        return nativeRelease();
    }

    /** Refuses a scan whose country or language is not a three-letter code. */
    @Override
    protected int validateSettings() {
        return isCode(mSettings.getCountry()) && isCode(mSettings.getUiLanguage()) ? 0 : -1;
    }

    static boolean isCode(String code) {
        return code != null && code.length() == 3 && code.chars().allMatch(Character::isLetter);
    }

    // ---- called by the native side, on builder threads ----

    void onScanMapCommands(int command, String country, String serviceName, int value,
            int[] input, int[] output) {
        CableScanMapsHandler handler = mCableHandler;
        if (handler == null) {
            deliverScanMapCommand(command, country, input, output);
            return;
        }
        ScanCallbacks.deliver("scan-maps command " + command,
                () -> handler.onScanMapCommand(command, country, serviceName, value, input,
                        output));
    }

    /** [0] services added, [1] deleted. */
    void onDvbcServiceUpdateNotify(int[] counts) {
        ZelTvDvbtScanConfig.ServiceUpdateListener listener = mServiceUpdateListener;
        if (listener != null && counts != null && counts.length >= 2) {
            int added = counts[0];
            int deleted = counts[1];
            ScanCallbacks.deliver("service update", () -> listener.onServiceUpdate(added, deleted));
        }
    }

    void onDvbcNetworkNameNotify(String name) {
        ScanningListener listener = mScanningListener;
        if (listener != null) {
            ScanCallbacks.deliver("network name", () -> listener.onNetworkName(name));
        }
    }

    void onDvbcFreqUnLockNotify(int frequency) {
        ScanningListener listener = mScanningListener;
        if (listener != null) {
            ScanCallbacks.deliver("unlocked frequency",
                    () -> listener.onFrequencyUnlocked(frequency));
        }
    }

    void onDvbcNonNetworkIdNotify(int networkId) {
        ScanningListener listener = mScanningListener;
        if (listener != null) {
            ScanCallbacks.deliver("network id not found",
                    () -> listener.onNetworkIdNotFound(networkId));
        }
    }

    private native int nativeSetup(ZelTvDvbcScanSettings settings);

    private native int nativeRelease();
}
