package com.brinova.tv.orvella.testsupport;

import com.brinova.tv.orvella.services.scan.ZelTvScanFavNetwork;
import com.brinova.tv.orvella.services.scan.ZelTvScanLcnConflict;
import com.brinova.tv.orvella.services.scan.ZelTvScanLcnV2ChannelList;
import com.brinova.tv.orvella.services.scan.ZelTvScanTargetRegion;

import java.util.ArrayList;
import java.util.Collections;
import java.util.List;

/**
 * A user who answers the terrestrial extensions' questions as scripted. It records what it
 * was shown and, per decision, the thread it was asked on and how many scan ends the engine
 * had reported by then (a choice must come before the end).
 */
public final class ScriptedDecisions {
    private final List<String> mShown = new ArrayList<>();
    private final List<String> mDecisions = new ArrayList<>();
    private final RecordingEngineListener mEngineEvents;

    public ScriptedDecisions(RecordingEngineListener engineEvents) {
        mEngineEvents = engineEvents;
    }

    private synchronized void shown(String item) {
        mShown.add(item);
    }

    private synchronized void decided(String what) {
        long ends = List.of(mEngineEvents.eventNames()).stream()
                .filter(e -> e.startsWith("status 2 ")).count();
        mDecisions.add(what + " ends=" + ends + " @" + Thread.currentThread().getName());
    }

    public synchronized String[] shown() {
        return mShown.toArray(new String[0]);
    }

    /** One entry per decision: "what ends=N @thread". */
    public synchronized String[] decisions() {
        return mDecisions.toArray(new String[0]);
    }

    public void chooseFavouriteNetwork(ZelTvScanFavNetwork extension, int pick) {
        extension.setChooser(candidates -> {
            candidates.forEach(n -> shown("network " + n.index() + " " + n.name()));
            decided("favourite network");
            return pick;
        });
    }

    /** Chooses the region named `pick` (or none), after asking whether a conflict remains. */
    public void chooseTargetRegion(ZelTvScanTargetRegion extension, String pick) {
        extension.setChooser(regions -> {
            regions.forEach(r -> shown("region " + r.index() + " " + r.level() + " "
                    + r.codePath() + " " + r.name()));
            shown("conflict " + extension.hasLcnConflict());
            decided("target region");
            return regions.stream().filter(r -> r.name().equals(pick)).findFirst().orElse(null);
        });
    }

    public void chooseChannelList(ZelTvScanLcnV2ChannelList extension, int pick) {
        extension.setChooser(lists -> {
            lists.forEach(l -> shown("list " + l.index() + " " + l.id() + " " + l.name()));
            decided("channel list");
            return pick;
        });
    }

    /**
     * Shows the conflict groups; then writes the garbage information back with each counter
     * plus 10 and the service LCN information back in reverse order.
     */
    public void resolveLcnConflicts(ZelTvScanLcnConflict extension) {
        extension.setHandler(new ZelTvScanLcnConflict.Handler() {
            @Override
            public void onLcnConflict(ZelTvScanLcnConflict ext,
                    List<ZelTvScanLcnConflict.ConflictGroup> groups) {
                for (ZelTvScanLcnConflict.ConflictGroup g : groups) {
                    StringBuilder item = new StringBuilder("group " + g.index() + " lcn " + g.lcn());
                    g.services().forEach(s -> item.append(' ').append(s.svlId()).append(':')
                            .append(s.recordId()));
                    shown(item.toString());
                }
                decided("lcn conflict");
            }

            @Override
            public void onLcnInfo(ZelTvScanLcnConflict ext) {
                ZelTvScanLcnConflict.GarbageInfo g = ext.getGarbageInfo();
                ext.setGarbageInfo(new ZelTvScanLcnConflict.GarbageInfo(g.tv() + 10,
                        g.radio() + 10, g.data() + 10));
                List<ZelTvScanLcnConflict.ServiceLcnInfo> infos =
                        new ArrayList<>(ext.getServiceLcnInfos());
                Collections.reverse(infos);
                ext.setServiceLcnInfos(infos);
                decided("lcn info");
            }
        });
    }
}
