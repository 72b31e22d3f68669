package com.brinova.tv.orvella.testsupport;

import com.brinova.tv.orvella.services.scan.ZelTvScanEngine;

import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.concurrent.TimeUnit;

/** Records every engine event as it arrives, with the thread it came on. */
public final class RecordingEngineListener implements ZelTvScanEngine.Listener {
    private final List<String> mEvents = new ArrayList<>();
    private int mEnds;
    /** When set, status events wait for it to open before they are recorded. */
    public volatile java.util.concurrent.CountDownLatch gate;

    /** Listens to `engine` and returns the recorder. */
    public static RecordingEngineListener attach(ZelTvScanEngine engine) {
        RecordingEngineListener listener = new RecordingEngineListener();
        engine.setListener(listener);
        return listener;
    }

    @Override
    public void onScanStatusEvent(int kind, int value1, int value2) {
        java.util.concurrent.CountDownLatch g = gate;
        if (g != null) {
            try {
                g.await(10, TimeUnit.SECONDS);
            } catch (InterruptedException e) {
                Thread.currentThread().interrupt();
            }
        }
        synchronized (mEvents) {
            mEvents.add("status " + kind + " " + value1 + " " + value2 + " @"
                    + Thread.currentThread().getName());
            if (kind == ZelTvScanEngine.EVENT_SCAN_ENDED) {
                mEnds++;
                mEvents.notifyAll();
            }
        }
    }

    @Override
    public void onListUpdate(ZelTvScanEngine.ChannelList list, int listId, int count,
            int[] eventTypes, int[] eventRecords) {
        synchronized (mEvents) {
            mEvents.add(list.name().toLowerCase() + " " + listId + " " + count + " "
                    + Arrays.toString(eventTypes) + " " + Arrays.toString(eventRecords) + " @"
                    + Thread.currentThread().getName());
        }
    }

    /** Waits until `ends` scan-end events have arrived; false on time-out. */
    public boolean awaitEnds(int ends, long millis) throws InterruptedException {
        long deadline = System.nanoTime() + TimeUnit.MILLISECONDS.toNanos(millis);
        synchronized (mEvents) {
            while (mEnds < ends) {
                long left = TimeUnit.NANOSECONDS.toMillis(deadline - System.nanoTime());
                if (left <= 0) {
                    return false;
                }
                mEvents.wait(left);
            }
            return true;
        }
    }

    /** Waits until at least `count` events have arrived; false on time-out. */
    public boolean awaitCount(int count, long millis) throws InterruptedException {
        long deadline = System.nanoTime() + TimeUnit.MILLISECONDS.toNanos(millis);
        while (true) {
            synchronized (mEvents) {
                if (mEvents.size() >= count) {
                    return true;
                }
            }
            if (System.nanoTime() > deadline) {
                return false;
            }
            Thread.sleep(2);
        }
    }

    public String[] events() {
        synchronized (mEvents) {
            return mEvents.toArray(new String[0]);
        }
    }

    /** The events without their thread. */
    public String[] eventNames() {
        String[] all = events();
        for (int i = 0; i < all.length; i++) {
            all[i] = all[i].substring(0, all[i].lastIndexOf(" @"));
        }
        return all;
    }

    public void clear() {
        synchronized (mEvents) {
            mEvents.clear();
            mEnds = 0;
        }
    }
}
