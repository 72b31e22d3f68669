package com.brinova.tv.orvella.testsupport;

import com.brinova.tv.orvella.services.scan.ZelTvAtscScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvAtscScanSettings;
import com.brinova.tv.orvella.services.scan.ZelTvCqamScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvCqamScanSettings;
import com.brinova.tv.orvella.services.scan.ZelTvDtmbScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvDtmbScanSettings;
import com.brinova.tv.orvella.services.scan.ZelTvDvbcScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvDvbcScanSettings;
import com.brinova.tv.orvella.services.scan.ZelTvDvbsConfigBase;
import com.brinova.tv.orvella.services.scan.ZelTvDvbsSatellite;
import com.brinova.tv.orvella.services.scan.ZelTvDvbsSatelliteConfig;
import com.brinova.tv.orvella.services.scan.ZelTvDvbsSatelliteSettings;
import com.brinova.tv.orvella.services.scan.ZelTvDvbsScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvDvbsScanSettings;
import com.brinova.tv.orvella.services.scan.ZelTvDvbtScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvDvbtScanSettings;
import com.brinova.tv.orvella.services.scan.ZelTvIsdbScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvIsdbScanSettings;
import com.brinova.tv.orvella.services.scan.ZelTvNameSorting;
import com.brinova.tv.orvella.services.scan.ZelTvScanAssociateList;
import com.brinova.tv.orvella.services.scan.ZelTvScanBouquet;
import com.brinova.tv.orvella.services.scan.ZelTvScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvScanDetectLNB;
import com.brinova.tv.orvella.services.scan.ZelTvScanDetectSatellite;
import com.brinova.tv.orvella.services.scan.ZelTvScanDetectTransponder;
import com.brinova.tv.orvella.services.scan.ZelTvScanEngine;
import com.brinova.tv.orvella.services.scan.ZelTvScanExtension;
import com.brinova.tv.orvella.services.scan.ZelTvScanFST;
import com.brinova.tv.orvella.services.scan.ZelTvScanFavNetwork;
import com.brinova.tv.orvella.services.scan.ZelTvScanHDPlus;
import com.brinova.tv.orvella.services.scan.ZelTvScanLcnConflict;
import com.brinova.tv.orvella.services.scan.ZelTvScanLcnV2ChannelList;
import com.brinova.tv.orvella.services.scan.ZelTvScanMDU;
import com.brinova.tv.orvella.services.scan.ZelTvScanNetwork;
import com.brinova.tv.orvella.services.scan.ZelTvScanRegionChannelList;
import com.brinova.tv.orvella.services.scan.ZelTvScanSatSearch;
import com.brinova.tv.orvella.services.scan.ZelTvScanTKGS;
import com.brinova.tv.orvella.services.scan.ZelTvScanTargetRegion;

import java.lang.ref.WeakReference;
import java.util.ArrayList;
import java.util.List;
import java.util.function.Supplier;
import java.util.stream.Stream;

/**
 * A tuner service's whole scan, as the fault sweep runs it once per refused middleware call:
 * engine, configuration and extensions created and prepared, configure, every extension
 * added, start, the scan with its decisions to its end, close, release of the engine and of
 * the configuration. Every step's status is recorded ("configure -22"); the scan's end is
 * awaited (bounded) only after a start that succeeded. Before each step {@link #mark} tells
 * the test which step the following middleware calls belong to.
 */
public final class SweepApplication {
    /** Bound on waiting for the scan's end: generous, only there so that a hang shows. */
    private static final long END_WAIT_MS = 30_000;
    /** Bound on waiting for the monitor's report. */
    private static final long MONITOR_WAIT_MS = 2_000;

