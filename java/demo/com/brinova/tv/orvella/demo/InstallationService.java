package com.brinova.tv.orvella.demo;

import com.brinova.tv.orvella.services.scan.ZelTvDvbsSatellite;
import com.brinova.tv.orvella.services.scan.ZelTvDvbsScanSettings;
import com.brinova.tv.orvella.services.scan.ZelTvScanBouquet;
import com.brinova.tv.orvella.services.scan.ZelTvScanDetectLNB;
import com.brinova.tv.orvella.services.scan.ZelTvScanDetectSatellite;
import com.brinova.tv.orvella.services.scan.ZelTvScanDetectTransponder;
import com.brinova.tv.orvella.services.scan.ZelTvScanMDU;
import com.brinova.tv.orvella.services.scan.ZelTvScanNetwork;
import com.brinova.tv.orvella.services.scan.ZelTvScanRegionChannelList;
import com.brinova.tv.orvella.services.scan.ZelTvScanSatelliteId;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.concurrent.atomic.AtomicInteger;

/**
 * First installation of a satellite receiver on a multi-input dish, in three scans:
 * <ol>
 * <li>the dish: which satellite each LNB input receives, the distribution system (MDU), the
 * home transponder, and the network's NIT and BAT versions;
 * <li>the signal level of each satellite found, and the regional channel lists the operator
 * offers; the user (or the rule) picks one;
 * <li>the installation of that list, with the NIT and BAT versions now known.
 * </ol>
 * Satellite and LNB detection share the builder's one satellite report, and the regional
 * lists share the home transponder's, so each scan adds only one of each pair.
 */
final class InstallationService implements SatelliteScanDemo.Service {
    /** The builder's operator selector under which it offers regional lists. */
    private static final int REGIONAL_OPERATOR = 121;
    /** The bouquet the receiver reads (the operator's BAT id). */
    private static final int BOUQUET_ID = 4101;
    private static final int TIME_ZONE = 0;

    @Override
    public int run(SatelliteScanDemo demo) {
        ZelTvScanDetectLNB lnb = new ZelTvScanDetectLNB();
        ZelTvScanMDU mdu = new ZelTvScanMDU();
        ZelTvScanDetectTransponder home = new ZelTvScanDetectTransponder();
        ZelTvScanNetwork network = new ZelTvScanNetwork();
        ZelTvScanBouquet bouquet = new ZelTvScanBouquet();
        bouquet.setBouquet(BOUQUET_ID, 0);
        SatelliteScanDemo.Pass pass = demo.scan("installation: the dish and its network",
                demo.settings("GBR", "eng"), List.of(lnb, mdu, home, network, bouquet));
        if (!pass.complete()) {
            return pass.exitCode();
        }
        ZelTvScanDetectSatellite signal = new ZelTvScanDetectSatellite();
        ZelTvScanRegionChannelList regions = new ZelTvScanRegionChannelList(TIME_ZONE);
        ZelTvDvbsScanSettings regional = demo.settings("GBR", "eng")
                .setOperator(REGIONAL_OPERATOR);
        pass = demo.scan("installation: signal levels and regional lists", regional,
                List.of(signal, regions));
        if (!pass.complete()) {
            return pass.exitCode();
        }
        showDish(demo, lnb, signal, mdu, home);
        demo.fact("NIT", network.getFoundVersions().isEmpty() ? "not reported"
                : "version " + network.getLatestVersion());
        demo.fact("BAT", bouquet.getFound().isEmpty() ? "bouquet " + BOUQUET_ID + " not found"
                : "bouquet " + bouquet.getFound().get(0).batId() + " version "
                        + bouquet.getFound().get(0).version());
        List<String> offered = regions.getOfferedLists();
        if (offered.isEmpty()) {
            demo.screen().error("satellite demo: the builder offered no regional channel list");
            return 1;
        }
        String chosen = demo.choice().askName("Regional channel list", "the operator offers "
                + offered.size() + " regional lists", offered, "the first list the builder offers",
                "regional list");
        if (regions.select(chosen) != ZelTvScanRegionChannelList.STATUS_OK) {
            demo.screen().error("satellite demo: the regional list was refused");
            return 1;
        }
        int nit = network.getLatestVersion();
        int bat = bouquet.getFound().isEmpty() ? 0 : bouquet.getFound().get(0).version();
        ZelTvScanNetwork networkAgain = new ZelTvScanNetwork();
        networkAgain.setKnownNitVersion(nit);
        ZelTvScanBouquet bouquetAgain = new ZelTvScanBouquet();
        bouquetAgain.setBouquet(BOUQUET_ID, bat);
        AtomicInteger offeredAgain = new AtomicInteger();
        regions.setChooser(lists -> {
            offeredAgain.incrementAndGet();
            return null;
        });
        pass = demo.scan("installation: \"" + chosen + "\"", regional,
                List.of(regions, networkAgain, bouquetAgain));
        if (pass.complete()) {
            demo.summary(pass);
            demo.fact("regional list", "\"" + chosen + "\" (" + offered.size() + " offered)");
            demo.fact("lists offered", offeredAgain.get() == 0
                    ? "not again: the builder has the choice" : offeredAgain.get() + " times again");
            demo.fact("NIT", "version " + nit + " known, found " + (networkAgain
                    .getFoundVersions().isEmpty() ? "none" : networkAgain.getLatestVersion()));
            demo.fact("BAT", "bouquet " + BOUQUET_ID + " version " + bat + " known, found "
                    + bouquetAgain.getFound().size() + " time(s)");
        }
        return pass.exitCode();
    }

    private static void showDish(SatelliteScanDemo demo, ZelTvScanDetectLNB lnb,
            ZelTvScanDetectSatellite signal, ZelTvScanMDU mdu, ZelTvScanDetectTransponder home) {
        // One line per satellite, in the order the inputs were reported; the scanned
        // satellite's own report names one of them again.
        Map<ZelTvScanSatelliteId, ZelTvScanDetectLNB.Detection> inputs = new LinkedHashMap<>();
        lnb.getDetections().forEach(d -> inputs.putIfAbsent(d.satellite(), d));
        Map<ZelTvScanSatelliteId, Integer> levels = new LinkedHashMap<>();
        signal.getDetections().forEach(d -> levels.putIfAbsent(d.satellite(), d.signalLevel()));
        demo.choice().heading("Dish", inputs.size() + " LNB inputs with a satellite");
        int n = 0;
        for (ZelTvScanDetectLNB.Detection d : inputs.values()) {
            Integer level = levels.get(d.satellite());
            demo.screen().line(String.format("     input %d  %-26s %6s  satellite %-6s signal %s",
                    ++n, d.name(), ZelTvDvbsSatellite.orbitName(d.orbit()), d.satellite(),
                    level == null ? "not reported" : level));
        }
        demo.fact("MDU", mdu.getDetections().isEmpty() ? "not reported"
                : "type " + mdu.getDetections().get(0).unsignedType() + ", signal "
                        + mdu.getDetections().get(0).signalLevel());
        demo.fact("home TP", home.getDetections().isEmpty() ? "not reported"
                : homeTransponder(home.getDetections().get(0)));
    }

    private static String homeTransponder(ZelTvScanDetectTransponder.Detection d) {
        return Integer.toUnsignedString(d.value1()) + " MHz "
                + ZelTvDvbsSatellite.polarizationName(d.value2()) + " "
                + Integer.toUnsignedString(d.value3()) + " kBd (satellite record " + d.record()
                + ")";
    }
}
