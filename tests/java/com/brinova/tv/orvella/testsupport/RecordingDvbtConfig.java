package com.brinova.tv.orvella.testsupport;

import com.brinova.tv.orvella.services.scan.ZelTvDvbtScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvDvbtScanSettings;

import java.util.ArrayList;
import java.util.List;

/**
 * A DVB-T configuration that records every callback it gets (with the thread it came on)
 * and answers scan-maps commands with a scripted output.
 */
public final class RecordingDvbtConfig extends ZelTvDvbtScanConfig {
    private final List<String> mEvents = new ArrayList<>();
    /** Copied into the output of every scan-maps command (as far as it fits). */
    public volatile int[] answer = {0};
    /** What checkSettings answers. */
    public volatile int checkResult = 0;
    public volatile int[] lastInput;
    public volatile int lastOutputLength = -1;
    public volatile String lastCountry;

    public RecordingDvbtConfig(String country, String language, int scanType, int updateType) {
        super(new ZelTvDvbtScanSettings(country, language, scanType, updateType));
        setScanMapsHandler((command, c, input, output) -> {
            lastInput = input.clone();
            lastOutputLength = output.length;
            lastCountry = c;
            int[] a = answer;
            System.arraycopy(a, 0, output, 0, Math.min(a.length, output.length));
            record("cmd " + command);
        });
        setStatusListener(status -> record("status " + status));
        setServiceUpdateListener((added, deleted) -> record("update " + added + " " + deleted));
    }

    @Override
    protected int validateSettings() {
        record("check");
        return checkResult;
    }

    private void record(String event) {
        synchronized (mEvents) {
            mEvents.add(event + " @" + Thread.currentThread().getName());
        }
    }

    /** The events so far, each "what @thread". */
    public String[] events() {
        synchronized (mEvents) {
            return mEvents.toArray(new String[0]);
        }
    }

    /** The events so far without their thread. */
    public String[] eventNames() {
        String[] all = events();
        for (int i = 0; i < all.length; i++) {
            all[i] = all[i].substring(0, all[i].lastIndexOf(" @"));
        }
        return all;
    }

    public void clearEvents() {
        synchronized (mEvents) {
            mEvents.clear();
        }
    }
}
