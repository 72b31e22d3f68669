package com.brinova.tv.orvella.services.scan;

import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collections;
import java.util.List;
import java.util.Objects;

/**
 * Configuration of a satellite operator scan (the "sb_dvbs" builder).
 *
 * <p>The application gives the satellites it has ({@link #setSatellites}); the configuration
 * answers the builder's questions from them: the satellite of the scan with its LNB, its
 * transponders one by one, and which satellite carries a network found at an orbital
 * position. {@link #setServiceInfo} gives the rank and name the application wants for the
 * services the scan finds. Every other command goes to the {@link CommandHandler}.
 *
 * <p>During the scan the builder reports, on its own threads, to the
 * {@link SatelliteScanListener}: services added and deleted by kind, the orbit slot of the
 * satellite found, the number of services by kind, and the TKGS categories.
 */
public class ZelTvDvbsScanConfig extends ZelTvDvbsConfigBase {
    static {
        ZelTvScanLibrary.load();
    }

    /** Commands answered from the satellite list. */
    public static final int CMD_QUERY_SAT = 8;
    public static final int CMD_GET_TP_INFO = 24;
    public static final int CMD_GET_SAT_INFO = 27;
    public static final int CMD_GET_SVC_INFO = 66;

    /** Services added and deleted by a scan, by kind. */
    public record ServiceUpdate(int tvAdded, int tvDeleted, int radioAdded, int radioDeleted,
            int appAdded, int appDeleted) {}

    /** The rank (channel number) and name the application gives a service the scan finds. */
    public record ServiceInfo(int rank, int virtualServiceId, String name) {}

    /** Receives the builder's reports during a scan, on a builder thread. */
    public interface SatelliteScanListener {
        default void onServiceUpdate(ServiceUpdate update) {}

        /** @param orbit tenths of a degree, east positive */
        default void onOrbitSlot(String satelliteId, int orbit) {}

        default void onServiceCount(int tv, int radio, int app) {}

        default void onCategories(List<String> names) {}
    }

    private final ZelTvDvbsScanSettings mSettings;
    private volatile List<ServiceInfo> mServiceInfo = Collections.emptyList();
    private volatile SatelliteScanListener mListener;

    /**
     * @throws ZelTvScanException when the native configuration cannot be created
     */
    public ZelTvDvbsScanConfig(ZelTvDvbsScanSettings settings) {
        Objects.requireNonNull(settings, "settings");
        mSettings = new ZelTvDvbsScanSettings(settings);
        int status = nativeSetup(mSettings);
        if (status != 0 || !isValid()) {
            throw new ZelTvScanException("DVB-S configuration not created for " + settings, status);
        }
    }

    public ZelTvDvbsScanSettings getSettings() {
        return new ZelTvDvbsScanSettings(mSettings);
    }

    /** Answers of the service question, by the index the builder asks with. */
    public void setServiceInfo(List<ServiceInfo> services) {
        mServiceInfo = Collections.unmodifiableList(new ArrayList<>(services));
    }

    public void setSatelliteScanListener(SatelliteScanListener listener) {
        mListener = listener;
    }

    @Override
    protected int releaseNative() {
        return nativeRelease();
    }

    /**
     * Refuses a scan whose country or language is not three letters, whose satellite
     * identity is not "id,recordId", or, for the network and single-transponder scans, whose
     * manual transponder is incomplete.
     */
    @Override
    protected int validateSettings() {
        ZelTvDvbsScanSettings s = mSettings;
        boolean manual = s.getScanType() == ZelTvDvbsScanSettings.SCAN_TYPE_NETWORK
                || s.getScanType() == ZelTvDvbsScanSettings.SCAN_TYPE_SINGLE_TRANSPONDER;
        boolean tpOk = s.getManualFrequency() > 0 && s.getManualSymbolRate() > 0
                && (s.getManualPolarization() == ZelTvDvbsSatellite.POL_HORIZONTAL
                        || s.getManualPolarization() == ZelTvDvbsSatellite.POL_VERTICAL);
        return isCode(s.getCountry()) && isCode(s.getUiLanguage())
                && isIdText(s.getSatelliteId()) && (!manual || tpOk) ? 0 : -1;
    }

