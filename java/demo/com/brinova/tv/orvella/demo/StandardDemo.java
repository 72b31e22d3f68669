package com.brinova.tv.orvella.demo;

import com.brinova.tv.orvella.services.scan.ZelTvAtscScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvAtscScanSettings;
import com.brinova.tv.orvella.services.scan.ZelTvCqamScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvCqamScanSettings;
import com.brinova.tv.orvella.services.scan.ZelTvDtmbScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvDtmbScanSettings;
import com.brinova.tv.orvella.services.scan.ZelTvDvbcScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvDvbcScanSettings;
import com.brinova.tv.orvella.services.scan.ZelTvIsdbScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvIsdbScanSettings;
import com.brinova.tv.orvella.services.scan.ZelTvScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvScanEngine;
import com.brinova.tv.orvella.services.scan.ZelTvScanEngine.ListChange;
import com.brinova.tv.orvella.services.scan.ZelTvScanException;
import java.util.ArrayList;
import java.util.List;
import java.util.Locale;
import java.util.Set;
import java.util.TreeSet;
import java.util.concurrent.CountDownLatch;
import java.util.concurrent.TimeUnit;
import java.util.concurrent.atomic.AtomicInteger;

/**
 * A scan of the cable (DVB-C), DTMB, ATSC, US cable (clear QAM) or ISDB-T builder through
 * the scan library, showing what matters for each: the cable network's name and the
 * frequencies that did not lock, DTMB's manual frequency, ATSC's virtual channel numbers,
 * the cable plan, the ISDB-T channels; then a summary.
 */
final class StandardDemo {
    /** The standards this demo runs, by their --standard names. */
    enum Standard {
        DVBC("DVB-C", "cable"), DTMB("DTMB", "terrestrial"), ATSC("ATSC", "terrestrial"),
        CQAM("clear QAM", "US cable"), ISDB("ISDB-T", "terrestrial");

        final String title;
        final String medium;

        Standard(String title, String medium) {
            this.title = title;
            this.medium = medium;
        }

        static Standard of(String name) {
            return valueOf(name.toUpperCase(Locale.ROOT));
        }
    }

    /** The builder names a virtual channel it found with this ATSC command: (major << 16) | minor. */
    private static final int ATSC_VIRTUAL_CHANNEL = 9;
    private static final int SVL_ID = 1;

    private final Standard standard;
    private final String scenario;
    private final Screen screen;
    private final long timeoutSeconds;

    private final CountDownLatch ended = new CountDownLatch(1);
    private final AtomicInteger endReason = new AtomicInteger();
    private final AtomicInteger questions = new AtomicInteger();
    private final Set<Integer> services = new TreeSet<>();
    private final Set<Integer> multiplexes = new TreeSet<>();
    private final List<Integer> tuned = new ArrayList<>();
    private final List<Integer> unlocked = new ArrayList<>();
    private final Set<String> virtualChannels = new TreeSet<>(StandardDemo::byChannelNumber);
    private volatile String networkName;
    private volatile String settingsText = "";
    private volatile int percent;
    private volatile int found;
    private volatile String lastFrequency;

    StandardDemo(Standard standard, String scenario, Screen screen, long timeoutSeconds) {
        this.standard = standard;
        this.scenario = scenario == null ? "" : scenario;
        this.screen = screen;
        this.timeoutSeconds = timeoutSeconds;
    }

    int run() {
        screen.line("");
        screen.line(screen.bold("Orvella channel scan") + screen.dim(" " + screen.dot() + " "
                + standard.medium + " " + standard.title + " demo"));
        fact("scenario", scenario.isEmpty() ? "built-in" : scenario);
        ZelTvScanEngine engine = null;
        ZelTvScanConfig config = null;
        try {
            engine = new ZelTvScanEngine(new ScanDemo.DemoPipeline(standard.medium + " tuner 0"));
            engine.setListener(new Listener());
            config = makeConfig();
            fact("settings", settingsText);
            config.setScanMapsHandler(this::answer);
            if (engine.configure(config, SVL_ID) != 0) {
                return finish(engine, config, 1, "configure failed");
            }
            screen.line("");
            long started = System.nanoTime();
            if (engine.start() != 0) {
                return finish(engine, config, 1, "start failed");
            }
            if (!ended.await(timeoutSeconds, TimeUnit.SECONDS)) {
                engine.cancel();
                return finish(engine, config, 3, "no end of scan after " + timeoutSeconds + " s");
            }
            screen.endProgress();
            summary((System.nanoTime() - started) / 1e9);
            return finish(engine, config, 0, null);
        } catch (ZelTvScanException e) {
            return finish(engine, config, 1, e.getMessage());
        } catch (InterruptedException e) {
            Thread.currentThread().interrupt();
            return finish(engine, config, 1, "interrupted");
        }
    }

