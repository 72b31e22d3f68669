package com.brinova.tv.orvella.services.scan;

import java.util.ArrayList;
import java.util.Collections;
import java.util.List;
import java.util.Objects;

/**
 * A channel-scan engine for one tuner pipeline.
 *
 * <p>Usual order: create the engine; create a configuration; {@link #configure} it (this
 * opens the scan builder); prepare and {@link #addExtension add} the extensions (only after
 * {@code configure}: an extension added before is refused); {@link #start}; receive the
 * events through the {@link Listener}; then {@link #close} and {@link #release}, and release
 * the configuration after that.
 *
 * <p>Order of release: the native engine refers to its configurations and extensions by
 * bare address, so the Java side keeps them alive for it. {@link #release()} closes the
 * builder first when {@link #close()} was not called since the last {@code configure}, so
 * that the builder never calls into a destroyed engine. A configuration released while an
 * engine still uses it is released when that engine is ({@link ZelTvScanConfig#release()}).
 * Native extensions live as long as the process: create an application's extensions once
 * per engine and reuse them across scans, rather than new ones for every scan.
 *
 * <p>Every operation answers the native status: {@link #STATUS_OK}, {@link #STATUS_INVALID}
 * (no engine, a bad argument, a refused operation) or {@link #STATUS_FAILED} (the builder
 * refused a cancel or close). The engine keeps the configuration and the extensions it uses
 * reachable until it is released, since the native side refers to them only weakly.
 *
 * <p>Threads: operations may be called from any thread and are serialised by the native
 * engine. Status events arrive in order on the engine's own event thread; list updates
 * arrive on builder threads. Listener methods may call any operation but {@link #release}
 * (a list listener even while {@link #close} waits for it to return).
 */
public class ZelTvScanEngine {
    static {
        ZelTvScanLibrary.load();
    }

    public static final int STATUS_OK = 0;
    /** No engine (or not initialised), a bad argument, or an operation the engine refused. */
    public static final int STATUS_INVALID = -22;
    /** The scan builder refused the operation. */
    public static final int STATUS_FAILED = -38;

    /** Status event kind: progress; value 1 channels found so far, value 2 percent done. */
    public static final int EVENT_PROGRESS = 1;
    /** Status event kind: the scan ended; value 1 the reason ({@code END_} constants). */
    public static final int EVENT_SCAN_ENDED = 2;
    /** Status event kind: the builder tunes a frequency; value 1 the frequency. */
    public static final int EVENT_FREQUENCY = 3;

    /** Scan end reason: the scan completed. */
    public static final int END_COMPLETE = 1;
    /** Scan end reason: the scan was cancelled. */
    public static final int END_CANCELLED = 4;
    /** Scan end reason: the builder aborted the scan. */
    public static final int END_ABORTED = 8;
    /** Scan end reason: the builder stopped the scan. */
    public static final int END_STOPPED = 512;

    /** List change type: a record was added. */
    public static final int CHANGE_ADDED = 1;
    /** List change type: a record was deleted. */
    public static final int CHANGE_DELETED = 2;
    /** List change type: a record was modified. */
    public static final int CHANGE_MODIFIED = 4;

    /** The channel lists whose changes the engine reports. */
    public enum ChannelList {
        /** Service list. */
        SERVICES,
        /** Transport-stream (multiplex) list. */
        TRANSPORT_STREAMS,
        /** Network list. */
        NETWORKS
    }

    /** One change of a channel list: its type ({@code CHANGE_} constants) and record id. */
    public record ListChange(int type, int record) {
        public boolean isAdded() {
            return type == CHANGE_ADDED;
        }

        public boolean isDeleted() {
            return type == CHANGE_DELETED;
        }

        public boolean isModified() {
            return type == CHANGE_MODIFIED;
        }
    }

    /**
     * Receives the engine's events. Override the raw methods to see every event as the native
     * side delivers it, or the convenient ones, which the raw ones call by default.
     */
    public interface Listener {
        /** Raw status event, on the engine's event thread, in the builder's order. */
        default void onScanStatusEvent(int kind, int value1, int value2) {
            switch (kind) {
                case EVENT_PROGRESS:
                    onProgress(value1, value2);
                    break;
                case EVENT_SCAN_ENDED:
                    onScanEnded(value1);
                    break;
                case EVENT_FREQUENCY:
                    onFrequency(value1);
                    break;
                default:
                    break;
            }
        }

        /** Progress: services found so far in this scan and the percentage done. */
        default void onProgress(int channelsFound, int percent) {}

        /**
         * The builder reports the frequency it works on, as the builder counts it (for the
         * terrestrial builder in Hz; {@link #toMegahertz} converts it whatever the unit).
         */
        default void onFrequency(int frequency) {}

        /** The scan ended; {@code reason} is one of the {@code END_} constants. */
        default void onScanEnded(int reason) {}

