package com.brinova.tv.orvella.testsupport;

import com.brinova.tv.orvella.services.scan.ZelTvScanEngine;

import java.util.Arrays;
import java.util.concurrent.CountDownLatch;
import java.util.concurrent.TimeUnit;

/** Records every engine event as it arrives, with the thread it came on. */
public final class RecordingEngineListener implements ZelTvScanEngine.Listener {
    private final EventLog mLog = new EventLog();
    /** When set, status events wait for it to open before they are recorded. */
    public volatile CountDownLatch gate;

    /** Listens to `engine` and returns the recorder. */
    public static RecordingEngineListener attach(ZelTvScanEngine engine) {
        RecordingEngineListener listener = new RecordingEngineListener();
        engine.setListener(listener);
        return listener;
    }

    @Override
    public void onScanStatusEvent(int kind, int value1, int value2) {
        CountDownLatch g = gate;
        if (g != null) {
            try {
                g.await(10, TimeUnit.SECONDS);
            } catch (InterruptedException e) {
                Thread.currentThread().interrupt();
            }
        }
        mLog.add("status " + kind + " " + value1 + " " + value2);
    }

    @Override
    public void onListUpdate(ZelTvScanEngine.ChannelList list, int listId, int count,
            int[] eventTypes, int[] eventRecords) {
        mLog.add(list.name().toLowerCase() + " " + listId + " " + count + " "
                + Arrays.toString(eventTypes) + " " + Arrays.toString(eventRecords));
    }

    /** Waits until `ends` scan-end events have arrived; false on time-out. */
    public boolean awaitEnds(int ends, long millis) throws InterruptedException {
        return mLog.await("status " + ZelTvScanEngine.EVENT_SCAN_ENDED + " ", ends, millis);
    }

    /** Waits until `count` progress events have arrived; false on time-out. */
    public boolean awaitProgress(int count, long millis) throws InterruptedException {
        return mLog.await("status " + ZelTvScanEngine.EVENT_PROGRESS + " ", count, millis);
    }

    /** Waits until `count` updates of `list` ("services", ...) have arrived; false on time-out. */
    public boolean awaitListUpdates(String list, int count, long millis) throws InterruptedException {
        return mLog.await(list + " ", count, millis);
    }

    /** The updates of `list` that have arrived. */
    public int listUpdates(String list) {
        return (int) java.util.Arrays.stream(mLog.eventNames()).filter(e -> e.startsWith(list + " ")).count();
    }

    /** Waits until at least `count` events have arrived; false on time-out. */
    public boolean awaitCount(int count, long millis) throws InterruptedException {
        return mLog.await("", count, millis);
    }

    public String[] events() {
        return mLog.events();
    }

    /** The events without their thread. */
    public String[] eventNames() {
        return mLog.eventNames();
    }

    public void clear() {
        mLog.clear();
    }
}