    /** A configuration key ending so cancels the scan half-way ("dvbt cancelled"). */
    private static final String CANCELLED = " cancelled";
    /**
     * A configuration key ending so puts the builder into monitor mode after the scan, until
     * the builder reports a transport-stream list change ("dvbt monitored").
     */
    private static final String MONITORED = " monitored";
    private static final String TSL = ZelTvScanEngine.ChannelList.TRANSPORT_STREAMS.name().toLowerCase();
    /** Progress reports before the cancelled scan's builder waits half-way. */
    private static final int PROGRESS_BEFORE_CANCEL = 3;

    private final String mStandard;
    private final boolean mCancel;
    private final boolean mMonitor;
    private final String[] mExtensionNames;
    private final List<String> mSteps = new ArrayList<>();
    private final List<WeakReference<Object>> mObjects = new ArrayList<>();
    private final List<String> mObjectNames = new ArrayList<>();
    private String[] mDecisions = new String[0];
    /** What each satellite extension heard from the builder, read after the scan. */
    private final List<Supplier<String>> mHearing = new ArrayList<>();
    private String[] mHeard = new String[0];

    public SweepApplication(String standard, String[] extensionNames) {
        mCancel = standard.endsWith(CANCELLED);
        mMonitor = standard.endsWith(MONITORED);
        mStandard = standard.replace(CANCELLED, "").replace(MONITORED, "");
        mExtensionNames = extensionNames.clone();
    }

    /** Registered by the test: the middleware calls from here on belong to `step`. */
    private static native void mark(String step);

    /** Runs the lifecycle; answers the steps with their statuses, in order. */
    public String[] run() throws InterruptedException {
        mark("setup");
        ZelTvScanEngine engine = new ZelTvScanEngine(new TunerPipeline("tuner0"));
        RecordingEngineListener listener = RecordingEngineListener.attach(engine);
        SweepDecisions decisions = new SweepDecisions();
        ZelTvScanConfig config = newConfig(mStandard);
        List<ZelTvScanExtension> extensions = new ArrayList<>();
        for (String name : mExtensionNames) {
            mark("prepare " + name);
            extensions.add(newExtension(name, decisions));
        }
        keepWeakly("engine", engine);
        keepWeakly("config", config);
        keepWeakly("listener", listener);
        for (int i = 0; i < extensions.size(); i++) {
            keepWeakly(mExtensionNames[i], extensions.get(i));
        }
        mark("configure");
        step("configure", engine.configure(config, 1));
        for (int i = 0; i < extensions.size(); i++) {
            mark("add " + mExtensionNames[i]);
            step("add " + mExtensionNames[i], engine.addExtension(extensions.get(i)));
        }
        mark("start");
        int started = engine.start();
        step("start", started);
        if (started == ZelTvScanEngine.STATUS_OK && (!mCancel || cancelHalfWay(engine, listener))) {
            mark("scan");
            boolean ended = listener.awaitEnds(1, END_WAIT_MS);
            mSteps.add(ended ? "end" : "end timed out");
            if (ended && mMonitor) {
                monitor(engine, listener);
            }
        }
        mark("close");
        step("close", engine.close());
        mark("release");
        step("release", engine.release());
        mark("config release");
        step("config release", config.release());
        mark("done");
        mDecisions = decisions.decisions();
        mHeard = mHearing.stream().map(Supplier::get).toArray(String[]::new);
        mHearing.clear();  // the suppliers hold the extensions
        return mSteps.toArray(new String[0]);
    }

    /** Monitors the lists until the builder reports a transport-stream change, then stops. */
    private void monitor(ZelTvScanEngine engine, RecordingEngineListener listener)
            throws InterruptedException {
        int before = listener.listUpdates(TSL);
        mark("start monitor");
        int started = engine.startMonitor();
        step("start monitor", started);
        if (started == ZelTvScanEngine.STATUS_OK) {
            // "monitor transport_streams 1": what the monitor reported (nothing without the
            // list's registration, so the wait is short).
            boolean heard = listener.awaitListUpdates(TSL, before + 1, MONITOR_WAIT_MS);
            step("monitor " + TSL, heard ? 1 : 0);
        }
        mark("stop monitor");
        step("stop monitor", engine.stopMonitor());
    }

