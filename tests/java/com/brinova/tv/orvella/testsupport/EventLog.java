package com.brinova.tv.orvella.testsupport;

import java.util.ArrayList;
import java.util.List;
import java.util.concurrent.TimeUnit;

/** Events in arrival order, each recorded as "what @thread" with the thread it came on. */
final class EventLog {
    private final List<String> mEvents = new ArrayList<>();

    synchronized void add(String event) {
        mEvents.add(event + " @" + Thread.currentThread().getName());
        notifyAll();
    }

    synchronized String[] events() {
        return mEvents.toArray(new String[0]);
    }

    /** The events without their thread. */
    String[] eventNames() {
        String[] all = events();
        for (int i = 0; i < all.length; i++) {
            all[i] = all[i].substring(0, all[i].lastIndexOf(" @"));
        }
        return all;
    }

    synchronized void clear() {
        mEvents.clear();
    }

    /** Waits until `count` events beginning with `prefix` have arrived; false on time-out. */
    synchronized boolean await(String prefix, int count, long millis) throws InterruptedException {
        long deadline = System.nanoTime() + TimeUnit.MILLISECONDS.toNanos(millis);
        while (countOf(prefix) < count) {
            long left = TimeUnit.NANOSECONDS.toMillis(deadline - System.nanoTime());
            if (left <= 0) {
                return false;
            }
            wait(left);
        }
        return true;
    }

    private int countOf(String prefix) {
        int n = 0;
        for (String e : mEvents) {
            n += e.startsWith(prefix) ? 1 : 0;
        }
        return n;
    }
}