        /** Raw list update, on a builder thread: one entry per change in both arrays. */
        default void onListUpdate(ChannelList list, int listId, int count, int[] eventTypes,
                int[] eventRecords) {
            int n = Math.min(count, Math.min(eventTypes.length, eventRecords.length));
            List<ListChange> changes = new ArrayList<>(n);
            for (int i = 0; i < n; i++) {
                changes.add(new ListChange(eventTypes[i], eventRecords[i]));
            }
            List<ListChange> view = Collections.unmodifiableList(changes);
            switch (list) {
                case SERVICES:
                    onServiceListChanged(listId, view);
                    break;
                case TRANSPORT_STREAMS:
                    onTransportStreamListChanged(listId, view);
                    break;
                case NETWORKS:
                    onNetworkListChanged(listId, view);
                    break;
            }
        }

        default void onServiceListChanged(int svlId, List<ListChange> changes) {}

        default void onTransportStreamListChanged(int listId, List<ListChange> changes) {}

        default void onNetworkListChanged(int listId, List<ListChange> changes) {}
    }

    private final Object mContextLock = new Object();
    private long mNativeContext; // guarded by mContextLock; the native engine's address or 0
    private volatile int mPipelineHandle;
    private volatile Listener mListener;

    private final Object mPipeline;
    // What the native side refers to weakly or by bare address, kept reachable here: every
    // configuration given to configure (the native engine may keep any of them, even after
    // a refused configure) until release.
    private final Object mUsedLock = new Object();
    private final List<ZelTvScanConfig> mConfigs = new ArrayList<>();
    private final List<ZelTvScanExtension> mExtensions = new ArrayList<>();
    // Guarded by mUsedLock: configured since the last successful close, and how many
    // configure calls there were (a close that raced with a configure leaves the flag set).
    private boolean mMaybeOpen;
    private long mConfigureCount;

    /**
     * Creates an engine for a tuner pipeline object; the library allocates the pipeline's
     * handle ({@link #getPipelineHandle()}).
     *
     * @throws ZelTvScanException when the native engine cannot be created
     */
    public ZelTvScanEngine(Object pipeline) {
        mPipeline = Objects.requireNonNull(pipeline, "pipeline");
        checkSetup(nativeSetup(pipeline));
    }

    /**
     * Creates an engine for a pipeline that already has a middleware handle.
     *
     * @throws ZelTvScanException when the native engine cannot be created
     */
    public ZelTvScanEngine(int pipelineHandle) {
        mPipeline = null;
        checkSetup(nativeSetUpWithPipelineHandle(pipelineHandle));
    }

    private void checkSetup(int status) {
        if (status != 0 || getNativeContext() == 0) {
            throw new ZelTvScanException("scan engine not created", status);
        }
    }

    /** Sets the receiver of status events and list updates (null for none). */
    public void setListener(Listener listener) {
        mListener = listener;
    }

    /** The pipeline handle the engine works on (0 when the library could not allocate one). */
    public int getPipelineHandle() {
        return mPipelineHandle;
    }

    /** The pipeline object given at creation, or null for an engine made from a handle. */
    public Object getPipeline() {
        return mPipeline;
    }

    /**
     * Opens the scan builder for the configuration's standard (or, when it is open already,
     * switches to another configuration) and registers the channel-list reports.
     *
     * @param config a configuration that has not been released (nor its release asked for)
     * @param svlId the service list to build, 1 to 1000
     */
    public int configure(ZelTvScanConfig config, int svlId) {
        if (config == null || svlId < 1 || svlId > 1000) {
            return STATUS_INVALID;
        }
        synchronized (mUsedLock) {
            if (!isValid() || !config.addUser(this)) {
                return STATUS_INVALID;
            }
            if (!mConfigs.contains(config)) {
                mConfigs.add(config);
            }
            mMaybeOpen = true;
            mConfigureCount++;
            return nativeConfigure(config.getNativeConfig(), svlId);
        }
    }

    /**
     * Attaches an extension to the open builder. Call it after {@link #configure}, and after
     * the extension's own preparations (preselections, name lists), which reach the builder
     * when the extension is attached.
     */
    public int addExtension(ZelTvScanExtension extension) {
        if (extension == null || extension.getNativeExtension() == 0) {
            return STATUS_INVALID;
        }
        synchronized (mUsedLock) {
            int status = nativeAddExtension(extension.getNativeExtension());
            if (status == STATUS_OK) {
                mExtensions.add(extension);
            }
            return status;
        }
    }

    /** Detaches an extension; removing one that was not added is not an error. */
    public int removeExtension(ZelTvScanExtension extension) {
        if (extension == null || extension.getNativeExtension() == 0) {
            return STATUS_INVALID;
        }
        synchronized (mUsedLock) {
            int status = nativeRemoveExtension(extension.getNativeExtension());
            mExtensions.remove(extension);
            return status;
        }
    }