    /** Cancels the scan once it is half-way; true when the engine took the cancel. */
    private boolean cancelHalfWay(ZelTvScanEngine engine, RecordingEngineListener listener)
            throws InterruptedException {
        mark("scan");
        if (!listener.awaitProgress(PROGRESS_BEFORE_CANCEL, END_WAIT_MS)) {
            mSteps.add("half-way timed out");
        }
        mark("cancel");
        int cancelled = engine.cancel();
        step("cancel", cancelled);
        return cancelled == ZelTvScanEngine.STATUS_OK;
    }

    /** The choices the user set during the scan, each with its status. */
    public String[] decisions() {
        return mDecisions.clone();
    }

    /** Per satellite extension, what it heard during the scan: "fastscan: home operators". */
    public String[] heard() {
        return mHeard.clone();
    }

    private void hear(String name, Supplier<List<?>> reports) {
        mHearing.add(() -> name + ":" + reports.get().stream().map(r -> " " + r)
                .reduce("", String::concat));
    }

    private ZelTvScanExtension heardBy(String name, ZelTvScanExtension extension,
            SatelliteOpsRecorder recorder) {
        hear(name, () -> Stream.of(recorder.eventNames()).map(e -> e.split(" ")[0]).toList());
        return extension;
    }

    /** The objects of the lifecycle that are still reachable (empty once all were collected). */
    public String[] reachable() {
        List<String> out = new ArrayList<>();
        for (int i = 0; i < mObjects.size(); i++) {
            if (mObjects.get(i).get() != null) {
                out.add(mObjectNames.get(i));
            }
        }
        return out.toArray(new String[0]);
    }

    private void step(String name, int status) {
        mSteps.add(name + " " + status);
    }

    private void keepWeakly(String name, Object object) {
        mObjects.add(new WeakReference<>(object));
        mObjectNames.add(name);
    }

    /** The configuration the lifecycle of `standard` uses, made alone. */
    public static ZelTvScanConfig configuration(String standard) {
        return newConfig(standard);
    }

    /**
     * The configuration an application makes for `standard`: "dvbt", "dvbc", "dtmb", "atsc",
     * "cqam", "isdb", "dvbs" (the operator configuration on ASTRA 19.2E), "dvbs install" (the
     * operator configuration of a UK installation, one transponder on ASTRA 28.2E) or
     * "dvbs satellite" (the single-satellite configuration on TURKSAT 42E).
     */
    private static ZelTvScanConfig newConfig(String standard) {
        switch (standard) {
            case "dvbt":
                return new ZelTvDvbtScanConfig(new ZelTvDvbtScanSettings("GBR", "eng",
                        ZelTvDvbtScanSettings.SCAN_TYPE_FULL, ZelTvDvbtScanSettings.UPDATE_TYPE_REPLACE));
            case "dvbc":
                return new ZelTvDvbcScanConfig(
                        ZelTvDvbcScanSettings.builder("AUT", "deu").operator(33).full().build());
            case "dvbc china":  // the Chinese cable builder, a quick scan from the home frequency
                return new ZelTvDvbcScanConfig(
                        ZelTvDvbcScanSettings.builder("CHN", "chi").quick(259_000_000, 0x3001).build());
            case "dtmb manual":  // the builder asks for the frequency when the scan is set up
                return new ZelTvDtmbScanConfig(ZelTvDtmbScanSettings.manual("CHN", "chi", 674_000_000));
            case "dtmb":
                return new ZelTvDtmbScanConfig(new ZelTvDtmbScanSettings("CHN", "chi"));
            case "atsc":
                return new ZelTvAtscScanConfig(new ZelTvAtscScanSettings("USA"));
            case "cqam":
                return new ZelTvCqamScanConfig(new ZelTvCqamScanSettings("USA").range(100, 125)
                        .plan(ZelTvCqamScanSettings.FREQ_PLAN_STD));
            case "isdb":
                return new ZelTvIsdbScanConfig(new ZelTvIsdbScanSettings("BRA"));
            default:
                return newSatelliteConfig(standard);
        }
    }

