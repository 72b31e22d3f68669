package com.brinova.tv.orvella.testsupport;

import com.brinova.tv.orvella.services.scan.ZelTvScanFavNetwork;
import com.brinova.tv.orvella.services.scan.ZelTvScanLcnConflict;
import com.brinova.tv.orvella.services.scan.ZelTvScanLcnV2ChannelList;
import com.brinova.tv.orvella.services.scan.ZelTvScanTargetRegion;

import java.util.ArrayList;
import java.util.Collections;
import java.util.List;

/**
 * The fault sweep's user: answers the terrestrial extensions' questions as scripted and sets
 * each choice itself, so that the status the builder's refusal gives reaches the record
 * ("favourite network 1 -6").
 */
public final class SweepDecisions {
    private final List<String> mDecided = Collections.synchronizedList(new ArrayList<>());

    private void decided(String what, int status) {
        mDecided.add(what + " " + status);
    }

    /** "what status" per choice set, in the order made. */
    public String[] decisions() {
        return mDecided.toArray(new String[0]);
    }

    public void chooseFavouriteNetwork(ZelTvScanFavNetwork extension, int pick) {
        extension.setChooser(candidates -> {
            decided("favourite network " + pick, extension.select(pick));
            return ZelTvScanFavNetwork.Chooser.NONE;
        });
    }

    public void chooseTargetRegion(ZelTvScanTargetRegion extension, String pick) {
        extension.setChooser(regions -> {
            String conflict = extension.hasLcnConflict() ? " after a conflict" : "";
            regions.stream().filter(r -> r.name().equals(pick)).findFirst().ifPresent(
                    r -> decided("target region " + pick + conflict, extension.select(r)));
            return null;
        });
    }

    public void chooseChannelList(ZelTvScanLcnV2ChannelList extension, int pick) {
        extension.setChooser(lists -> {
            decided("channel list " + pick, extension.select(pick));
            return ZelTvScanLcnV2ChannelList.Chooser.NONE;
        });
    }

    /** Writes the garbage information back plus 10 each, and the services' LCNs reversed. */
    public void resolveLcnConflicts(ZelTvScanLcnConflict extension) {
        extension.setHandler(new ZelTvScanLcnConflict.Handler() {
            @Override
            public void onLcnInfo(ZelTvScanLcnConflict ext) {
                ZelTvScanLcnConflict.GarbageInfo g = ext.getGarbageInfo();
                if (g == null) {
                    mDecided.add("garbage info missing");
                } else {
                    decided("garbage info", ext.setGarbageInfo(new ZelTvScanLcnConflict.GarbageInfo(
                            g.tv() + 10, g.radio() + 10, g.data() + 10)));
                }
                List<ZelTvScanLcnConflict.ServiceLcnInfo> infos =
                        new ArrayList<>(ext.getServiceLcnInfos());
                Collections.reverse(infos);
                decided("service lcn " + infos.size(), ext.setServiceLcnInfos(infos));
            }
        });
    }
}
