package com.brinova.tv.orvella.services.scan;

import java.util.Collections;
import java.util.IdentityHashMap;
import java.util.Set;

/**
 * Base of the scan configurations, one subclass per broadcast standard.
 *
 * <p>A configuration describes one scan to the scan builder. Its native half is created by
 * the subclass's constructor and stays alive until it is released. An engine refers to it
 * natively by bare address from {@link ZelTvScanEngine#configure} until the engine is
 * {@link ZelTvScanEngine#release() released} (closing the engine does not end that), so a
 * {@link #release()} while an engine still uses the configuration is deferred: it answers 0
 * at once, the configuration stays valid, and its native half goes when
 * the last engine that used it is released. A configuration whose release is pending is
 * refused by {@link ZelTvScanEngine#configure}.
 *
 * <p>While a scan runs, the builder asks the configuration questions ("scan-maps commands"),
 * which arrive on a builder thread at the subclass's {@code onScanMapCommands} and are
 * answered by the {@link ScanMapsHandler}; and the engine reports the scan's state through
 * {@link #onStatus(int)} to the {@link StatusListener}. Both run synchronously inside the
 * builder or the engine: handlers must return promptly and must not call back into the
 * engine.
 */
public abstract class ZelTvScanConfig {
    /** Status reported when a scan (or a monitor) has stopped: ended, cancelled or failed. */
    public static final int STATUS_STOPPED = 0;
    /** Status reported when a scan (or a monitor) has started. */
    public static final int STATUS_RUNNING = 1;

    /** Answers the scan builder's questions about a scan in progress. */
    @FunctionalInterface
    public interface ScanMapsHandler {
        /**
         * Answers one command.
         *
         * @param command the builder's command number
         * @param country the country code the builder scans for (three letters)
         * @param input the command's input; one element (the builder's input value) for most
         *     commands, longer for the commands that pass a name
         * @param output where the answer goes; element 0 is the answer of commands that want
         *     a number or a yes/no (non-zero means yes), and longer answers fill the array
         *     from element 0; elements left alone answer 0
         */
        void onScanMapCommand(int command, String country, int[] input, int[] output);
    }

    /** Receives the engine's status reports: {@link #STATUS_RUNNING}, {@link #STATUS_STOPPED}. */
    @FunctionalInterface
    public interface StatusListener {
        void onStatus(int status);
    }

    private final Object mNativeLock = new Object();
    private long mNativeConfig; // guarded by mNativeLock; the native object's address or 0
    // Engines that were configured with this configuration and are not released yet, and
    // whether a release waits for them; guarded by mUseLock, which the native release is
    // done under, so that no engine starts using a configuration being released.
    private final Object mUseLock = new Object();
    private final Set<ZelTvScanEngine> mUsers = Collections.newSetFromMap(new IdentityHashMap<>());
    private boolean mReleasePending;
    private volatile ScanMapsHandler mScanMapsHandler;
    private volatile StatusListener mStatusListener;

    protected ZelTvScanConfig() {}

    /** Sets the handler of scan-maps commands; without one every command is answered 0. */
    public void setScanMapsHandler(ScanMapsHandler handler) {
        mScanMapsHandler = handler;
    }

    public void setStatusListener(StatusListener listener) {
        mStatusListener = listener;
    }

    /**
     * Releases the native configuration, at once when no engine uses it, else when the last
     * engine that uses it is released (see the class comment).
     *
     * @return the native status, 0 on success (also when there was nothing to release, and
     *     when the release is deferred)
     */
    public final int release() {
        synchronized (mUseLock) {
            if (!mUsers.isEmpty()) {
                mReleasePending = true;
                return 0;
            }
            mReleasePending = false;
            return releaseNative();
        }
    }

    /** Whether {@link #release()} was called and waits for an engine to be released. */
    public boolean isReleasePending() {
        synchronized (mUseLock) {
            return mReleasePending;
        }
    }

    /** Drops the native half: the subclass's {@code nativeRelease}. */
    protected abstract int releaseNative();

    /** An engine starts using this configuration; false when it is released or pending. */
    final boolean addUser(ZelTvScanEngine engine) {
        synchronized (mUseLock) {
            if (mReleasePending || getNativeConfig() == 0) {
                return false;
            }
            mUsers.add(engine);
            return true;
        }
    }

    /** A released engine no longer uses this configuration: a pending release is done now. */
    final void removeUser(ZelTvScanEngine engine) {
        synchronized (mUseLock) {
            if (mUsers.remove(engine) && mUsers.isEmpty() && mReleasePending) {
                mReleasePending = false;
                releaseNative();
            }
        }
    }

    /** Whether the native half exists (it does from construction to {@link #release()}). */
    public boolean isValid() {
        return getNativeConfig() != 0;
    }

    /** The native configuration's address as the native side stored it, or 0. */
    final long getNativeConfig() {
        synchronized (mNativeLock) {
            return mNativeConfig;
        }
    }

    /** Called by the native side when it creates or drops the native configuration. */
    final void setNativeConfig(long nativeConfig) {
        synchronized (mNativeLock) {
            mNativeConfig = nativeConfig;
        }
    }

    /**
     * Hands a scan-maps command to the {@link ScanMapsHandler}. Each standard's subclass
     * declares the method the native side calls, {@code onScanMapCommands}, with its
     * standard's signature (the satellite configurations answer a status, so theirs returns
     * an int and cannot share one declaration here), and passes the command on to this.
     */
    final void deliverScanMapCommand(int command, String country, int[] input, int[] output) {
        ScanMapsHandler handler = mScanMapsHandler;
        if (handler != null) {
            ScanCallbacks.deliver("scan-maps command " + command,
                    () -> handler.onScanMapCommand(command, country, input, output));
        }
    }

    /** Called by the native side when the engine starts or stops a scan. */
    void onStatus(int status) {
        StatusListener listener = mStatusListener;
        if (listener != null) {
            ScanCallbacks.deliver("status", () -> listener.onStatus(status));
        }
    }

    /**
     * Called by the native side before every scan start; a non-zero answer refuses the start.
     * The default delegates to {@link #validateSettings()}.
     */
    final int checkSettings() {
        try {
            return validateSettings();
        } catch (RuntimeException e) {
            ScanCallbacks.LOG.log(System.Logger.Level.ERROR, "settings check failed", e);
            return -1;
        }
    }

    /**
     * Checks the settings before a scan starts.
     *
     * @return 0 when the scan may start, non-zero to refuse it (the engine then answers its
     *     start with a failure)
     */
    protected int validateSettings() {
        return 0;
    }
}