    private static final ZelTvDvbsSatellite ASTRA_19E = new ZelTvDvbsSatellite(1, 1,
            "ASTRA 1KR/1L/1M/1N", 192, ZelTvDvbsSatellite.LNB_UNIVERSAL, List.of(
                    new ZelTvDvbsSatellite.Transponder(10744, ZelTvDvbsSatellite.POL_HORIZONTAL, 22000, 1005),
                    new ZelTvDvbsSatellite.Transponder(12515, ZelTvDvbsSatellite.POL_HORIZONTAL, 22000, 1111)));
    private static final ZelTvDvbsSatellite ASTRA_28E = new ZelTvDvbsSatellite(4, 4,
            "ASTRA 2E/2F/2G", 282, ZelTvDvbsSatellite.LNB_UNIVERSAL, List.of(
                    new ZelTvDvbsSatellite.Transponder(10773, ZelTvDvbsSatellite.POL_HORIZONTAL, 22000, 2045)));
    private static final ZelTvDvbsSatellite TURKSAT_42E = new ZelTvDvbsSatellite(2, 7,
            "TURKSAT 3A/4A/5B", 420, ZelTvDvbsSatellite.LNB_UNIVERSAL, List.of(
                    new ZelTvDvbsSatellite.Transponder(11054, ZelTvDvbsSatellite.POL_HORIZONTAL, 30000, 1),
                    new ZelTvDvbsSatellite.Transponder(11096, ZelTvDvbsSatellite.POL_HORIZONTAL, 30000, 2)));
    /** The operator value of a UK installation scan: the builder reads the installation fields. */
    private static final int OPERATOR_UK_INSTALLATION = 121;

    private static ZelTvScanConfig newSatelliteConfig(String standard) {
        ZelTvDvbsConfigBase config;
        switch (standard) {
            case "dvbs":
                config = new ZelTvDvbsScanConfig(new ZelTvDvbsScanSettings("DEU", "deu", ASTRA_19E)
                        .setServiceUpdateType(ZelTvDvbsScanSettings.UPDATE_TYPE_REPLACE));
                config.setSatellites(List.of(ASTRA_19E));
                return config;
            case "dvbs install":
                config = new ZelTvDvbsScanConfig(new ZelTvDvbsScanSettings("GBR", "eng", ASTRA_28E)
                        .setOperator(OPERATOR_UK_INSTALLATION).setTransponder(
                                ZelTvDvbsScanSettings.SCAN_TYPE_SINGLE_TRANSPONDER, ASTRA_28E.getTransponder(0)));
                config.setSatellites(List.of(ASTRA_28E));
                return config;
            case "dvbs satellite":
                config = new ZelTvDvbsSatelliteConfig(new ZelTvDvbsSatelliteSettings("TUR", 0,
                        ZelTvDvbsScanSettings.SCAN_TYPE_SATELLITE, TURKSAT_42E.getIdText(), "0,0", null));
                config.setSatellites(List.of(TURKSAT_42E));
                return config;
            default:
                throw new IllegalArgumentException("no configuration for " + standard);
        }
    }

