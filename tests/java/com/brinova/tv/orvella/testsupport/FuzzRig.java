package com.brinova.tv.orvella.testsupport;

import com.brinova.tv.orvella.services.scan.ZelTvDvbtScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvDvbtScanSettings;
import com.brinova.tv.orvella.services.scan.ZelTvNameSorting;
import com.brinova.tv.orvella.services.scan.ZelTvScanEngine;
import com.brinova.tv.orvella.services.scan.ZelTvScanExtension;
import com.brinova.tv.orvella.services.scan.ZelTvScanFavNetwork;
import com.brinova.tv.orvella.services.scan.ZelTvScanLcnConflict;
import com.brinova.tv.orvella.services.scan.ZelTvScanLcnV2ChannelList;
import com.brinova.tv.orvella.services.scan.ZelTvScanTargetRegion;

import java.util.List;

/**
 * What the fuzz targets drive: one engine on a pipeline, configured with a DVB-T
 * configuration whose scan-maps answer is scripted, and the terrestrial extensions attached,
 * each with a user who reads everything it is offered and picks an entry. Nothing is
 * recorded, so that millions of inputs do not grow the heap.
 */
public final class FuzzRig {
    /** Copied into the output of every scan-maps command (as far as it fits). */
    public volatile int[] answer = {0};
    /** The index (modulo the number offered) the user picks in every decision. */
    public volatile int pick = 0;

    public final ZelTvScanEngine engine = new ZelTvScanEngine(new TunerPipeline("fuzz"));
    public final ZelTvDvbtScanConfig config =
            new ZelTvDvbtScanConfig(new ZelTvDvbtScanSettings("GBR", "eng", 1, 1));
    public final ZelTvScanFavNetwork favNetwork = new ZelTvScanFavNetwork();
    public final ZelTvScanLcnConflict lcnConflict = new ZelTvScanLcnConflict();
    public final ZelTvNameSorting nameSorting = new ZelTvNameSorting();
    public final ZelTvScanTargetRegion targetRegion = new ZelTvScanTargetRegion();
    public final ZelTvScanLcnV2ChannelList channelList = new ZelTvScanLcnV2ChannelList();
    /** In the order the fuzz targets number them. */
    public final ZelTvScanExtension[] extensions =
            {favNetwork, lcnConflict, nameSorting, targetRegion, channelList};

    public FuzzRig() {
        config.setScanMapsHandler((command, country, input, output) -> {
            int[] a = answer;
            System.arraycopy(a, 0, output, 0, Math.min(a.length, output.length));
        });
        config.setServiceUpdateListener((added, deleted) -> {});
        favNetwork.setChooser(candidates -> candidates.isEmpty()
                ? ZelTvScanFavNetwork.Chooser.NONE
                : candidates.get(Math.floorMod(pick, candidates.size())).index());
        targetRegion.setChooser(regions -> {
            targetRegion.hasLcnConflict();
            return regions.isEmpty() ? null : regions.get(Math.floorMod(pick, regions.size()));
        });
        channelList.setChooser(lists -> lists.isEmpty()
                ? ZelTvScanLcnV2ChannelList.Chooser.NONE
                : lists.get(Math.floorMod(pick, lists.size())).id());
        lcnConflict.setHandler(new ZelTvScanLcnConflict.Handler() {
            @Override
            public void onLcnConflict(ZelTvScanLcnConflict ext,
                    List<ZelTvScanLcnConflict.ConflictGroup> groups) {}

            @Override
            public void onLcnInfo(ZelTvScanLcnConflict ext) {
                ZelTvScanLcnConflict.GarbageInfo garbage = ext.getGarbageInfo();
                if (garbage != null) {
                    ext.setGarbageInfo(garbage);
                }
                ext.setServiceLcnInfos(ext.getServiceLcnInfos());
            }
        });
        engine.setListener(new ZelTvScanEngine.Listener() {});
        check(engine.configure(config, 1), "configure");
        for (ZelTvScanExtension e : extensions) {
            check(engine.addExtension(e), "addExtension " + e);
        }
    }

    private static void check(int status, String what) {
        if (status != 0) {
            throw new IllegalStateException(what + " answered " + status);
        }
    }
}
