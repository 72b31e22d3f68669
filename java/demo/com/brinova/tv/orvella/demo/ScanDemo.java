package com.brinova.tv.orvella.demo;

import com.brinova.tv.orvella.services.scan.ZelTvDvbtScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvDvbtScanSettings;
import com.brinova.tv.orvella.services.scan.ZelTvNameSorting;
import com.brinova.tv.orvella.services.scan.ZelTvScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvScanEngine;
import com.brinova.tv.orvella.services.scan.ZelTvScanEngine.ListChange;
import com.brinova.tv.orvella.services.scan.ZelTvScanException;
import com.brinova.tv.orvella.services.scan.ZelTvScanExtension;
import com.brinova.tv.orvella.services.scan.ZelTvScanFavNetwork;
import com.brinova.tv.orvella.services.scan.ZelTvScanLcnConflict;
import com.brinova.tv.orvella.services.scan.ZelTvScanLcnV2ChannelList;
import com.brinova.tv.orvella.services.scan.ZelTvScanTargetRegion;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.LinkedHashSet;
import java.util.List;
import java.util.Locale;
import java.util.Set;
import java.util.TreeSet;
import java.util.concurrent.CountDownLatch;
import java.util.concurrent.TimeUnit;
import java.util.concurrent.atomic.AtomicBoolean;
import java.util.concurrent.atomic.AtomicInteger;

/**
 * A terrestrial (DVB-T) channel scan from start to end through the scan library: engine,
 * configuration, the five terrestrial extensions, progress, the services as they are found,
 * the decisions at the end of the scan, and a summary.
 *
 * <p>Usage: {@code ScanDemo [--auto] [--timeout SECONDS] [--cancel-after SECONDS]}. On a
 * terminal, Enter cancels the running scan. The scan builder it talks to is
 * whatever the library is linked against (on a host, the simulator with the scenario named
 * by {@code ZEL_SIM_SCENARIO}); {@code scripts/demo.sh} sets everything up.
 */
public final class ScanDemo {
    private static final int SVL_ID = 1;
    private static final long DEFAULT_TIMEOUT_SECONDS = 300;
    /** How long the builder may stay silent before the demo says how to cancel. */
    private static final long QUIET_HINT_NANOS = TimeUnit.SECONDS.toNanos(3);
    private static final String USAGE = "usage: ScanDemo [--standard dvbt|dvbc|dtmb|atsc|cqam|isdb]"
            + " [--auto] [--timeout SECONDS] [--cancel-after SECONDS]";

    /** Names the builder sorts services by: the demo's own preference, sent before the scan. */
    private static final List<ZelTvNameSorting.Entry> NAME_LIST = List.of(
            new ZelTvNameSorting.Entry(1, "BBC ONE"),
            new ZelTvNameSorting.Entry(2, "BBC TWO"),
            new ZelTvNameSorting.Entry(3, "ITV1"),
            new ZelTvNameSorting.Entry(4, "Channel 4"),
            new ZelTvNameSorting.Entry(5, "Channel 5"));

    /** The tuner pipeline the engine scans with; the library only needs an object. */
    record DemoPipeline(String tuner) {}

    private final Screen screen;
    private final Decisions decisions;
    private final String decisionMode;
    private final long timeoutSeconds;
    private final long cancelAfterSeconds; // 0: never

    // What the scan reported, from the event thread and the builder's threads.
    private final CountDownLatch ended = new CountDownLatch(1);
    private final AtomicInteger endReason = new AtomicInteger();
    private final AtomicInteger builderAdded = new AtomicInteger();
    private final AtomicInteger builderDeleted = new AtomicInteger();
    private final Set<Integer> services = new TreeSet<>();
    private final Set<Integer> multiplexes = new TreeSet<>();
    private final Set<Integer> networks = new TreeSet<>();
    private final Set<Integer> frequencies = new LinkedHashSet<>();
    private final AtomicInteger commandsAnswered = new AtomicInteger();
    private final AtomicInteger lastBuilderStatus = new AtomicInteger(-1);
    private volatile int progressServices;
    private volatile int progressPercent;
    private volatile String lastFrequency;
    private volatile long lastEventNanos = System.nanoTime();
    // Cancelling: asked for by a typed line or --cancel-after, carried out by the main thread.
    private volatile boolean scanning;
    private final AtomicBoolean cancelRequested = new AtomicBoolean();

