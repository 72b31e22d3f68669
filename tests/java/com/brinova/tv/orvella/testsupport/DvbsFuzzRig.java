package com.brinova.tv.orvella.testsupport;

import com.brinova.tv.orvella.services.scan.ZelTvDvbsSatellite;
import com.brinova.tv.orvella.services.scan.ZelTvDvbsSatelliteConfig;
import com.brinova.tv.orvella.services.scan.ZelTvDvbsSatelliteSettings;
import com.brinova.tv.orvella.services.scan.ZelTvDvbsScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvDvbsScanSettings;
import java.util.List;

/**
 * What the satellite configurations' fuzz target drives: each of the two configurations
 * twice, once answering every scan-maps command with a scripted status and output, once
 * answering from a satellite list (the application's own model, 19.2E with three
 * transponders and two services) with the scripted answer for the rest. Every
 * notification is taken and dropped.
 */
public final class DvbsFuzzRig {
    /** Copied into the output of every scripted command (as far as it fits). */
    public volatile int[] answer = {0};
    /** The scripted status of every scripted command. */
    public volatile int status = 0;

    private static final List<ZelTvDvbsSatellite> ASTRA = List.of(new ZelTvDvbsSatellite(1, 3,
            "ASTRA 1KR/1L/1M/1N", 192, ZelTvDvbsSatellite.LNB_UNIVERSAL, List.of(
                    new ZelTvDvbsSatellite.Transponder(11494, ZelTvDvbsSatellite.POL_HORIZONTAL,
                            22000, 1093),
                    new ZelTvDvbsSatellite.Transponder(11362, ZelTvDvbsSatellite.POL_HORIZONTAL,
                            22000, 1019),
                    new ZelTvDvbsSatellite.Transponder(12188, ZelTvDvbsSatellite.POL_HORIZONTAL,
                            27500, 1057))));

    public final ZelTvDvbsScanConfig dvbs = new ZelTvDvbsScanConfig(
            new ZelTvDvbsScanSettings("DEU", "deu", "1,3").setServiceUpdateType(2));
    public final ZelTvDvbsScanConfig dvbsModel = new ZelTvDvbsScanConfig(
            new ZelTvDvbsScanSettings("DEU", "deu", ASTRA.get(0)));
    public final ZelTvDvbsSatelliteConfig satellite = new ZelTvDvbsSatelliteConfig(
            new ZelTvDvbsSatelliteSettings("TUR", 0, 1, "5,9", "5,10",
                    new ZelTvDvbsSatellite.Transponder(11054, ZelTvDvbsSatellite.POL_HORIZONTAL,
                            30000, 1)));
    public final ZelTvDvbsSatelliteConfig satelliteModel = new ZelTvDvbsSatelliteConfig(
            new ZelTvDvbsSatelliteSettings("DEU", 0, 1, "1,3", "1,0",
                    ASTRA.get(0).getTransponder(0)));

    public DvbsFuzzRig() {
        dvbsModel.setSatellites(ASTRA);
        dvbsModel.setServiceInfo(List.of(new ZelTvDvbsScanConfig.ServiceInfo(1, 28006, "Das Erste HD"),
                new ZelTvDvbsScanConfig.ServiceInfo(2, 28011, "ZDF HD")));
        satelliteModel.setSatellites(ASTRA);
        for (ZelTvDvbsScanConfig c : List.of(dvbs, dvbsModel)) {
            c.setCommandHandler(this::answer);
            c.setSatelliteScanListener(new ZelTvDvbsScanConfig.SatelliteScanListener() {});
        }
        for (ZelTvDvbsSatelliteConfig c : List.of(satellite, satelliteModel)) {
            c.setCommandHandler(this::answer);
        }
    }

    private int answer(int command, String country, int[] input, int[] output) {
        if (output != null) {
            int[] a = answer;
            System.arraycopy(a, 0, output, 0, Math.min(a.length, output.length));
        }
        return status;
    }
}
