package com.brinova.tv.orvella.demo;

import com.brinova.tv.orvella.services.scan.ZelTvDvbsConfigBase;
import com.brinova.tv.orvella.services.scan.ZelTvDvbsSatellite;
import com.brinova.tv.orvella.services.scan.ZelTvDvbsSatelliteConfig;
import com.brinova.tv.orvella.services.scan.ZelTvDvbsSatelliteSettings;
import com.brinova.tv.orvella.services.scan.ZelTvDvbsScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvDvbsScanSettings;
import com.brinova.tv.orvella.services.scan.ZelTvScanEngine;
import com.brinova.tv.orvella.services.scan.ZelTvScanException;
import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.concurrent.CountDownLatch;
import java.util.concurrent.TimeUnit;
import java.util.concurrent.atomic.AtomicInteger;
import java.util.regex.MatchResult;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/**
 * A satellite (DVB-S) channel scan through the scan library: the satellite and its LNB, the
 * transponders as the builder tunes them, the orbit slot it reports, the services it finds
 * by kind, and a summary.
 *
 * <p>Usage: {@code SatelliteScanDemo --satellites FILE [--scan satellite|network|single]
 * [--single-satellite] [--timeout SECONDS]}. The satellite database is the satellite table
 * of a scenario file (a TV has the same public transponder charts built in).
 */
public final class SatelliteScanDemo {
    private static final int SVL_ID = 1;
    private static final String USAGE = "usage: SatelliteScanDemo --satellites FILE"
            + " [--scan satellite|network|single] [--single-satellite] [--timeout SECONDS]";

    private final Screen screen = new Screen(System.console() != null);
    private final List<ZelTvDvbsSatellite> satellites;
    private final ZelTvDvbsSatellite satellite;
    private final String scan;
    private final boolean singleSatellite;
    private final long timeoutSeconds;

    private final CountDownLatch ended = new CountDownLatch(1);
    private final AtomicInteger endReason = new AtomicInteger();
    private final AtomicInteger tuned = new AtomicInteger();
    private final int[] added = new int[3]; // tv, radio, app; guarded by itself
    private volatile String orbitSlot = "not reported";
    private volatile String serviceCount = "not reported";
    private volatile List<String> categories = List.of();

    private SatelliteScanDemo(List<ZelTvDvbsSatellite> satellites, String scan,
            boolean singleSatellite, long timeoutSeconds) {
        this.satellites = satellites;
        this.satellite = satellites.get(0);
        this.scan = scan;
        this.singleSatellite = singleSatellite;
        this.timeoutSeconds = timeoutSeconds;
    }

    public static void main(String[] args) {
        String file = null;
        String scan = "satellite";
        boolean single = false;
        long timeout = 300;
        for (int i = 0; i < args.length; i++) {
            switch (args[i]) {
                case "--satellites" -> file = value(args, ++i);
                case "--scan" -> scan = value(args, ++i);
                case "--single-satellite" -> single = true;
                case "--timeout" -> timeout = Long.parseLong(value(args, ++i));
                default -> usage("unknown option " + args[i]);
            }
        }
        if (file == null || !List.of("satellite", "network", "single").contains(scan)) {
            usage(file == null ? "--satellites is needed" : "no such scan: " + scan);
        }
        int code;
        try {
            List<ZelTvDvbsSatellite> list = readSatellites(Path.of(file));
            code = new SatelliteScanDemo(list, scan, single, timeout).run();
        } catch (IOException | IllegalArgumentException e) {
            System.err.println("satellite demo: " + e.getMessage());
            code = 2;
        } catch (UnsatisfiedLinkError e) {
            System.err.println("satellite demo: the scan library could not be loaded: "
                    + e.getMessage());
            code = 1;
        }
        System.exit(code);
    }

    private static String value(String[] args, int i) {
        if (i >= args.length) {
            usage(args[i - 1] + " needs a value");
        }
        return args[i];
    }

    private static void usage(String problem) {
        System.err.println("satellite demo: " + problem);
        System.err.println(USAGE);
        System.exit(2);
    }

