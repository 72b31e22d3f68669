package com.brinova.tv.orvella.testsupport;

import com.brinova.tv.orvella.services.scan.ZelTvDvbcScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvDvbtScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvScanConfig;

/**
 * Records what a configuration of any standard receives (scan-maps commands, status,
 * cable notifications), with the thread each came on, and answers scan-maps commands with a
 * scripted output.
 */
public final class StandardRecorder implements ZelTvScanConfig.ScanMapsHandler,
        ZelTvDvbcScanConfig.CableScanMapsHandler, ZelTvDvbcScanConfig.ScanningListener,
        ZelTvDvbtScanConfig.ServiceUpdateListener, ZelTvScanConfig.StatusListener {
    private final EventLog mLog = new EventLog();
    /** Copied into the output of every scan-maps command (as far as it fits). */
    public volatile int[] answer = {0};
    public volatile int[] lastInput;
    public volatile int lastOutputLength = -1;
    public volatile String lastServiceName;
    public volatile int lastValue;

    /** Records everything `config` reports. */
    public static StandardRecorder attach(ZelTvScanConfig config) {
        StandardRecorder r = new StandardRecorder();
        config.setScanMapsHandler(r);
        config.setStatusListener(r);
        if (config instanceof ZelTvDvbcScanConfig) {
            ZelTvDvbcScanConfig cable = (ZelTvDvbcScanConfig) config;
            cable.setCableScanMapsHandler(r);
            cable.setScanningListener(r);
            cable.setServiceUpdateListener(r);
        }
        return r;
    }

    @Override
    public void onScanMapCommand(int command, String country, int[] input, int[] output) {
        answer(input, output);
        mLog.add("cmd " + command + " " + country);
    }

    @Override
    public void onScanMapCommand(int command, String country, String serviceName, int value,
            int[] input, int[] output) {
        lastServiceName = serviceName;
        lastValue = value;
        answer(input, output);
        mLog.add("cmd " + command + " " + country);
    }

    private void answer(int[] input, int[] output) {
        lastInput = input.clone();
        lastOutputLength = output.length;
        int[] a = answer;
        System.arraycopy(a, 0, output, 0, Math.min(a.length, output.length));
    }

    @Override
    public void onNetworkName(String name) {
        mLog.add("name " + name);
    }

    @Override
    public void onFrequencyUnlocked(int frequency) {
        mLog.add("unlocked " + frequency);
    }

    @Override
    public void onNetworkIdNotFound(int networkId) {
        mLog.add("no network " + networkId);
    }

    @Override
    public void onServiceUpdate(int added, int deleted) {
        mLog.add("update " + added + " " + deleted);
    }

    @Override
    public void onStatus(int status) {
        mLog.add("status " + status);
    }

    public String[] events() {
        return mLog.events();
    }

    public String[] eventNames() {
        return mLog.eventNames();
    }

    public void clearEvents() {
        mLog.clear();
    }
}