    private ScanDemo(boolean auto, long timeoutSeconds, long cancelAfterSeconds) {
        boolean terminal = System.console() != null;
        this.screen = new Screen(terminal);
        Input input = terminal ? new Input(System.console(), this::onTypedLine) : null;
        boolean interactive = terminal && !auto;
        this.decisions = new Decisions(screen, interactive ? input : null);
        this.decisionMode = interactive ? "asked on this terminal"
                : auto ? "by rule (--auto)" : "by rule (no terminal to ask on)";
        this.timeoutSeconds = timeoutSeconds;
        this.cancelAfterSeconds = cancelAfterSeconds;
    }

    public static void main(String[] args) {
        boolean auto = false;
        long timeout = DEFAULT_TIMEOUT_SECONDS;
        long cancelAfter = 0;
        String standard = "dvbt";
        for (int i = 0; i < args.length; i++) {
            switch (args[i]) {
                case "--standard":
                    standard = ++i < args.length ? args[i] : "";
                    break;
                case "--auto":
                    auto = true;
                    break;
                case "--timeout":
                    timeout = seconds(args, ++i, "--timeout");
                    break;
                case "--cancel-after":
                    cancelAfter = seconds(args, ++i, "--cancel-after");
                    break;
                case "--help":
                case "-h":
                    System.out.println(USAGE);
                    System.exit(0);
                    break;
                default:
                    usage("unknown option " + args[i]);
            }
        }
        double scale = timeScale();
        long scaled = Math.max(1, (long) Math.ceil(timeout * Math.max(1.0, scale)));
        int code;
        try {
            code = standard.equals("dvbt") ? new ScanDemo(auto, scaled, cancelAfter).run()
                    : runStandard(standard, scaled);
        } catch (UnsatisfiedLinkError e) {
            System.err.println("scan demo: the scan library could not be loaded: " + e.getMessage());
            code = 1;
        }
        System.exit(code);
    }

    /** The scans of the other terrestrial and cable standards. */
    private static int runStandard(String name, long timeoutSeconds) {
        StandardDemo.Standard standard = null;
        try {
            standard = StandardDemo.Standard.of(name);
        } catch (IllegalArgumentException unknown) {
            usage("unknown standard " + name);
        }
        String scenario = System.getenv("ZEL_SIM_SCENARIO");
        String scenarioName = scenario == null ? null
                : scenario.replaceAll(".*/", "").replaceAll("\\.json$", "");
        return new StandardDemo(standard, scenarioName, new Screen(System.console() != null),
                timeoutSeconds).run();
    }

    private static long seconds(String[] args, int i, String option) {
        if (i >= args.length) {
            usage(option + " needs a number of seconds");
        }
        try {
            long value = Long.parseLong(args[i]);
            if (value > 0) {
                return value;
            }
        } catch (NumberFormatException notANumber) {
            // reported below
        }
        usage(option + " needs a positive number of seconds, not " + args[i]);
        return 0;
    }

    private static void usage(String problem) {
        System.err.println("scan demo: " + problem);
        System.err.println(USAGE);
        System.exit(2);
    }

    private static double timeScale() {
        String value = System.getenv("ZEL_SIM_TIME_SCALE");
        if (value == null || value.isBlank()) {
            return 1.0;
        }
        try {
            return Double.parseDouble(value.trim());
        } catch (NumberFormatException e) {
            return 1.0;
        }
    }

