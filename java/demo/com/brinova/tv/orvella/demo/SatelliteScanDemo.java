package com.brinova.tv.orvella.demo;

import com.brinova.tv.orvella.services.scan.ZelTvDvbsConfigBase;
import com.brinova.tv.orvella.services.scan.ZelTvDvbsSatellite;
import com.brinova.tv.orvella.services.scan.ZelTvDvbsSatelliteConfig;
import com.brinova.tv.orvella.services.scan.ZelTvDvbsSatelliteSettings;
import com.brinova.tv.orvella.services.scan.ZelTvDvbsScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvDvbsScanSettings;
import com.brinova.tv.orvella.services.scan.ZelTvScanEngine;
import com.brinova.tv.orvella.services.scan.ZelTvScanException;
import com.brinova.tv.orvella.services.scan.ZelTvScanExtension;
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
 * <p>With {@code --service} the scan takes an operator service or a dish installation
 * along: Fastscan (the operators' channel lists), TKGS (the Turkish channel-list service),
 * HD+ (its service guide) or the installation of a multi-input dish. A service may scan
 * more than once, as a receiver does: first to learn what is offered, then to install what
 * was chosen. Choices are asked on a terminal; without one, or with {@code --auto}, a rule
 * decides and the demo says which.
 *
 * <p>Usage: {@code SatelliteScanDemo --satellites FILE [--scan satellite|network|single]
 * [--single-satellite] [--service fastscan|tkgs|hdplus|installation]
 * [--installed NWID,SUBLIST,VERSION] [--auto] [--timeout SECONDS]}. The satellite database is
 * the satellite table of a scenario file (a TV has the same public transponder charts built
 * in).
 */
public final class SatelliteScanDemo {
    private static final int SVL_ID = 1;
    private static final String USAGE = "usage: SatelliteScanDemo --satellites FILE"
            + " [--scan satellite|network|single] [--single-satellite]"
            + " [--service fastscan|tkgs|hdplus|installation] [--installed NWID,SUBLIST,VERSION]"
            + " [--auto] [--timeout SECONDS]";

    /** An operator service or installation shown around one or more scans. */
    interface Service {
        /** Runs the service's scans; returns the demo's exit code. */
        int run(SatelliteScanDemo demo);
    }

    private final Screen screen = new Screen(System.console() != null);
    private final Choice choice;
    private final List<ZelTvDvbsSatellite> satellites;
    private final ZelTvDvbsSatellite satellite;
    private final String scan;
    private final boolean singleSatellite;
    private final long timeoutSeconds;

    private SatelliteScanDemo(List<ZelTvDvbsSatellite> satellites, String scan,
            boolean singleSatellite, long timeoutSeconds, boolean auto) {
        this.satellites = satellites;
        this.satellite = satellites.get(0);
        this.scan = scan;
        this.singleSatellite = singleSatellite;
        this.timeoutSeconds = timeoutSeconds;
        boolean ask = screen.isTerminal() && !auto;
        // During a scan nothing is asked: a line typed then is not an answer and is dropped.
        this.choice = new Choice(screen, ask ? new Input(System.console(), () -> {}) : null);
    }

    public static void main(String[] args) {
        String file = null;
        String scan = "satellite";
        String service = null;
        String installed = null;
        boolean single = false;
        boolean auto = false;
        long timeout = 300;
        for (int i = 0; i < args.length; i++) {
            switch (args[i]) {
                case "--satellites" -> file = value(args, ++i);
                case "--scan" -> scan = value(args, ++i);
                case "--single-satellite" -> single = true;
                case "--service" -> service = value(args, ++i);
                case "--installed" -> installed = value(args, ++i);
                case "--auto" -> auto = true;
                case "--timeout" -> timeout = Long.parseLong(value(args, ++i));
                default -> usage("unknown option " + args[i]);
            }
        }
        if (file == null || !List.of("satellite", "network", "single").contains(scan)) {
            usage(file == null ? "--satellites is needed" : "no such scan: " + scan);
        }
        int code;
        try {
            Service chosen = service == null ? null : service(service, installed);
            List<ZelTvDvbsSatellite> list = readSatellites(Path.of(file));
            code = new SatelliteScanDemo(list, scan, single, timeout, auto).run(chosen);
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

    private static Service service(String name, String installed) {
        if (installed != null && !name.equals("fastscan")) {
            throw new IllegalArgumentException("--installed belongs to --service fastscan");
        }
        return switch (name) {
            case "fastscan" -> new FastscanService(installed == null ? null
                    : FastscanService.Installed.parse(installed));
            case "tkgs" -> new TkgsService();
            case "hdplus" -> new HdPlusService();
            case "installation" -> new InstallationService();
            default -> throw new IllegalArgumentException("no such service: " + name);
        };
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

    private int run(Service service) {
        screen.line(screen.bold("Orvella satellite scan demo"));
        fact("satellite", satellite + ", universal LNB 9750/10600 MHz, switch 11700 MHz");
        fact("database", satellite.getTransponders().size() + " transponders");
        if (service != null) {
            fact("choices", choice.asksUser() ? "asked on this terminal" : "by rule");
        }
        int code = service != null ? service.run(this) : plainScan();
        if (code == 0) {
            screen.line(screen.dim("Closed and released. Bye."));
        }
        return code;
    }

    private int plainScan() {
        ZelTvDvbsScanSettings settings = singleSatellite ? null : settings("DEU", "deu");
        Pass pass = scan(singleSatellite ? "single-satellite configuration" : scan + " scan",
                settings, List.of());
        if (pass.ran()) {
            summary(pass);
        }
        return pass.exitCode();
    }

    /** Settings of the demo's scan kind on the database's first satellite. */
    ZelTvDvbsScanSettings settings(String country, String language) {
        ZelTvDvbsScanSettings settings = new ZelTvDvbsScanSettings(country, language, satellite)
                .setServiceUpdateType(ZelTvDvbsScanSettings.UPDATE_TYPE_REPLACE);
        ZelTvDvbsSatellite.Transponder home = satellite.getTransponder(0);
        if (scan.equals("network")) {
            settings.setTransponder(ZelTvDvbsScanSettings.SCAN_TYPE_NETWORK, home);
        } else if (scan.equals("single")) {
            settings.setTransponder(ZelTvDvbsScanSettings.SCAN_TYPE_SINGLE_TRANSPONDER, home);
        }
        return settings;
    }

    /**
     * Runs one scan on a new engine: configure, add the extensions, start, wait for the end,
     * close and release. Without settings it scans with the single-satellite configuration.
     */
    Pass scan(String title, ZelTvDvbsScanSettings settings,
            List<? extends ZelTvScanExtension> extensions) {
        Pass pass = new Pass();
        ZelTvScanEngine engine = null;
        ZelTvDvbsConfigBase config = null;
        try {
            engine = new ZelTvScanEngine(new ScanDemo.DemoPipeline("satellite tuner 0"));
            engine.setListener(pass);
            config = settings == null ? satelliteConfig() : operatorConfig(settings, pass);
            config.setSatellites(satellites);
            if (!ok("configure", engine.configure(config, SVL_ID))) {
                finish(engine, config, false);
                return pass;
            }
            if (!added(engine, extensions)) {
                finish(engine, config, true);
                return pass;
            }
            screen.line(screen.bold("Scanning") + screen.dim(" " + screen.dot() + " DVB-S, "
                    + title));
            long started = System.nanoTime();
            if (ok("start", engine.start())) {
                pass.await(timeoutSeconds, engine);
            }
            pass.seconds = (System.nanoTime() - started) / 1e9;
            pass.released = finish(engine, config, true);
        } catch (ZelTvScanException e) {
            screen.error("satellite demo: " + e.getMessage());
            finish(engine, config, false);
        } catch (InterruptedException e) {
            Thread.currentThread().interrupt();
            finish(engine, config, true);
        }
        return pass;
    }

    private boolean added(ZelTvScanEngine engine, List<? extends ZelTvScanExtension> extensions) {
        for (ZelTvScanExtension extension : extensions) {
            if (!ok("add " + extension.getClass().getSimpleName(),
                    engine.addExtension(extension))) {
                return false;
            }
        }
        return true;
    }

    private ZelTvDvbsConfigBase operatorConfig(ZelTvDvbsScanSettings settings, Pass pass) {
        fact("settings", settings.toString());
        ZelTvDvbsScanConfig c = new ZelTvDvbsScanConfig(settings);
        c.setSatelliteScanListener(pass);
        return c;
    }

    private ZelTvDvbsConfigBase satelliteConfig() {
        ZelTvDvbsSatelliteSettings settings = new ZelTvDvbsSatelliteSettings("TUR", 0,
                ZelTvDvbsScanSettings.SCAN_TYPE_SATELLITE, satellite.getIdText(), "0,0", null);
        fact("settings", settings.toString());
        return new ZelTvDvbsSatelliteConfig(settings);
    }

    /** What one scan reported, from the event thread and the builder's threads. */
    final class Pass implements ZelTvScanEngine.Listener,
            ZelTvDvbsScanConfig.SatelliteScanListener {
        private final CountDownLatch ended = new CountDownLatch(1);
        private final AtomicInteger endReason = new AtomicInteger();
        private final AtomicInteger tuned = new AtomicInteger();
        private final int[] added = new int[3]; // tv, radio, app; guarded by itself
        private volatile String orbitSlot = "not reported";
        private volatile String serviceCount = "not reported";
        private volatile List<String> categories = List.of();
        private volatile boolean timedOut;
        private volatile boolean released;
        private volatile double seconds;

        private void await(long timeout, ZelTvScanEngine engine) throws InterruptedException {
            if (!ended.await(timeout, TimeUnit.SECONDS)) {
                screen.error("satellite demo: no end of scan after " + timeout + " s");
                timedOut = true;
                engine.cancel();
            }
        }

        /** Whether the scan ran to its end and everything was closed and released. */
        boolean complete() {
            return exitCode() == 0;
        }

        /** Whether the scan was started and ended (completely or not). */
        boolean ran() {
            return ended.getCount() == 0 && !timedOut;
        }

        /** 0 complete, 3 no end in time, 1 anything else. */
        int exitCode() {
            if (timedOut) {
                return 3;
            }
            return ran() && released && endReason.get() == ZelTvScanEngine.END_COMPLETE ? 0 : 1;
        }

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

    /** The scan's summary: what the configuration heard, under a heading. */
    void summary(Pass pass) {
        screen.line("");
        screen.line(screen.bold("Summary") + screen.dim(String.format(" (%.1f s)", pass.seconds)));
        fact("satellite", satellite.toString());
        fact("orbit slot", singleSatellite ? "not asked for by this configuration"
                : pass.orbitSlot);
        fact("transponders", pass.tuned.get() + " tuned");
        synchronized (pass.added) {
            fact("services", singleSatellite ? "reported through the channel lists"
                    : pass.added[0] + " TV, " + pass.added[1] + " radio, " + pass.added[2]
                            + " data added");
        }
        fact("builder count", pass.serviceCount);
        if (!pass.categories.isEmpty()) {
            fact("categories", String.join(", ", pass.categories));
        }
        fact("end", pass.endReason.get() == ZelTvScanEngine.END_COMPLETE ? "complete"
                : "reason " + pass.endReason.get());
    }

    /** Closes and releases; whether all of it succeeded. */
    private boolean finish(ZelTvScanEngine engine, ZelTvDvbsConfigBase config, boolean close) {
        boolean result = true;
        if (engine != null) {
            result = !close || ok("close", engine.close());
            result &= ok("release engine", engine.release());
        }
        // The configuration goes last: the engine used it until it was closed.
        if (config != null) {
            result &= ok("release configuration", config.release());
        }
        return result;
    }

    private boolean ok(String what, int status) {
        if (status != 0) {
            screen.error("satellite demo: " + what + " failed with status " + status);
        }
        return status == 0;
    }

    // ---- for the services ----

    Screen screen() {
        return screen;
    }

    Choice choice() {
        return choice;
    }

    /** The scanned satellite: the first of the database. */
    ZelTvDvbsSatellite satellite() {
        return satellite;
    }

    /** One "name  value" line. */
    void fact(String name, String value) {
        screen.line(String.format("  %-14s %s", name, value));
    }
}
