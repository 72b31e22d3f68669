package com.brinova.tv.orvella.testsupport;

import com.brinova.tv.orvella.services.scan.ZelTvDvbsSatellite;
import com.brinova.tv.orvella.services.scan.ZelTvDvbsSatelliteConfig;
import com.brinova.tv.orvella.services.scan.ZelTvDvbsSatelliteSettings;
import java.util.List;

/** A single-satellite configuration that knows satellite 5,9 with two transponders. */
public final class RecordingDvbsSatelliteConfig extends ZelTvDvbsSatelliteConfig {
    public RecordingDvbsSatelliteConfig(String country, int scanType, String satellite,
            String associated, int frequency, int polarization, int symbolRate) {
        super(new ZelTvDvbsSatelliteSettings(country, 77, scanType, satellite, associated,
                new ZelTvDvbsSatellite.Transponder(frequency, polarization, symbolRate, 0)));
        setSatellites(List.of(new ZelTvDvbsSatellite(5, 9, "TURKSAT 4A", 420,
                ZelTvDvbsSatellite.LNB_UNIVERSAL, List.of(
                        new ZelTvDvbsSatellite.Transponder(11054, ZelTvDvbsSatellite.POL_HORIZONTAL,
                                30000, 1),
                        new ZelTvDvbsSatellite.Transponder(11096, ZelTvDvbsSatellite.POL_VERTICAL,
                                27500, 2)))));
    }
}
