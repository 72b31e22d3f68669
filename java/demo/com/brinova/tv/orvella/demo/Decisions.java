package com.brinova.tv.orvella.demo;

import com.brinova.tv.orvella.services.scan.ZelTvScanFavNetwork;
import com.brinova.tv.orvella.services.scan.ZelTvScanLcnConflict;
import com.brinova.tv.orvella.services.scan.ZelTvScanLcnV2ChannelList;
import com.brinova.tv.orvella.services.scan.ZelTvScanTargetRegion;
import java.io.Console;
import java.util.ArrayList;
import java.util.Collections;
import java.util.List;
import java.util.function.Function;

/**
 * The terrestrial decisions at the end of a scan. With a terminal (and without --auto) the
 * user is asked; otherwise a stated rule decides and the demo says what it chose and why.
 * Everything here runs on the engine's event thread, before the scan's end event.
 */
final class Decisions {
    private final Screen screen;
    private final Console console; // null: decide by rule
    private final List<String> made = Collections.synchronizedList(new ArrayList<>());
    private volatile ZelTvScanTargetRegion.Region chosenRegion;
    private volatile boolean asking;

    Decisions(Screen screen, boolean interactive) {
        this.screen = screen;
        this.console = interactive ? System.console() : null;
    }

    /** What was decided, one line each, for the summary. */
    List<String> made() {
        synchronized (made) {
            return new ArrayList<>(made);
        }
    }

    /** Whether the user is being asked right now (the wait for the scan's end pauses). */
    boolean isAsking() {
        return asking;
    }

    ZelTvScanTargetRegion.Region chosenRegion() {
        return chosenRegion;
    }

    int chooseFavouriteNetwork(List<ZelTvScanFavNetwork.Network> candidates) {
        heading("Favourite network", "the scan found " + candidates.size()
                + " networks; services of the favourite one come first");
        int pick = ask(candidates, n -> quote(n.name()), 0,
                "first candidate, in the order the builder found the networks");
        ZelTvScanFavNetwork.Network network = candidates.get(pick);
        record("favourite network " + quote(network.name()));
        return network.index();
    }

    ZelTvScanTargetRegion.Region chooseTargetRegion(List<ZelTvScanTargetRegion.Region> regions) {
        heading("Target region", regions.size() == 1 ? "the network signals one region"
                : "the network signals " + regions.size() + " regions");
        // Rule: the most specific region (the deepest level), the first of those.
        int best = 0;
        for (int i = 1; i < regions.size(); i++) {
            if (regions.get(i).level() > regions.get(best).level()) {
                best = i;
            }
        }
        String rule = "most specific region (level " + regions.get(best).level()
                + "), the first of that level in the builder's table";
        int pick = ask(regions, r -> quote(r.name()) + screen.dim("  level " + r.level()
                + ", codes " + r.codePath()), best, rule);
        ZelTvScanTargetRegion.Region region = regions.get(pick);
        chosenRegion = region;
        record("target region " + quote(region.name()) + " (" + region.codePath() + ")");
        return region;
    }

    int chooseChannelList(List<ZelTvScanLcnV2ChannelList.ChannelList> lists) {
        heading("Channel list", "the network offers " + lists.size()
                + " channel numberings (LCN v2 lists)");
        int pick = ask(lists, l -> quote(l.name()) + screen.dim("  id " + l.id()), 0,
                "first list the network offers");
        ZelTvScanLcnV2ChannelList.ChannelList list = lists.get(pick);
        record("channel list " + quote(list.name()) + " (id " + list.id() + ")");
        return list.id();
    }

    /** Shows the conflicts; the builder's own allocation is kept. */
    ZelTvScanLcnConflict.Handler conflictHandler() {
        return new ZelTvScanLcnConflict.Handler() {
            @Override
            public void onLcnConflict(ZelTvScanLcnConflict extension,
                    List<ZelTvScanLcnConflict.ConflictGroup> groups) {
                heading("LCN conflicts", groups.size() == 1 ? "one channel number is claimed"
                        + " by several services" : groups.size()
                        + " channel numbers are claimed by several services");
                for (ZelTvScanLcnConflict.ConflictGroup group : groups) {
                    StringBuilder services = new StringBuilder();
                    for (ZelTvScanLcnConflict.Service s : group.services()) {
                        services.append(services.length() == 0 ? "" : ", ")
                                .append("SVL ").append(s.svlId()).append(" record ")
                                .append(s.recordId());
                    }
                    screen.line("     LCN " + screen.bold(String.format("%3d", group.lcn()))
                            + "  " + services);
                }
                ZelTvScanLcnConflict.GarbageInfo garbage = extension.getGarbageInfo();
                if (garbage != null) {
                    screen.line("     left without a number: " + garbage.tv() + " TV, "
                            + garbage.radio() + " radio, " + garbage.data() + " data");
                }
                screen.line("  " + screen.yellow(screen.arrow()) + " kept the builder's own "
                        + "allocation");
                record(groups.size() + " LCN conflict" + (groups.size() == 1 ? "" : "s")
                        + " shown, builder's allocation kept");
            }

            @Override
            public void onLcnInfo(ZelTvScanLcnConflict extension) {
                List<ZelTvScanLcnConflict.ServiceLcnInfo> infos = extension.getServiceLcnInfos();
                if (!infos.isEmpty()) {
                    screen.line("     LCN information of " + infos.size() + " service"
                            + (infos.size() == 1 ? "" : "s") + " left unchanged");
                }
            }
        };
    }

    private void heading(String title, String what) {
        screen.endProgress();
        screen.line("");
        screen.line("  " + screen.bold(screen.yellow(title)) + screen.dim(" " + screen.dot()
                + " " + what));
    }

    /** Lists the options and returns the index picked by the user or by the rule. */
    private <T> int ask(List<T> options, Function<T, String> label, int byRule, String rule) {
        for (int i = 0; i < options.size(); i++) {
            String mark = console == null && i == byRule ? screen.yellow("*") : " ";
            screen.line(String.format("   %s%2d) %s", mark, i + 1, label.apply(options.get(i))));
        }
        if (console == null) {
            screen.line("  " + screen.yellow(screen.arrow()) + " chose " + (byRule + 1)
                    + " by rule: " + rule);
            return byRule;
        }
        asking = true;
        try {
            return askUser(options.size(), byRule, rule);
        } finally {
            asking = false;
        }
    }

    private int askUser(int count, int byRule, String rule) {
        while (true) {
            String answer = console.readLine("  Choose 1-%d [%d]: ", count, byRule + 1);
            if (answer == null || answer.isBlank()) {
                screen.line("  " + screen.yellow(screen.arrow()) + " default " + (byRule + 1)
                        + ": " + rule);
                return byRule;
            }
            try {
                int n = Integer.parseInt(answer.trim());
                if (n >= 1 && n <= count) {
                    screen.line("  " + screen.yellow(screen.arrow()) + " chose " + n);
                    return n - 1;
                }
            } catch (NumberFormatException notANumber) {
                // asked again below
            }
            screen.line("  " + screen.red("please answer a number from 1 to " + count));
        }
    }

    private void record(String decision) {
        made.add(decision + (console == null ? " (by rule)" : ""));
    }

    private static String quote(String name) {
        return "\"" + name + "\"";
    }
}