    // ---- one configuration per standard ----

    private ZelTvScanConfig makeConfig() {
        switch (standard) {
            case DVBC:
                return cableConfig();
            case DTMB:
                return dtmbConfig();
            case ATSC:
                settingsText = "country USA, every RF channel (2 to 36)";
                return new ZelTvAtscScanConfig(new ZelTvAtscScanSettings("USA"));
            case CQAM:
                return clearQamConfig();
            default:
                settingsText = "country BRA, every UHF channel (14 to 69)";
                return new ZelTvIsdbScanConfig(new ZelTvIsdbScanSettings("BRA"));
        }
    }

    private ZelTvScanConfig cableConfig() {
        ZelTvDvbcScanSettings settings;
        if (scenario.contains("china")) {
            settings = ZelTvDvbcScanSettings.builder("CHN", "chi").quick(259_000_000, 0x3001).build();
            settingsText = "country CHN (Chinese cable builder), quick scan from 259 MHz, network 0x3001";
        } else {
            settings = ZelTvDvbcScanSettings.builder("AUT", "deu").operator(33).full().build();
            settingsText = "country AUT, operator 33 (UPC), full scan";
        }
        ZelTvDvbcScanConfig config = new ZelTvDvbcScanConfig(settings);
        config.setScanningListener(new ZelTvDvbcScanConfig.ScanningListener() {
            @Override
            public void onNetworkName(String name) {
                networkName = name;
                screen.line("  network " + screen.bold(name));
            }

            @Override
            public void onFrequencyUnlocked(int frequency) {
                synchronized (unlocked) {
                    unlocked.add(frequency);
                }
                screen.line("    " + screen.yellow("no lock on " + ScanDemo.megahertz(frequency)));
            }

            @Override
            public void onNetworkIdNotFound(int networkId) {
                screen.line("    " + screen.yellow("network 0x" + Integer.toHexString(networkId)
                        + " not found"));
            }
        });
        return config;
    }

    private ZelTvScanConfig dtmbConfig() {
        ZelTvDtmbScanSettings settings = new ZelTvDtmbScanSettings("CHN", "chi");
        settingsText = "country CHN, automatic scan of DS-13 to DS-48";
        if (scenario.contains("manual")) {
            settings = ZelTvDtmbScanSettings.manual("CHN", "chi", 674_000_000);
            settingsText = "country CHN, manual scan of DS-33, 674 MHz (the builder asked for it at"
                    + " setup)";
        }
        return new ZelTvDtmbScanConfig(settings);
    }

    private ZelTvScanConfig clearQamConfig() {
        int plan = scenario.contains("hrc") ? ZelTvCqamScanSettings.FREQ_PLAN_HRC
                : scenario.contains("irc") ? ZelTvCqamScanSettings.FREQ_PLAN_IRC
                : ZelTvCqamScanSettings.FREQ_PLAN_STD;
        ZelTvCqamScanSettings settings = new ZelTvCqamScanSettings("USA").range(100, 125).plan(plan);
        settingsText = "country USA, cable channels 100 to 125, QAM64 and QAM256, "
                + ZelTvCqamScanSettings.planName(plan) + " plan";
        return new ZelTvCqamScanConfig(settings);
    }

    // ---- what the library reports ----

    private final class Listener implements ZelTvScanEngine.Listener {
        @Override
        public void onProgress(int channelsFound, int p) {
            found = channelsFound;
            percent = p;
            screen.progress(p, channelsFound, lastFrequency);
        }

        @Override
        public void onFrequency(int frequency) {
            synchronized (tuned) {
                tuned.add(frequency);
            }
            lastFrequency = channelName(frequency);
            screen.progress(percent, found, lastFrequency);
        }

        @Override
        public void onScanEnded(int reason) {
            endReason.set(reason);
            ended.countDown();
        }

        @Override
        public void onServiceListChanged(int svlId, List<ListChange> changes) {
            int added = 0;
            synchronized (services) {
                for (ListChange c : changes) {
                    if (c.isAdded() && services.add(c.record())) {
                        added++;
                    }
                }
            }
            if (added > 0) {
                screen.line("    " + screen.green("+" + added + " service" + (added == 1 ? "" : "s"))
                        + screen.dim(" (records " + ScanDemo.ranges(changes.stream()
                                .filter(ListChange::isAdded).map(ListChange::record).toList())
                                + ")"));
            }
        }