    private int run() {
        header();
        ZelTvScanEngine engine = null;
        ZelTvDvbtScanConfig config = null;
        boolean configured = false;
        try {
            engine = new ZelTvScanEngine(new DemoPipeline("terrestrial tuner 0"));
            engine.setListener(new EngineListener());
            fact("pipeline", "handle 0x" + Integer.toHexString(engine.getPipelineHandle()));

            ZelTvDvbtScanSettings settings = new ZelTvDvbtScanSettings("GBR", "eng",
                    ZelTvDvbtScanSettings.SCAN_TYPE_FULL, ZelTvDvbtScanSettings.UPDATE_TYPE_REPLACE);
            config = new ZelTvDvbtScanConfig(settings);
            config.setScanMapsHandler(this::answerScanMaps);
            config.setStatusListener(this::onBuilderStatus);
            config.setServiceUpdateListener(this::onServiceUpdate);

            ZelTvNameSorting nameSorting = new ZelTvNameSorting();
            ZelTvScanFavNetwork favNetwork = new ZelTvScanFavNetwork();
            favNetwork.setChooser(decisions::chooseFavouriteNetwork);
            ZelTvScanTargetRegion targetRegion = new ZelTvScanTargetRegion();
            targetRegion.setChooser(decisions::chooseTargetRegion);
            ZelTvScanLcnV2ChannelList channelList = new ZelTvScanLcnV2ChannelList();
            channelList.setChooser(decisions::chooseChannelList);
            ZelTvScanLcnConflict lcnConflict = new ZelTvScanLcnConflict();
            lcnConflict.setHandler(decisions.conflictHandler());

            if (!ok("configure", engine.configure(config, SVL_ID))) {
                return finish(engine, config, false, 1);
            }
            configured = true;
            // The name list and any preselection reach the builder when the extension is
            // added, so they come first; this demo preselects nothing.
            if (!ok("name list", nameSorting.setNameList(NAME_LIST))) {
                return finish(engine, config, true, 1);
            }
            fact("name list", NAME_LIST.size() + " names sent for sorting ("
                    + NAME_LIST.get(0).name() + " first)");
            // Decisions are asked in the order of adding: network, region, numbering, conflicts.
            List<ZelTvScanExtension> extensions = List.of(nameSorting, favNetwork, targetRegion,
                    channelList, lcnConflict);
            for (ZelTvScanExtension extension : extensions) {
                if (!ok("add " + extension.getClass().getSimpleName(),
                        engine.addExtension(extension))) {
                    return finish(engine, config, true, 1);
                }
            }
            fact("extensions", "name sorting, favourite network, target region, "
                    + "LCN v2 channel list, LCN conflict");
            fact("decisions", decisionMode);
            if (screen.isTerminal()) {
                fact("cancel", "press Enter during the scan");
            } else if (cancelAfterSeconds > 0) {
                fact("cancel", "after " + cancelAfterSeconds + " s (--cancel-after)");
            }
            screen.line("");

            long started = System.nanoTime();
            screen.line(screen.bold("Scanning") + screen.dim(" " + screen.dot() + " DVB-T, GBR"));
            screen.progress(0, 0, null);
            scanning = true;
            lastEventNanos = System.nanoTime();
            int startStatus = engine.start();
            if (!ok("start", startStatus)) {
                scanning = false;
                screen.endProgress();
                return finish(engine, config, true, 1);
            }
            boolean endReported = awaitEnd(engine, started);
            scanning = false;
            if (!endReported) {
                screen.endProgress();
                screen.error("scan demo: no end of scan after " + timeoutSeconds
                        + " s; the scan builder never reported one. Cancelling.");
                engine.cancel();
                finish(engine, config, true, 3);
                return 3;
            }
            double seconds = (System.nanoTime() - started) / 1e9;
            screen.endProgress();
            summary(seconds, targetRegion);
            return finish(engine, config, configured, 0);
        } catch (ZelTvScanException e) {
            screen.endProgress();
            screen.error("scan demo: " + e.getMessage());
            return finish(engine, config, configured, 1);
        }
    }

