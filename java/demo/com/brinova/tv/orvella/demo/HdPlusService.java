package com.brinova.tv.orvella.demo;

import com.brinova.tv.orvella.services.scan.ZelTvScanHDPlus;
import java.util.List;

/**
 * The HD+ service guide: the scan reads the service guide table (SGT) that orders and names
 * the HD+ channels; a receiver with no guide installed (version 0) learns the version the
 * satellite carries.
 */
final class HdPlusService implements SatelliteScanDemo.Service {
    @Override
    public int run(SatelliteScanDemo demo) {
        ZelTvScanHDPlus hdPlus = new ZelTvScanHDPlus();
        ZelTvScanHDPlus.HDPlusInfo info = new ZelTvScanHDPlus.HDPlusInfo(0, false, true);
        hdPlus.setHDPlus(info);
        demo.fact("HD+", info + ", no service guide installed");
        int[] found = {-1};
        hdPlus.setSGTListener(version -> {
            synchronized (found) {
                found[0] = version;
            }
        });
        SatelliteScanDemo.Pass pass = demo.scan("HD+: reading the service guide",
                demo.settings("DEU", "deu"), List.of(hdPlus));
        if (pass.complete()) {
            demo.summary(pass);
            synchronized (found) {
                demo.fact("SGT", found[0] < 0 ? "no service guide found"
                        : "version " + found[0] + (found[0] != info.getSGTVersion()
                                ? ", newer than the installed one: the guide is read" : ""));
            }
        }
        return pass.exitCode();
    }
}