        @Override
        public void onTransportStreamListChanged(int listId, List<ListChange> changes) {
            synchronized (multiplexes) {
                changes.stream().filter(ListChange::isAdded).forEach(c -> multiplexes.add(c.record()));
            }
        }
    }

    /** Neutral answers (0, "no"), except ATSC's virtual channels, which are kept. */
    private void answer(int command, String country, int[] input, int[] output) {
        questions.incrementAndGet();
        java.util.Arrays.fill(output, 0);
        if (standard == Standard.ATSC && command == ATSC_VIRTUAL_CHANNEL && input.length > 0) {
            String channel = (input[0] >>> 16) + "." + (input[0] & 0xFFFF);
            synchronized (virtualChannels) {
                virtualChannels.add(channel);
            }
            output[0] = 1;
            screen.line("    virtual channel " + screen.bold(channel));
        }
    }

    /** How a frequency is named in the standard's channel plan. */
    private String channelName(int frequency) {
        String mhz = ScanDemo.megahertz(frequency);
        long f = Integer.toUnsignedLong(frequency);
        switch (standard) {
            case ATSC:
                return "RF " + usChannel(f) + " (" + mhz + ")";
            case ISDB:
                return "UHF " + (14 + Math.round((f - 473_142_857L) / 6e6)) + " (" + mhz + ")";
            case DTMB:
                long m = f / 1_000_000;
                return "DS-" + (m <= 562 ? 13 + (m - 474) / 8 : 25 + (m - 610) / 8) + " (" + mhz + ")";
            default:
                return mhz;
        }
    }

    private static long usChannel(long hz) {
        long mhz = hz / 1_000_000;
        if (mhz >= 473) {
            return 14 + (mhz - 473) / 6;
        }
        if (mhz >= 177) {
            return 7 + (mhz - 177) / 6;
        }
        return mhz >= 79 ? 5 + (mhz - 79) / 6 : 2 + (mhz - 57) / 6;
    }

    private static int byChannelNumber(String a, String b) {
        String[] x = a.split("\\.");
        String[] y = b.split("\\.");
        int c = Integer.compare(Integer.parseInt(x[0]), Integer.parseInt(y[0]));
        return c != 0 ? c : Integer.compare(Integer.parseInt(x[1]), Integer.parseInt(y[1]));
    }

    // ---- the end ----

    private void summary(double seconds) {
        int reason = endReason.get();
        screen.line("");
        screen.line(screen.bold(reason == ZelTvScanEngine.END_COMPLETE ? screen.green("Scan complete")
                : "Scan ended (reason " + reason + ")"));
        synchronized (services) {
            fact("services", screen.bold(Integer.toString(services.size())));
        }
        synchronized (multiplexes) {
            fact("multiplexes", Integer.toString(multiplexes.size()));
        }
        synchronized (tuned) {
            if (!tuned.isEmpty()) {
                fact("tuned", tuned.size() == 1 ? "1 frequency, " + channelName(tuned.get(0))
                        : tuned.size() + " frequencies, " + channelName(tuned.get(0)) + " to "
                                + channelName(tuned.get(tuned.size() - 1)));
            }
        }
        standardSummary();
        fact("questions", questions.get() + " answered for the builder");
        fact("time", String.format(Locale.ROOT, "%.1f s", seconds));
        screen.line("");
    }

    private void standardSummary() {
        switch (standard) {
            case DVBC:
                fact("network", networkName == null ? "no name reported" : networkName);
                synchronized (unlocked) {
                    List<String> mhz = new ArrayList<>();
                    unlocked.forEach(f -> mhz.add(ScanDemo.megahertz(f)));
                    fact("no lock", unlocked.isEmpty() ? "none" : String.join(", ", mhz));
                }
                break;
            case ATSC:
                synchronized (virtualChannels) {
                    fact("virtual", virtualChannels.size() + " channels: "
                            + String.join(" ", virtualChannels));
                }
                break;
            default:
                break;
        }
    }

    private int finish(ZelTvScanEngine engine, ZelTvScanConfig config, int code, String problem) {
        screen.endProgress();
        if (problem != null) {
            screen.error("scan demo: " + problem);
        }
        if (engine != null) {
            if (engine.isValid()) {
                engine.close();
            }
            engine.release();
        }
        if (config != null) {
            config.release();
        }
        if (code == 0) {
            screen.line(screen.dim("Closed and released. Bye."));
        }
        return code;
    }

    private void fact(String label, String value) {
        screen.line(String.format(Locale.ROOT, "  %-11s %s", label, value));
    }
}