    private static final Pattern SATELLITE = Pattern.compile("\"name\"\\s*:\\s*\"([^\"]+)\"\\s*,"
            + "\\s*\"orbit\"\\s*:\\s*(-?\\d+)\\s*,\\s*\"sat_id\"\\s*:\\s*(\\d+)\\s*,"
            + "\\s*\"rec_id\"\\s*:\\s*(\\d+)");
    private static final Pattern TRANSPONDER = Pattern.compile("\"freq\"\\s*:\\s*(\\d+)\\s*,"
            + "\\s*\"pol\"\\s*:\\s*\"([HV])\"\\s*,\\s*\"sr\"\\s*:\\s*(\\d+)\\s*,"
            + "\\s*\"ts_id\"\\s*:\\s*(\\d+)");

    /** The satellites of a scenario's satellite table, each with the transponders after it. */
    static List<ZelTvDvbsSatellite> readSatellites(Path file) throws IOException {
        String text = Files.readString(file);
        List<ZelTvDvbsSatellite> out = new ArrayList<>();
        List<MatchResult> found = new ArrayList<>();
        for (Matcher sat = SATELLITE.matcher(text); sat.find(); ) {
            found.add(sat.toMatchResult());
        }
        for (int s = 0; s < found.size(); s++) {
            MatchResult m = found.get(s);
            int end = s + 1 < found.size() ? found.get(s + 1).start() : text.length();
            Matcher tp = TRANSPONDER.matcher(text).region(m.end(), end);
            List<ZelTvDvbsSatellite.Transponder> tps = new ArrayList<>();
            while (tp.find()) {
                tps.add(new ZelTvDvbsSatellite.Transponder(Integer.parseInt(tp.group(1)),
                        "V".equals(tp.group(2)) ? ZelTvDvbsSatellite.POL_VERTICAL
                                : ZelTvDvbsSatellite.POL_HORIZONTAL,
                        Integer.parseInt(tp.group(3)), Integer.parseInt(tp.group(4))));
            }
            out.add(new ZelTvDvbsSatellite(Integer.parseInt(m.group(3)),
                    Integer.parseInt(m.group(4)), m.group(1), Integer.parseInt(m.group(2)),
                    ZelTvDvbsSatellite.LNB_UNIVERSAL, tps));
        }
        if (out.isEmpty() || out.get(0).getTransponders().isEmpty()) {
            throw new IllegalArgumentException(file + " has no satellite table");
        }
        return out;
    }

    private int run() {
        screen.line(screen.bold("Orvella satellite scan demo"));
        fact("satellite", satellite + ", universal LNB 9750/10600 MHz, switch 11700 MHz");
        fact("database", satellite.getTransponders().size() + " transponders");
        ZelTvScanEngine engine = null;
        ZelTvDvbsConfigBase config = null;
        try {
            engine = new ZelTvScanEngine(new ScanDemo.DemoPipeline("satellite tuner 0"));
            engine.setListener(new EngineListener());
            config = singleSatellite ? satelliteConfig() : operatorConfig();
            config.setSatellites(satellites);
            if (!ok("configure", engine.configure(config, SVL_ID))) {
                return finish(engine, config, false, 1);
            }
            screen.line(screen.bold("Scanning") + screen.dim(" " + screen.dot() + " DVB-S, "
                    + (singleSatellite ? "single-satellite configuration" : scan + " scan")));
            long started = System.nanoTime();
            if (!ok("start", engine.start())) {
                return finish(engine, config, true, 1);
            }
            if (!ended.await(timeoutSeconds, TimeUnit.SECONDS)) {
                screen.error("satellite demo: no end of scan after " + timeoutSeconds + " s");
                engine.cancel();
                return finish(engine, config, true, 3);
            }
            summary((System.nanoTime() - started) / 1e9);
            return finish(engine, config, true, endReason.get() == ZelTvScanEngine.END_COMPLETE
                    ? 0 : 1);
        } catch (ZelTvScanException e) {
            screen.error("satellite demo: " + e.getMessage());
            return finish(engine, config, false, 1);
        } catch (InterruptedException e) {
            Thread.currentThread().interrupt();
            return finish(engine, config, true, 1);
        }
    }

