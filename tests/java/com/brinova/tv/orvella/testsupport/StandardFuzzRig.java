package com.brinova.tv.orvella.testsupport;

import com.brinova.tv.orvella.services.scan.ZelTvAtscScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvAtscScanSettings;
import com.brinova.tv.orvella.services.scan.ZelTvCqamScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvCqamScanSettings;
import com.brinova.tv.orvella.services.scan.ZelTvDtmbScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvDtmbScanSettings;
import com.brinova.tv.orvella.services.scan.ZelTvDvbcScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvDvbcScanSettings;
import com.brinova.tv.orvella.services.scan.ZelTvIsdbScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvIsdbScanSettings;
import com.brinova.tv.orvella.services.scan.ZelTvScanConfig;

/**
 * What the fuzz targets of the cable, DTMB, ATSC, clear-QAM and ISDB configurations drive:
 * one configuration of each, answering every scan-maps command with a scripted output and
 * taking every notification without recording it.
 */
public final class StandardFuzzRig {
    /** Copied into the output of every scan-maps command (as far as it fits). */
    public volatile int[] answer = {0};

    public final ZelTvDvbcScanConfig dvbc = new ZelTvDvbcScanConfig(
            ZelTvDvbcScanSettings.builder("AUT", "deu").quick(306_000_000, 0x0A01).build());
    public final ZelTvDtmbScanConfig dtmb =
            new ZelTvDtmbScanConfig(new ZelTvDtmbScanSettings("CHN", "chi"));
    public final ZelTvAtscScanConfig atsc = new ZelTvAtscScanConfig(new ZelTvAtscScanSettings("USA"));
    public final ZelTvCqamScanConfig cqam = new ZelTvCqamScanConfig(new ZelTvCqamScanSettings("USA"));
    public final ZelTvIsdbScanConfig isdb = new ZelTvIsdbScanConfig(new ZelTvIsdbScanSettings("BRA"));
    /** In the order the fuzz targets number them. */
    public final ZelTvScanConfig[] configs = {dvbc, dtmb, atsc, cqam, isdb};

    public StandardFuzzRig() {
        for (ZelTvScanConfig config : configs) {
            config.setScanMapsHandler(this::answer);
        }
        dvbc.setCableScanMapsHandler((command, country, name, value, input, output) ->
                answer(command, country, input, output));
        dvbc.setScanningListener(new ZelTvDvbcScanConfig.ScanningListener() {});
        dvbc.setServiceUpdateListener((added, deleted) -> {});
    }

    private void answer(int command, String country, int[] input, int[] output) {
        int[] a = answer;
        System.arraycopy(a, 0, output, 0, Math.min(a.length, output.length));
    }
}
