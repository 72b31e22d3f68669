package com.brinova.tv.orvella.services.scan;

import java.util.ArrayList;
import java.util.Collections;
import java.util.List;

/**
 * LCN conflicts of a terrestrial scan: services that claim the same logical channel number.
 *
 * <p>When a scan ends with conflicts, the {@link Handler} is called twice on the engine's
 * event thread, before the scan's end event: first {@link Handler#onLcnConflict} with the
 * conflict groups, then {@link Handler#onLcnInfo}. From there it may read and write the
 * garbage information (services left without a number) and the per-service LCN information.
 */
public class ZelTvScanLcnConflict extends ZelTvScanExtension {
    static {
        ZelTvScanLibrary.load();
    }

    private static final int MAX_ARRAY = 10;
    /** Group indices reach the builder as 8 bits. */
    private static final int MAX_GROUPS = 256;
    private static final int MAX_SERVICES_PER_GROUP = 1024;
    private static final int MAX_SERVICE_INFOS = 0x10000;

    /** A service of a conflict group: its service list id and its record id there. */
    public record Service(int svlId, int recordId) {}

    /** A conflict group: the contested LCN and the services that claim it. */
    public record ConflictGroup(int index, int lcn, List<Service> services) {}

    /** Services that got no channel number, per kind. */
    public record GarbageInfo(int tv, int radio, int data) {}

    /**
     * A service's LCN information as the builder keeps it: four 16-bit values and two 8-bit
     * values, carried unchanged.
     */
    public record ServiceLcnInfo(int word0, int word1, int word2, int word3, int byte0,
            int byte1) {}

    /** Resolves conflicts at the end of a scan. */
    public interface Handler {
        /** The scan ended with conflicts; {@code groups} lists them. */
        default void onLcnConflict(ZelTvScanLcnConflict extension, List<ConflictGroup> groups) {}

        /** Called right after {@link #onLcnConflict}: time to adjust the LCN information. */
        default void onLcnInfo(ZelTvScanLcnConflict extension) {}
    }

    private volatile Handler mHandler;

    /** @throws ZelTvScanException when the native extension cannot be created */
    public ZelTvScanLcnConflict() {
        super(MAX_ARRAY);
        int[] setup = newSetupArray();
        bindNativeExtension(nativeSetup(setup), setup);
    }

    public void setHandler(Handler handler) {
        mHandler = handler;
    }

    /** Reads the conflict groups of the last scan, each with its services. */
    public List<ConflictGroup> getConflicts() {
        List<ConflictGroup> groups = new ArrayList<>();
        for (int group = 0; group < MAX_GROUPS; group++) {
            int lcn = -1;
            List<Service> services = new ArrayList<>();
            for (int channel = 0; channel < MAX_SERVICES_PER_GROUP; channel++) {
                int[] call = newCallArray(7);
                call[2] = group;
                call[3] = channel;
                if (nativeGetLcnConflict(call) != STATUS_OK) {
                    break;
                }
                lcn = call[4];
                services.add(new Service(call[5], call[6]));
            }
            if (services.isEmpty()) {
                break;
            }
            groups.add(new ConflictGroup(group, lcn, Collections.unmodifiableList(services)));
        }
        return Collections.unmodifiableList(groups);
    }

    /** The garbage information, or null when the builder has none. */
    public GarbageInfo getGarbageInfo() {
        int[] call = newCallArray(5);
        if (nativeGetLcnGarbageInfo(call) != STATUS_OK) {
            return null;
        }
        return new GarbageInfo(call[2], call[3], call[4]);
    }

    /** @return {@link #STATUS_OK}, or {@link #STATUS_NOT_FOUND} when the builder refused it */
    public int setGarbageInfo(GarbageInfo info) {
        int[] call = newCallArray(5);
        call[2] = info.tv();
        call[3] = info.radio();
        call[4] = info.data();
        return nativeSetGarbageInfo(call);
    }

    /** One service's LCN information, or null when there is no such service. */
    public ServiceLcnInfo getServiceLcnInfo(int index) {
        int[] call = newCallArray(9);
        call[2] = index;
        if (nativeGetServiceLcnInfo(call) != STATUS_OK) {
            return null;
        }
        return new ServiceLcnInfo(call[3], call[4], call[5], call[6], call[7], call[8]);
    }

    /** The LCN information of every service, read from index 0 until the builder has no more. */
    public List<ServiceLcnInfo> getServiceLcnInfos() {
        List<ServiceLcnInfo> infos = new ArrayList<>();
        for (int index = 0; index < MAX_SERVICE_INFOS; index++) {
            ServiceLcnInfo info = getServiceLcnInfo(index);
            if (info == null) {
                break;
            }
            infos.add(info);
        }
        return Collections.unmodifiableList(infos);
    }

    /**
     * Replaces the LCN information of the services: index 0 goes first, together with the
     * number of services, then the others in order.
     *
     * @return the first non-zero status (nothing is sent after it), or {@link #STATUS_OK}
     */
    public int setServiceLcnInfos(List<ServiceLcnInfo> infos) {
        int total = infos.size();
        if (total > 0xFFFF) {
            throw new IllegalArgumentException("too many services: " + total);
        }
        for (int index = 0; index < total; index++) {
            ServiceLcnInfo info = infos.get(index);
            int[] call = newCallArray(MAX_ARRAY);
            call[2] = total;
            call[3] = index;
            call[4] = info.word0();
            call[5] = info.word1();
            call[6] = info.word2();
            call[7] = info.word3();
            call[8] = info.byte0();
            call[9] = info.byte1();
            int status = nativeSetSvcLcnInfo(call);
            if (status != STATUS_OK) {
                return status;
            }
        }
        return STATUS_OK;
    }

    /** Called by the native side on the engine's event thread: the scan ended with conflicts. */
    void onLcnConflict() {
        Handler handler = mHandler;
        if (handler != null) {
            deliver("LCN conflict", () -> handler.onLcnConflict(this, getConflicts()));
        }
    }

    /** Called by the native side right after {@link #onLcnConflict()}. */
    void onLcnInfo() {
        Handler handler = mHandler;
        if (handler != null) {
            deliver("LCN info", () -> handler.onLcnInfo(this));
        }
    }

    private native int nativeGetLcnConflict(int[] call);

    private native int nativeGetLcnGarbageInfo(int[] call);

    private native int nativeGetServiceLcnInfo(int[] call);

    private native int nativeSetGarbageInfo(int[] call);

    private native int nativeSetSvcLcnInfo(int[] call);

    private native int nativeSetup(int[] setup);
}