    /** An extension as an application prepares it before adding it: choosers, lists, choices. */
    private ZelTvScanExtension newExtension(String name, SweepDecisions decisions) {
        switch (name) {
            case "favourite network": {
                ZelTvScanFavNetwork extension = new ZelTvScanFavNetwork();
                decisions.chooseFavouriteNetwork(extension, 1);
                return extension;
            }
            case "lcn conflict": {
                ZelTvScanLcnConflict extension = new ZelTvScanLcnConflict();
                decisions.resolveLcnConflicts(extension);
                return extension;
            }
            case "name sorting": {
                ZelTvNameSorting extension = new ZelTvNameSorting();
                step("names", extension.setNameList(List.of(new ZelTvNameSorting.Entry(1, "BBC ONE"),
                        new ZelTvNameSorting.Entry(2, "BBC TWO"), new ZelTvNameSorting.Entry(3, "ITV1"))));
                return extension;
            }
            case "target region": {
                ZelTvScanTargetRegion extension = new ZelTvScanTargetRegion();
                step("preselect region", extension.preselect(1, 1, 0, 0));
                decisions.chooseTargetRegion(extension, "Wales");
                return extension;
            }
            case "lcn v2": {
                ZelTvScanLcnV2ChannelList extension = new ZelTvScanLcnV2ChannelList();
                step("preselect list", extension.preselect(2));
                decisions.chooseChannelList(extension, 17);
                return extension;
            }
            default:
                return newSatelliteExtension(name);
        }
    }

    /** A satellite extension as an application prepares it: listeners, choices, settings. */
    private ZelTvScanExtension newSatelliteExtension(String name) {
        switch (name) {
            case "fastscan": {
                ZelTvScanFST extension = new ZelTvScanFST();
                SatelliteOpsRecorder recorder = SatelliteOpsRecorder.listenTo(extension);
                recorder.pick(2);
                return heardBy(name, extension, recorder);
            }
            case "tkgs": {
                ZelTvScanTKGS extension = new ZelTvScanTKGS();
                return heardBy(name, extension, SatelliteOpsRecorder.listenTo(extension));
            }
            case "hd plus": {
                ZelTvScanHDPlus extension = new ZelTvScanHDPlus();
                extension.setHDPlus(new ZelTvScanHDPlus.HDPlusInfo(11, true, true));
                return heardBy(name, extension, SatelliteOpsRecorder.listenTo(extension));
            }
            case "lnb detection": {
                ZelTvScanDetectLNB extension = new ZelTvScanDetectLNB();
                hear(name, extension::getDetections);
                return extension;
            }
            case "satellite detection": {
                ZelTvScanDetectSatellite extension = new ZelTvScanDetectSatellite();
                hear(name, extension::getDetections);
                return extension;
            }
            case "transponder detection": {
                ZelTvScanDetectTransponder extension = new ZelTvScanDetectTransponder();
                hear(name, extension::getDetections);
                return extension;
            }
            case "mdu": {
                ZelTvScanMDU extension = new ZelTvScanMDU();
                hear(name, extension::getDetections);
                return extension;
            }
            default:
                return newInstallationExtension(name);
        }
    }

    /** The installation extensions that take a setting before the scan. */
    private ZelTvScanExtension newInstallationExtension(String name) {
        switch (name) {
            case "network": {
                ZelTvScanNetwork extension = new ZelTvScanNetwork();
                step("nit version", extension.setKnownNitVersion(13));
                hear(name, extension::getFoundVersions);
                return extension;
            }
            case "bouquet": {
                ZelTvScanBouquet extension = new ZelTvScanBouquet();
                step("bouquet", extension.setBouquet(4101, 8));
                hear(name, extension::getFound);
                return extension;
            }
            case "associated list": {
                ZelTvScanAssociateList extension = new ZelTvScanAssociateList();
                step("associated", extension.setSatellites("1,1", "3,3"));
                return extension;
            }
            case "satellite search": {
                ZelTvScanSatSearch extension = new ZelTvScanSatSearch();
                step("customer lnb", extension.setCustomerLnb(true));
                return extension;
            }
            case "region list": {
                ZelTvScanRegionChannelList extension = new ZelTvScanRegionChannelList(0);
                extension.setChooser(lists -> lists.isEmpty() ? null : lists.get(0));
                hear(name, extension::getOfferedLists);
                return extension;
            }
            default:
                throw new IllegalArgumentException("no extension " + name);
        }
    }
}