    @Override
    final Integer answerFromSatellites(int command, int[] input, int[] output) {
        switch (command) {
            case CMD_GET_SAT_INFO:
                return satelliteInfo(findSatellite(input[0]), output);
            case CMD_GET_TP_INFO:
                return transponderInfo(scannedSatellite(), input[0], output);
            case CMD_GET_SVC_INFO:
                return serviceInfo(input[0], output);
            case CMD_QUERY_SAT:
                return satelliteAt((short) input[0], output);
            default:
                return null;
        }
    }

    private ZelTvDvbsSatellite scannedSatellite() {
        return findSatellite(recordIdOf(mSettings.getSatelliteId()));
    }

    /** [0] orbit, [1] LNB, [3] home frequency, [6] home transport stream, [9..] name. */
    private static int satelliteInfo(ZelTvDvbsSatellite sat, int[] output) {
        if (sat == null) {
            return STATUS_NOT_FOUND;
        }
        output[0] = sat.getOrbit();
        output[1] = sat.getLnb();
        ZelTvDvbsSatellite.Transponder home = sat.getTransponder(0);
        if (home != null) {
            output[3] = home.getFrequency();
            output[6] = home.getTransportStreamId();
        }
        putName(output, 9, sat.getName(), ZelTvDvbsSatellite.MAX_NAME_LENGTH);
        return 0;
    }

    private static int transponderInfo(ZelTvDvbsSatellite sat, int index, int[] output) {
        ZelTvDvbsSatellite.Transponder tp = sat == null ? null : sat.getTransponder(index);
        if (tp == null) {
            return STATUS_NOT_FOUND;
        }
        output[0] = tp.getFrequency();
        output[1] = tp.getPolarization();
        output[2] = tp.getSymbolRate();
        return 0;
    }

    private int serviceInfo(int index, int[] output) {
        List<ServiceInfo> list = mServiceInfo;
        if (index < 0 || index >= list.size()) {
            return STATUS_NOT_FOUND;
        }
        ServiceInfo info = list.get(index);
        output[0] = info.rank();
        output[1] = info.virtualServiceId();
        putName(output, 2, info.name(), ZelTvDvbsSatellite.MAX_NAME_LENGTH);
        return 0;
    }

    /** The record id of the satellite at an orbital position the builder found. */
    private int satelliteAt(int orbit, int[] output) {
        for (ZelTvDvbsSatellite s : getSatellites()) {
            if (s.getOrbit() == orbit) {
                output[0] = s.getRecordId();
                return 0;
            }
        }
        return STATUS_NOT_FOUND;
    }

    /** [tv added, tv deleted, radio added, radio deleted, app added, app deleted]. */
    void onDvbsServiceUpdateNotify(int[] counts) {
        SatelliteScanListener listener = mListener;
        if (listener != null && counts != null && counts.length >= 6) {
            ServiceUpdate update = new ServiceUpdate(counts[0], counts[1], counts[2], counts[3],
                    counts[4], counts[5]);
            ScanCallbacks.deliver("service update", () -> listener.onServiceUpdate(update));
        }
    }

    /** [tv, radio, app]. */
    void onDvbsServiceDetailsNotify(int[] counts) {
        SatelliteScanListener listener = mListener;
        if (listener != null && counts != null && counts.length >= 3) {
            ScanCallbacks.deliver("service count",
                    () -> listener.onServiceCount(counts[0], counts[1], counts[2]));
        }
    }

    void onDvbsOrbitSlotNotify(String satelliteId, int orbit) {
        SatelliteScanListener listener = mListener;
        if (listener != null) {
            ScanCallbacks.deliver("orbit slot", () -> listener.onOrbitSlot(satelliteId, orbit));
        }
    }

    void onCategory(String[] names) {
        SatelliteScanListener listener = mListener;
        if (listener != null && names != null) {
            List<String> list = Collections.unmodifiableList(Arrays.asList(names.clone()));
            ScanCallbacks.deliver("categories", () -> listener.onCategories(list));
        }
    }

    private native int nativeSetup(ZelTvDvbsScanSettings settings);

    private native int nativeRelease();
}
