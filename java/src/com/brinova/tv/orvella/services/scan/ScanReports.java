package com.brinova.tv.orvella.services.scan;

import java.util.ArrayList;
import java.util.Collections;
import java.util.List;
import java.util.concurrent.CopyOnWriteArrayList;
import java.util.function.Consumer;

/**
 * What an extension heard from the builder during scans: every report kept in arrival
 * order, each one also handed to the application's listener. Reports arrive on builder
 * threads; the listener runs there, shielded by {@link ScanCallbacks#deliver}.
 */
final class ScanReports<T> {
    private final String mWhat;
    private final List<T> mReports = new CopyOnWriteArrayList<>();
    private volatile Consumer<? super T> mListener;

    /** @param what how a failing listener is named in the log */
    ScanReports(String what) {
        mWhat = what;
    }

    void setListener(Consumer<? super T> listener) {
        mListener = listener;
    }

    void report(T report) {
        mReports.add(report);
        Consumer<? super T> listener = mListener;
        if (listener != null) {
            ScanCallbacks.deliver(mWhat, () -> listener.accept(report));
        }
    }

    /** The reports so far, oldest first. */
    List<T> all() {
        return Collections.unmodifiableList(new ArrayList<>(mReports));
    }

    /** The latest report, or null before the first. */
    T latest() {
        List<T> all = all();
        return all.isEmpty() ? null : all.get(all.size() - 1);
    }

    void clear() {
        mReports.clear();
    }
}