    private ZelTvDvbsConfigBase operatorConfig() {
        ZelTvDvbsScanSettings settings = new ZelTvDvbsScanSettings("DEU", "deu", satellite)
                .setServiceUpdateType(ZelTvDvbsScanSettings.UPDATE_TYPE_REPLACE);
        ZelTvDvbsSatellite.Transponder home = satellite.getTransponder(0);
        if (scan.equals("network")) {
            settings.setTransponder(ZelTvDvbsScanSettings.SCAN_TYPE_NETWORK, home);
        } else if (scan.equals("single")) {
            settings.setTransponder(ZelTvDvbsScanSettings.SCAN_TYPE_SINGLE_TRANSPONDER, home);
        }
        fact("settings", settings.toString());
        ZelTvDvbsScanConfig c = new ZelTvDvbsScanConfig(settings);
        c.setSatelliteScanListener(new SatelliteListener());
        return c;
    }

    private ZelTvDvbsConfigBase satelliteConfig() {
        ZelTvDvbsSatelliteSettings settings = new ZelTvDvbsSatelliteSettings("TUR", 0,
                ZelTvDvbsScanSettings.SCAN_TYPE_SATELLITE, satellite.getIdText(), "0,0", null);
        fact("settings", settings.toString());
        return new ZelTvDvbsSatelliteConfig(settings);
    }

    private final class EngineListener implements ZelTvScanEngine.Listener {
        @Override
        public void onFrequency(int frequencyMhz) {
            ZelTvDvbsSatellite.Transponder tp = null;
            for (ZelTvDvbsSatellite.Transponder t : satellite.getTransponders()) {
                tp = tp == null && Math.abs(t.getFrequency() - frequencyMhz) <= 2 ? t : tp;
            }
            int n = tuned.incrementAndGet();
            screen.line(String.format("  %3d  %s", n, tp == null ? frequencyMhz + " MHz"
                    : tp.getFrequency() + " MHz  " + ZelTvDvbsSatellite.polarizationName(
                            tp.getPolarization()) + "  " + tp.getSymbolRate() + " kBd"));
        }

        @Override
        public void onScanEnded(int reason) {
            endReason.set(reason);
            ended.countDown();
        }
    }

    private final class SatelliteListener implements ZelTvDvbsScanConfig.SatelliteScanListener {
        @Override
        public void onServiceUpdate(ZelTvDvbsScanConfig.ServiceUpdate u) {
            synchronized (added) {
                added[0] += u.tvAdded();
                added[1] += u.radioAdded();
                added[2] += u.appAdded();
            }
        }

        @Override
        public void onOrbitSlot(String satelliteId, int orbit) {
            orbitSlot = ZelTvDvbsSatellite.orbitName(orbit) + " (satellite " + satelliteId + ")";
            screen.line(screen.cyan("  orbit slot " + orbitSlot));
        }

        @Override
        public void onServiceCount(int tv, int radio, int app) {
            serviceCount = tv + " TV, " + radio + " radio, " + app + " data";
        }

        @Override
        public void onCategories(List<String> names) {
            categories = names;
        }
    }

    private void summary(double seconds) {
        screen.line("");
        screen.line(screen.bold("Summary") + screen.dim(String.format(" (%.1f s)", seconds)));
        fact("satellite", satellite.toString());
        fact("orbit slot", singleSatellite ? "not asked for by this configuration" : orbitSlot);
        fact("transponders", tuned.get() + " tuned");
        synchronized (added) {
            fact("services", singleSatellite ? "reported through the channel lists"
                    : added[0] + " TV, " + added[1] + " radio, " + added[2] + " data added");
        }
        fact("builder count", serviceCount);
        if (!categories.isEmpty()) {
            fact("categories", String.join(", ", categories));
        }
        fact("end", endReason.get() == ZelTvScanEngine.END_COMPLETE ? "complete"
                : "reason " + endReason.get());
    }

    private int finish(ZelTvScanEngine engine, ZelTvDvbsConfigBase config, boolean close,
            int code) {
        int result = code;
        if (engine != null) {
            result = close && !ok("close", engine.close()) && result == 0 ? 1 : result;
            result = !ok("release engine", engine.release()) && result == 0 ? 1 : result;
        }
        // The configuration goes last: the engine used it until it was closed.
        if (config != null && !ok("release configuration", config.release()) && result == 0) {
            result = 1;
        }
        if (result == 0) {
            screen.line(screen.dim("Closed and released. Bye."));
        }
        return result;
    }

    private boolean ok(String what, int status) {
        if (status != 0) {
            screen.error("satellite demo: " + what + " failed with status " + status);
        }
        return status == 0;
    }

    private void fact(String name, String value) {
        screen.line(String.format("  %-14s %s", name, value));
    }
}
