package com.brinova.tv.orvella.demo;

import com.brinova.tv.orvella.services.scan.ZelTvScanFavNetwork;
import com.brinova.tv.orvella.services.scan.ZelTvScanLcnConflict;
import com.brinova.tv.orvella.services.scan.ZelTvScanLcnV2ChannelList;
import com.brinova.tv.orvella.services.scan.ZelTvScanTargetRegion;
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
    private final Choice choice;
    private final boolean decidingByRule;
    private final List<String> made = Collections.synchronizedList(new ArrayList<>());
    private volatile ZelTvScanTargetRegion.Region chosenRegion;

    /** @param input where the user answers, or null to decide every question by rule */
    Decisions(Screen screen, Input input) {
        this.screen = screen;
        this.choice = new Choice(screen, input);
        this.decidingByRule = input == null;
    }

    /** What was decided, one line each, for the summary. */
    List<String> made() {
        synchronized (made) {
            return new ArrayList<>(made);
        }
    }

    /** Whether the user is being asked right now (the wait for the scan's end pauses). */
    boolean isAsking() {
        return choice.isAsking();
    }

    ZelTvScanTargetRegion.Region chosenRegion() {
        return chosenRegion;
    }

    int chooseFavouriteNetwork(List<ZelTvScanFavNetwork.Network> candidates) {
        heading("Favourite network", "the scan found " + candidates.size()
                + " networks; services of the favourite one come first");
        int pick = ask(candidates, ZelTvScanFavNetwork.Network::name, 0,
                "first candidate, in the order the builder found the networks");
        ZelTvScanFavNetwork.Network network = candidates.get(pick);
        record("favourite network " + quote(network.name()), true);
        return network.index();
    }

    ZelTvScanTargetRegion.Region chooseTargetRegion(List<ZelTvScanTargetRegion.Region> regions) {
        heading("Target region", regions.size() == 1 ? "the network signals one region"
                : "the network signals " + regions.size() + " regions");
        // Rule: the most specific region (the deepest level), the first of those in the
        // builder's table.
        ZelTvScanTargetRegion.Region best = regions.get(0);
        for (ZelTvScanTargetRegion.Region r : regions) {
            if (r.level() > best.level()) {
                best = r;
            }
        }
        String rule = "most specific region (level " + best.level()
                + "), the first of that level in the builder's table";
        // Shown as a tree: every region under its parent, indented by its level.
        List<ZelTvScanTargetRegion.Region> tree = new ArrayList<>(regions);
        tree.sort(Decisions::compareRegions);
        int pick = ask(tree, r -> "  ".repeat(Math.max(0, r.level() - 1)) + r.name()
                + screen.dim("  " + r.codePath()), tree.indexOf(best), rule);
        ZelTvScanTargetRegion.Region region = tree.get(pick);
        chosenRegion = region;
        record("target region " + quote(region.name()) + " (" + region.codePath() + ")", true);
        return region;
    }

    /** Orders regions as a tree: by their codes level by level, a parent before its children. */
    private static int compareRegions(ZelTvScanTargetRegion.Region a,
            ZelTvScanTargetRegion.Region b) {
        int[] ca = {a.code0(), a.code1(), a.code2()};
        int[] cb = {b.code0(), b.code1(), b.code2()};
        int common = Math.min(Math.min(a.level(), b.level()), 3);
        for (int i = 0; i < common; i++) {
            if (ca[i] != cb[i]) {
                return Integer.compare(ca[i], cb[i]);
            }
        }
        if (a.level() != b.level()) {
            return Integer.compare(a.level(), b.level());
        }
        return Integer.compare(a.index(), b.index());
    }

    int chooseChannelList(List<ZelTvScanLcnV2ChannelList.ChannelList> lists) {
        heading("Channel list", "the network offers " + lists.size()
                + " channel numberings (LCN v2 lists)");
        int pick = ask(lists, l -> l.name() + screen.dim("  id " + l.id()), 0,
                "first list the network offers");
        ZelTvScanLcnV2ChannelList.ChannelList list = lists.get(pick);
        record("channel list " + quote(list.name()) + " (id " + list.id() + ")", true);
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
                        + " shown, builder's allocation kept", false);
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
        choice.heading(title, what);
    }

    private <T> int ask(List<T> options, Function<T, String> label, int byRule, String rule) {
        return choice.ask(options, label, byRule, rule);
    }

    private void record(String decision, boolean isChoice) {
        made.add(decision + (isChoice && decidingByRule ? " (by rule)" : ""));
    }

    private static String quote(String name) {
        return "\"" + name + "\"";
    }
}