    /**
     * Waits for the end of the scan, cancelling it when asked to; time spent waiting for the
     * user's decisions does not count towards the timeout.
     */
    private boolean awaitEnd(ZelTvScanEngine engine, long started) {
        long deadline = System.nanoTime() + TimeUnit.SECONDS.toNanos(timeoutSeconds);
        boolean cancelled = false;
        boolean hinted = false;
        try {
            while (!ended.await(250, TimeUnit.MILLISECONDS)) {
                long now = System.nanoTime();
                if (cancelAfterSeconds > 0
                        && now - started >= TimeUnit.SECONDS.toNanos(cancelAfterSeconds)
                        && cancelRequested.compareAndSet(false, true)) {
                    screen.line(screen.yellow("  cancelling after " + cancelAfterSeconds
                            + " s (--cancel-after)"));
                }
                if (cancelRequested.get() && !cancelled) {
                    cancelled = true;
                    int status = engine.cancel();
                    screen.line(status == 0 ? screen.yellow("  scan cancel requested")
                            : screen.red("  cancel refused with status " + status));
                }
                if (decisions.isAsking()) {
                    // Waiting for the user is neither a time-out nor a quiet builder.
                    deadline = now + TimeUnit.SECONDS.toNanos(timeoutSeconds);
                    lastEventNanos = now;
                } else if (now - deadline > 0) {
                    return false;
                }
                if (!hinted && !cancelled && now - lastEventNanos > QUIET_HINT_NANOS) {
                    hinted = true;
                    screen.line(screen.dim("  the builder is quiet; " + (screen.isTerminal()
                            ? "press Enter to cancel the scan"
                            : "--cancel-after SECONDS cancels a scan that waits")));
                }
            }
            return true;
        } catch (InterruptedException e) {
            Thread.currentThread().interrupt();
            return false;
        }
    }

    /** A line typed while no question is asked: during a scan, cancel it. */
    private void onTypedLine() {
        if (scanning && cancelRequested.compareAndSet(false, true)) {
            screen.line(screen.yellow("  cancelling the scan..."));
        }
    }

    /** Closes and releases what exists; reports statuses that are not 0. */
    private int finish(ZelTvScanEngine engine, ZelTvScanConfig config, boolean close, int code) {
        int result = code;
        if (engine != null) {
            if (close && !ok("close", engine.close())) {
                result = result == 0 ? 1 : result;
            }
            if (!ok("release engine", engine.release())) {
                result = result == 0 ? 1 : result;
            }
        }
        // The configuration goes last: the engine used it until it was closed.
        if (config != null && !ok("release configuration", config.release())) {
            result = result == 0 ? 1 : result;
        }
        if (result == 0) {
            screen.line(screen.dim("Closed and released. Bye."));
        }
        return result;
    }

    private boolean ok(String what, int status) {
        if (status == 0) {
            return true;
        }
        screen.endProgress();
        screen.error("scan demo: " + what + " failed with status " + status);
        return false;
    }

    // ---- what the library reports ----

    private final class EngineListener implements ZelTvScanEngine.Listener {
        @Override
        public void onScanStatusEvent(int kind, int value1, int value2) {
            lastEventNanos = System.nanoTime();
            ZelTvScanEngine.Listener.super.onScanStatusEvent(kind, value1, value2);
        }

        @Override
        public void onListUpdate(ZelTvScanEngine.ChannelList list, int listId, int count,
                int[] eventTypes, int[] eventRecords) {
            lastEventNanos = System.nanoTime();
            ZelTvScanEngine.Listener.super.onListUpdate(list, listId, count, eventTypes,
                    eventRecords);
        }

        @Override
        public void onProgress(int channelsFound, int percent) {
            progressServices = channelsFound;
            progressPercent = percent;
            screen.progress(percent, channelsFound, lastFrequency);
        }

        @Override
        public void onFrequency(int frequency) {
            String mhz = megahertz(frequency);
            lastFrequency = mhz;
            synchronized (frequencies) {
                frequencies.add(frequency);
            }
            screen.line("  " + screen.cyan((screen.isTerminal() ? "\u25b8 " : "> ") + mhz));
            screen.progress(progressPercent, progressServices, mhz);
        }

        @Override
        public void onScanEnded(int reason) {
            endReason.set(reason);
            ended.countDown();
        }

        @Override
        public void onServiceListChanged(int svlId, List<ListChange> changes) {
            showChanges("services", "SVL " + svlId, changes, services, "service", "services");
        }

        @Override
        public void onTransportStreamListChanged(int listId, List<ListChange> changes) {
            showChanges("multiplexes", "TSL " + listId, changes, multiplexes, "multiplex",
                    "multiplexes");
        }

        @Override
        public void onNetworkListChanged(int listId, List<ListChange> changes) {
            showChanges("networks", "NWL " + listId, changes, networks, "network", "networks");
        }
    }