    /** Starts a scan with the configured configuration and the attached extensions. */
    public int start() {
        return nativeStart();
    }

    /** Cancels the running scan; the end of the scan is reported as an event. */
    public int cancel() {
        return nativeCancel();
    }

    /** Closes the builder (extensions are detached and stay known to the engine). */
    public int close() {
        long configured;
        synchronized (mUsedLock) {
            configured = mConfigureCount;
        }
        // Not under the lock: closing waits for list callbacks, whose listeners may call in.
        int status = nativeClose();
        synchronized (mUsedLock) {
            if (status == STATUS_OK && configured == mConfigureCount) {
                mMaybeOpen = false;
            }
        }
        return status;
    }

    /** Puts the open builder into monitor mode: list changes keep being reported. */
    public int startMonitor() {
        return nativeStartMonitor();
    }

    public int stopMonitor() {
        return nativeStopMonitor();
    }

    /**
     * Ends the engine's event thread and destroys the native engine; afterwards every
     * operation answers {@link #STATUS_INVALID}. Closes the builder first unless
     * {@link #close} succeeded since the last {@link #configure}; then releases the
     * configurations whose release was waiting for this engine. Must not be called from a
     * {@link Listener} method.
     */
    public int release() {
        boolean open;
        synchronized (mUsedLock) {
            open = mMaybeOpen;
            mMaybeOpen = false;
        }
        if (open) {
            nativeClose(); // refused when no builder is open; the release goes on
        }
        int status = nativeRelease();
        if (status != STATUS_OK) {
            return status;
        }
        List<ZelTvScanConfig> used;
        synchronized (mUsedLock) {
            used = new ArrayList<>(mConfigs);
            mConfigs.clear();
            mExtensions.clear();
        }
        for (ZelTvScanConfig config : used) {
            config.removeUser(this);
        }
        return status;
    }

    /** Whether the native engine exists (from creation to {@link #release()}). */
    public boolean isValid() {
        return getNativeContext() != 0;
    }

    /**
     * Converts a reported frequency to MHz, whether the builder counted in Hz (terrestrial),
     * kHz or MHz (the satellite builder's transponders, such as 11494). Broadcast frequencies
     * lie between 40 MHz (the lowest VHF channels) and 13 GHz (the top of the satellite Ku
     * band); within those bounds a value in one unit never reads as a value in another.
     */
    public static double toMegahertz(int frequency) {
        long f = Integer.toUnsignedLong(frequency);
        if (f >= 40_000_000L) {
            return f / 1_000_000.0;
        }
        if (f >= 40_000L) {
            return f / 1_000.0;
        }
        return f;
    }

    // ---- called by the native side ----

    final long getNativeContext() {
        synchronized (mContextLock) {
            return mNativeContext;
        }
    }

    final void setAndUnlockNativeContext(long context) {
        synchronized (mContextLock) {
            mNativeContext = context;
        }
    }

    final void onSetNativeHandle(int pipelineHandle) {
        mPipelineHandle = pipelineHandle;
    }

    final void OnScanStatusEvent(int kind, int value1, int value2) {
        Listener listener = mListener;
        if (listener != null) {
            ScanCallbacks.deliver("scan status event",
                    () -> listener.onScanStatusEvent(kind, value1, value2));
        }
    }

    final void OnScanUpdateSvlEvent(int listId, int count, int[] eventTypes, int[] eventRecords) {
        deliverListUpdate(ChannelList.SERVICES, listId, count, eventTypes, eventRecords);
    }

    final void OnScanUpdateTslEvent(int listId, int count, int[] eventTypes, int[] eventRecords) {
        deliverListUpdate(ChannelList.TRANSPORT_STREAMS, listId, count, eventTypes, eventRecords);
    }

    final void OnScanUpdateNwlEvent(int listId, int count, int[] eventTypes, int[] eventRecords) {
        deliverListUpdate(ChannelList.NETWORKS, listId, count, eventTypes, eventRecords);
    }

    private void deliverListUpdate(ChannelList list, int listId, int count, int[] eventTypes,
            int[] eventRecords) {
        Listener listener = mListener;
        if (listener != null && eventTypes != null && eventRecords != null) {
            ScanCallbacks.deliver("list update",
                    () -> listener.onListUpdate(list, listId, count, eventTypes, eventRecords));
        }
    }

    private native int nativeSetup(Object pipeline);

    private native int nativeSetUpWithPipelineHandle(int pipelineHandle);

    private native int nativeConfigure(long config, int svlId);

    private native int nativeAddExtension(long extension);

    private native int nativeRemoveExtension(long extension);

    private native int nativeStart();

    private native int nativeCancel();

    private native int nativeClose();

    private native int nativeRelease();

    private native int nativeStartMonitor();

    private native int nativeStopMonitor();
}
