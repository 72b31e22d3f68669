package com.brinova.tv.orvella.testsupport;

import com.brinova.tv.orvella.services.scan.ZelTvDvbsScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvDvbsScanSettings;
import java.util.Arrays;
import java.util.List;

/**
 * A DVB-S configuration that records every callback with its thread, answers scan-maps
 * commands that its satellite list does not with a scripted status and output, and whose
 * settings can be replaced by scripted ones (nulls included) for a second native setup.
 */
public final class RecordingDvbsConfig extends ZelTvDvbsScanConfig {
    private final EventLog mLog = new EventLog();
    /** Copied into the output of a handled command (as far as it fits). */
    public volatile int[] answer = {0};
    public volatile int status = 0;

    public RecordingDvbsConfig(ZelTvDvbsScanSettings settings) {
        super(settings);
        setCommandHandler((command, country, input, output) -> {
            mLog.add("cmd " + command + " in=" + (input == null ? "null" : Arrays.toString(input))
                    + " out=" + (output == null ? "null" : String.valueOf(output.length)));
            if (output != null) {
                System.arraycopy(answer, 0, output, 0, Math.min(answer.length, output.length));
            }
            return status;
        });
        setSatelliteScanListener(new SatelliteScanListener() {
            @Override
            public void onServiceUpdate(ServiceUpdate u) {
                mLog.add("update " + u.tvAdded() + "," + u.tvDeleted() + "," + u.radioAdded() + ","
                        + u.radioDeleted() + "," + u.appAdded() + "," + u.appDeleted());
            }

            @Override
            public void onOrbitSlot(String satelliteId, int orbit) {
                mLog.add("slot " + satelliteId + " " + orbit);
            }

            @Override
            public void onServiceCount(int tv, int radio, int app) {
                mLog.add("count " + tv + "," + radio + "," + app);
            }

            @Override
            public void onCategories(List<String> names) {
                mLog.add("categories " + String.join("|", names));
            }
        });
    }

    /** Settings whose every getter answers what the test put in (strings may be null). */
    public static final class ScriptedSettings extends ZelTvDvbsScanSettings {
        public String country = "DEU";
        public String language = "deu";
        public String satellite = "1,1";
        public int operator;
        public int scanType = 1;
        public int channelType;
        public int serviceType;
        public int updateType;
        public int frequency;
        public int polarization;
        public int symbolRate;

        public ScriptedSettings() {
            super("DEU", "deu", "1,1");
        }

        @Override public String getCountry() { return country; }
        @Override public String getUiLanguage() { return language; }
        @Override public String getSatelliteId() { return satellite; }
        @Override public int getOperator() { return operator; }
        @Override public int getScanType() { return scanType; }
        @Override public int getChannelType() { return channelType; }
        @Override public int getServiceType() { return serviceType; }
        @Override public int getServiceUpdateType() { return updateType; }
        @Override public int getManualFrequency() { return frequency; }
        @Override public int getManualPolarization() { return polarization; }
        @Override public int getManualSymbolRate() { return symbolRate; }
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