    private void showChanges(String what, String list, List<ListChange> changes, Set<Integer> kept,
            String one, String many) {
        List<Integer> added = new ArrayList<>();
        List<Integer> deleted = new ArrayList<>();
        List<Integer> modified = new ArrayList<>();
        for (ListChange change : changes) {
            (change.isAdded() ? added : change.isDeleted() ? deleted : modified)
                    .add(change.record());
        }
        synchronized (kept) {
            kept.addAll(added);
            kept.removeAll(deleted);
        }
        StringBuilder text = new StringBuilder();
        appendChange(text, "+", added, one, many);
        appendChange(text, "-", deleted, one, many);
        appendChange(text, "~", modified, one, many);
        String line = "    " + screen.dim(list) + "  " + text;
        screen.line(what.equals("services") ? line : screen.dim(line));
    }

    private void appendChange(StringBuilder text, String sign, List<Integer> records, String one,
            String many) {
        if (records.isEmpty()) {
            return;
        }
        String count = sign + records.size() + " " + (records.size() == 1 ? one : many);
        text.append(text.length() == 0 ? "" : "  ")
                .append(sign.equals("+") ? screen.green(count) : count)
                .append(screen.dim(" (record" + (records.size() == 1 ? " " : "s ")
                        + ranges(records) + ")"));
    }

    private void onServiceUpdate(int added, int deleted) {
        lastEventNanos = System.nanoTime();
        builderAdded.addAndGet(added);
        builderDeleted.addAndGet(deleted);
        List<String> parts = new ArrayList<>();
        if (added != 0) {
            parts.add(screen.green("builder stored " + added + " new service"
                    + (added == 1 ? "" : "s")));
        }
        if (deleted != 0) {
            parts.add((parts.isEmpty() ? "builder removed " : "removed ") + deleted + " service"
                    + (deleted == 1 ? "" : "s"));
        }
        screen.line("    " + (parts.isEmpty() ? "builder: no change" : String.join(", ", parts)));
    }

    private void onBuilderStatus(int status) {
        // A cancel is reported twice (by the cancel and by the end of the scan); say it once.
        if (lastBuilderStatus.getAndSet(status) == status) {
            return;
        }
        screen.line(screen.dim("    builder " + screen.dot() + " "
                + (status == ZelTvScanConfig.STATUS_RUNNING ? "scan running" : "scan stopped")));
    }

    /**
     * Answers the builder's questions. The demo has no preferences of its own, so it gives
     * neutral answers: 0 for numbers, "no" for yes/no questions, no extra rules; and it shows
     * each question on one line.
     */
    private void answerScanMaps(int command, String country, int[] input, int[] output) {
        lastEventNanos = System.nanoTime();
        commandsAnswered.incrementAndGet();
        String asked;
        String answer;
        if (input.length > 3 && output.length >= 1 && (command == 27 || command == 28)) {
            asked = "name \"" + latin1(input, 3) + "\" (" + input[0] + ", " + input[1] + ", "
                    + input[2] + ")";
            answer = "0";
        } else if (command == 16) {
            asked = "scan rules";
            answer = "none";
        } else if (command == 9 || command == 10 || command == 11 || (command >= 22 && command <= 24)
                || command == 26) {
            asked = "yes/no" + inputText(input);
            answer = "no";
        } else {
            asked = "value" + inputText(input);
            answer = "0";
        }
        Arrays.fill(output, 0);
        screen.line(screen.dim("    builder asks #" + command + " " + asked + " ["
                + country + "] " + screen.arrow() + " " + answer));
    }

    private static String inputText(int[] input) {
        return input.length > 0 && input[0] != 0 ? " of 0x" + Integer.toHexString(input[0]) : "";
    }

    private static String latin1(int[] bytes, int from) {
        StringBuilder text = new StringBuilder();
        for (int i = from; i < bytes.length && bytes[i] != 0; i++) {
            text.append((char) (bytes[i] & 0xFF));
        }
        return text.toString();
    }

    // ---- presentation ----

