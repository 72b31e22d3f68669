package com.brinova.tv.orvella.testsupport;

import com.brinova.tv.orvella.services.scan.ZelTvDvbtScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvDvbtScanSettings;


/**
 * A DVB-T configuration that records every callback it gets (with the thread it came on)
 * and answers scan-maps commands with a scripted output.
 */
public final class RecordingDvbtConfig extends ZelTvDvbtScanConfig {
    private final EventLog mLog = new EventLog();
    /** Copied into the output of every scan-maps command (as far as it fits). */
    public volatile int[] answer = {0};
    /** What checkSettings answers. */
    public volatile int checkResult = 0;
    /** When set, what the settings check throws instead of answering. */
    public volatile Error checkError;
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
        Error error = checkError;
        if (error != null) throw error;
        return checkResult;
    }

    private void record(String event) {
        mLog.add(event);
    }

    /** The events so far, each "what @thread". */
    public String[] events() {
        return mLog.events();
    }

    /** The events so far without their thread. */
    public String[] eventNames() {
        return mLog.eventNames();
    }

    public void clearEvents() {
        mLog.clear();
    }
}
