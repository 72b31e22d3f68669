package com.brinova.tv.orvella.services.scan;

import java.util.Objects;

/**
 * Configuration of a scan of one satellite (the "sb_dvbs" builder, without an operator).
 *
 * <p>The builder asks for the transponders of the satellite one by one, and for the home
 * transponder of the associated satellite; the configuration answers both from the
 * satellites the application gives ({@link #setSatellites}). Each answer is six numbers:
 * satellite id, record id, transport stream id, frequency (MHz), polarisation and symbol
 * rate (kBd). Other commands go to the {@link CommandHandler}.
 */
public class ZelTvDvbsSatelliteConfig extends ZelTvDvbsConfigBase {
    static {
        ZelTvScanLibrary.load();
    }

    /** The transponder at an index of the scanned satellite. */
    public static final int CMD_SAT_TP_RECORD = 45;
    /** The home transponder of a satellite, by record id. */
    public static final int CMD_SAT_TP_SHORT = 56;

    private final ZelTvDvbsSatelliteSettings mSettings;

    /**
     * @throws ZelTvScanException when the native configuration cannot be created
     */
    public ZelTvDvbsSatelliteConfig(ZelTvDvbsSatelliteSettings settings) {
        mSettings = Objects.requireNonNull(settings, "settings");
        int status = nativeSetup(mSettings);
        if (status != 0 || !isValid()) {
            throw new ZelTvScanException("DVB-S satellite configuration not created for "
                    + settings, status);
        }
    }

    public ZelTvDvbsSatelliteSettings getSettings() {
        return mSettings;
    }

    @Override
    protected int releaseNative() {
        return nativeRelease();
    }

    @Override
    protected int validateSettings() {
        return isCode(mSettings.getCountry()) && isIdText(mSettings.getSatelliteId())
                && isIdText(mSettings.getSatelliteAssoId()) ? 0 : -1;
    }

    @Override
    final Integer answerFromSatellites(int command, int[] input, int[] output) {
        switch (command) {
            case CMD_SAT_TP_RECORD: {
                ZelTvDvbsSatellite sat = findSatellite(recordIdOf(mSettings.getSatelliteId()));
                return transponder(sat, sat == null ? null : sat.getTransponder(input[0]), output);
            }
            case CMD_SAT_TP_SHORT: {
                ZelTvDvbsSatellite sat = findSatellite(input[0]);
                return transponder(sat, sat == null ? null : sat.getTransponder(0), output);
            }
            default:
                return null;
        }
    }

    private static int transponder(ZelTvDvbsSatellite sat, ZelTvDvbsSatellite.Transponder tp,
            int[] output) {
        if (tp == null) {
            return STATUS_NOT_FOUND;
        }
        output[0] = sat.getSatelliteId();
        output[1] = sat.getRecordId();
        output[2] = tp.getTransportStreamId();
        output[3] = tp.getFrequency();
        output[4] = tp.getPolarization();
        output[5] = tp.getSymbolRate();
        return 0;
    }

    private native int nativeSetup(ZelTvDvbsSatelliteSettings settings);

    private native int nativeRelease();
}
