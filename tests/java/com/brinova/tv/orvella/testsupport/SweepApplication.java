package com.brinova.tv.orvella.testsupport;

import com.brinova.tv.orvella.services.scan.ZelTvDvbtScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvDvbtScanSettings;
import com.brinova.tv.orvella.services.scan.ZelTvNameSorting;
import com.brinova.tv.orvella.services.scan.ZelTvScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvScanEngine;
import com.brinova.tv.orvella.services.scan.ZelTvScanExtension;
import com.brinova.tv.orvella.services.scan.ZelTvScanFavNetwork;
import com.brinova.tv.orvella.services.scan.ZelTvScanLcnConflict;
import com.brinova.tv.orvella.services.scan.ZelTvScanLcnV2ChannelList;
import com.brinova.tv.orvella.services.scan.ZelTvScanTargetRegion;

import java.lang.ref.WeakReference;
import java.util.ArrayList;
import java.util.List;

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

    private final String mStandard;
    private final String[] mExtensionNames;
    private final List<String> mSteps = new ArrayList<>();
    private final List<WeakReference<Object>> mObjects = new ArrayList<>();
    private final List<String> mObjectNames = new ArrayList<>();
    private String[] mDecisions = new String[0];

    public SweepApplication(String standard, String[] extensionNames) {
        mStandard = standard;
        mExtensionNames = extensionNames.clone();
    }

    /** Registered by the test: the middleware calls from here on belong to `step`. */
    private static native void mark(String step);

    /** Runs the lifecycle; answers the steps with their statuses, in order. */
    public String[] run() throws InterruptedException {
        mark("setup");
        ZelTvScanEngine engine = new ZelTvScanEngine(new TunerPipeline("tuner0"));
        RecordingEngineListener listener = RecordingEngineListener.attach(engine);
        ScriptedDecisions decisions = new ScriptedDecisions(listener);
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
        if (started == ZelTvScanEngine.STATUS_OK) {
            mark("scan");
            mSteps.add(listener.awaitEnds(1, END_WAIT_MS) ? "end" : "end timed out");
        }
        mark("close");
        step("close", engine.close());
        mark("release");
        step("release", engine.release());
        mark("config release");
        step("config release", config.release());
        mark("done");
        mDecisions = decisions.decisions();
        return mSteps.toArray(new String[0]);
    }

    /** The decisions the scripted user made during the scan, without their thread. */
    public String[] decisions() {
        String[] out = new String[mDecisions.length];
        for (int i = 0; i < out.length; i++) {
            out[i] = mDecisions[i].replaceAll(" @.*", "");
        }
        return out;
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

    private static ZelTvScanConfig newConfig(String standard) {
        switch (standard) {
            case "dvbt":
                return new ZelTvDvbtScanConfig(new ZelTvDvbtScanSettings("GBR", "eng",
                        ZelTvDvbtScanSettings.SCAN_TYPE_FULL, ZelTvDvbtScanSettings.UPDATE_TYPE_REPLACE));
            default:
                throw new IllegalArgumentException("no configuration for " + standard);
        }
    }

    /** An extension as an application prepares it before adding it: choosers, lists, choices. */
    private ZelTvScanExtension newExtension(String name, ScriptedDecisions decisions) {
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
                throw new IllegalArgumentException("no extension " + name);
        }
    }
}
