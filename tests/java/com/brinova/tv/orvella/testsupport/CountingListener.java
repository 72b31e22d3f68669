package com.brinova.tv.orvella.testsupport;

import com.brinova.tv.orvella.services.scan.ZelTvScanEngine;

/** Counts status events and lets a waiter block until a count is reached. */
public final class CountingListener implements ZelTvScanEngine.Listener {
    private long mCount;
    private long mTarget = Long.MAX_VALUE;

    @Override
    public void onScanStatusEvent(int kind, int value1, int value2) {
        synchronized (this) {
            if (++mCount >= mTarget) {
                notifyAll();
            }
        }
    }

    /** Waits until `count` events have arrived in all; false after 10 s. */
    public synchronized boolean awaitCount(long count) throws InterruptedException {
        mTarget = count;
        long deadline = System.currentTimeMillis() + 10_000;
        while (mCount < count) {
            long left = deadline - System.currentTimeMillis();
            if (left <= 0) {
                return false;
            }
            wait(left);
        }
        return true;
    }

    public synchronized long count() {
        return mCount;
    }
}