    private void header() {
        screen.line("");
        screen.line(screen.bold("Orvella channel scan") + screen.dim(" " + screen.dot()
                + " terrestrial DVB-T demo"));
        String scenario = System.getenv("ZEL_SIM_SCENARIO");
        if (scenario != null && !scenario.isEmpty()) {
            String name = scenario.replaceAll(".*/", "").replaceAll("\\.json$", "");
            fact("scenario", name + screen.dim("  (" + scenario + ")"));
        }
        fact("settings", "country GBR, language eng, full scan, service list "
                + SVL_ID + " built anew");
    }

    private void fact(String label, String value) {
        screen.line(String.format(Locale.ROOT, "  %-11s %s", label, value));
    }

    private void summary(double seconds, ZelTvScanTargetRegion targetRegion) {
        int reason = endReason.get();
        String how;
        switch (reason) {
            case ZelTvScanEngine.END_COMPLETE:
                how = screen.green("Scan complete");
                break;
            case ZelTvScanEngine.END_CANCELLED:
                how = screen.yellow("Scan cancelled");
                break;
            case ZelTvScanEngine.END_ABORTED:
                how = screen.red("Scan aborted by the builder");
                break;
            case ZelTvScanEngine.END_STOPPED:
                how = screen.yellow("Scan stopped by the builder");
                break;
            default:
                how = "Scan ended (reason " + reason + ")";
        }
        screen.line("");
        screen.line(screen.bold(how));
        int serviceCount;
        synchronized (services) {
            serviceCount = services.size();
        }
        String builderCount = builderAdded.get() > 0 || builderDeleted.get() > 0
                ? screen.dim("  (builder: +" + builderAdded.get() + " / -" + builderDeleted.get()
                        + ")") : "";
        if (serviceCount == 0) {
            serviceCount = Math.max(progressServices, builderAdded.get() - builderDeleted.get());
        }
        fact("services", screen.bold(Integer.toString(serviceCount)) + builderCount);
        List<Integer> tuned;
        synchronized (frequencies) {
            tuned = new ArrayList<>(frequencies);
        }
        int muxCount;
        synchronized (multiplexes) {
            muxCount = multiplexes.size();
        }
        fact("multiplexes", muxCount > 0 ? Integer.toString(muxCount)
                : "none listed" + screen.dim(" (" + tuned.size() + " frequencies tuned)"));
        synchronized (networks) {
            if (!networks.isEmpty()) {
                fact("networks", Integer.toString(networks.size()));
            }
        }
        if (!tuned.isEmpty()) {
            long low = tuned.stream().mapToLong(Integer::toUnsignedLong).min().getAsLong();
            long high = tuned.stream().mapToLong(Integer::toUnsignedLong).max().getAsLong();
            fact("tuned", tuned.size() + " frequencies, " + megahertz((int) low) + " to "
                    + megahertz((int) high));
        }
        fact("questions", commandsAnswered.get() + " answered for the builder");
        List<String> made = decisions.made();
        if (made.isEmpty()) {
            fact("decisions", "none needed");
        }
        for (int i = 0; i < made.size(); i++) {
            fact(i == 0 ? "decisions" : "", made.get(i));
        }
        if (decisions.chosenRegion() != null) {
            fact("", "LCN conflict left with that region: "
                    + (targetRegion.hasLcnConflict() ? "yes" : "no"));
        }
        fact("time", String.format(Locale.ROOT, "%.1f s", seconds));
        screen.line("");
    }

    static String megahertz(int frequency) {
        double mhz = ZelTvScanEngine.toMegahertz(frequency);
        String text = String.format(Locale.ROOT, "%.3f", mhz).replaceAll("0+$", "");
        if (text.endsWith(".")) {
            text += "0";
        }
        return text + " MHz";
    }

    /** "1-4, 7, 9-10" for a list of record ids. */
    static String ranges(List<Integer> records) {
        List<Integer> sorted = new ArrayList<>(new TreeSet<>(records));
        StringBuilder text = new StringBuilder();
        for (int i = 0; i < sorted.size(); i++) {
            int first = sorted.get(i);
            int last = first;
            while (i + 1 < sorted.size() && sorted.get(i + 1) == last + 1) {
                last = sorted.get(++i);
            }
            text.append(text.length() == 0 ? "" : ", ").append(first);
            if (last != first) {
                text.append('-').append(last);
            }
        }
        return text.toString();
    }
}
