package com.brinova.tv.orvella.testsupport;

import com.brinova.tv.orvella.services.scan.ZelTvScanFST;
import com.brinova.tv.orvella.services.scan.ZelTvScanHDPlus;
import com.brinova.tv.orvella.services.scan.ZelTvScanTKGS;
import java.util.Arrays;
import java.util.List;

/**
 * Listens to a Fastscan, TKGS or HD+ extension and records every report as one line, with
 * every field it carried, and the thread it came on ("version 7 @Thread-3").
 */
public final class SatelliteOpsRecorder
        implements ZelTvScanFST.FastscanListener, ZelTvScanTKGS.TKGSListener,
                ZelTvScanHDPlus.SGTListener {
    private final EventLog mLog = new EventLog();
    /** Index of the operator the chooser picks, or -1 to pick none. */
    private volatile int mPick = -1;

    public static SatelliteOpsRecorder listenTo(ZelTvScanFST fst) {
        SatelliteOpsRecorder r = new SatelliteOpsRecorder();
        fst.setFastscanListener(r);
        fst.setOperatorChooser(operators -> {
            r.mLog.add("choose " + operators.size());
            int pick = r.mPick;
            return pick >= 0 && pick < operators.size() ? operators.get(pick) : null;
        });
        return r;
    }

    public static SatelliteOpsRecorder listenTo(ZelTvScanTKGS tkgs) {
        SatelliteOpsRecorder r = new SatelliteOpsRecorder();
        tkgs.setTKGSListener(r);
        return r;
    }

    public static SatelliteOpsRecorder listenTo(ZelTvScanHDPlus hdPlus) {
        SatelliteOpsRecorder r = new SatelliteOpsRecorder();
        hdPlus.setSGTListener(r);
        return r;
    }

    public void pick(int index) {
        mPick = index;
    }

    public String[] events() {
        return mLog.events();
    }

    public String[] eventNames() {
        return mLog.eventNames();
    }

    public void clear() {
        mLog.clear();
    }

    public boolean await(String prefix, int count, long millis) throws InterruptedException {
        return mLog.await(prefix, count, millis);
    }

    @Override
    public void onHomeTransponder(String satelliteId, int frequency, int polarization,
            int symbolRate) {
        mLog.add("home " + satelliteId + " " + frequency + " " + polarization + " " + symbolRate);
    }

    @Override
    public void onOperators(List<ZelTvScanFST.OperatorInfo> operators) {
        StringBuilder s = new StringBuilder("operators " + operators.size());
        for (ZelTvScanFST.OperatorInfo o : operators) {
            s.append(" | ").append(describe(o));
        }
        mLog.add(s.toString());
    }

    /** Every field of an operator, in the record's order. */
    public static String describe(ZelTvScanFST.OperatorInfo o) {
        return o.getOperatorNWID() + "/" + o.getOperatorSLID() + " pid " + o.getFstPid()
                + " v" + o.getFstVersion() + " [" + o.getOperatorName() + "] ["
                + o.getOperatorSLName() + "] " + o.getCountryCode() + " " + o.getMenuLangCode()
                + " " + o.getAud1LangCode() + " " + o.getAud2LangCode() + " "
                + o.getSbtlLangCode() + " orbits " + o.getOrbitNum()
                + Arrays.toString(o.getOrbitInfo()) + " rating " + o.getPareConRate()
                + " charset " + o.getDeftCharSet() + " sbtl " + o.isSbtlEnabled() + " region "
                + o.isSpecRegnSetup() + " ott [" + o.getOTTBrandID() + "]";
    }

    @Override
    public void onVersion(int version) {
        mLog.add("version " + version);
    }

    @Override
    public void onVersionChanged() {
        mLog.add("version changed");
    }

    @Override
    public void onHiddenLocators(List<ZelTvScanTKGS.TKGSLocator> locators) {
        StringBuilder s = new StringBuilder("hidden " + locators.size());
        for (ZelTvScanTKGS.TKGSLocator l : locators) {
            s.append(" | ").append(l.getFrequency()).append(' ').append(l.getPol()).append(' ')
                    .append(l.getSymbolRate()).append(' ').append(l.getPID());
        }
        mLog.add(s.toString());
    }

    @Override
    public void onCategories(List<ZelTvScanTKGS.Category> categories) {
        StringBuilder s = new StringBuilder("categories " + categories.size());
        for (ZelTvScanTKGS.Category c : categories) {
            s.append(" | ").append(c.getNo()).append(' ').append(c.getName());
        }
        mLog.add(s.toString());
    }

    @Override
    public void onServiceLists(List<String> names) {
        mLog.add("lists " + names.size() + " " + String.join("|", names));
    }

    @Override
    public void onUserMessage(String message) {
        mLog.add("message " + message);
    }

    @Override
    public void onSGTVersion(int version) {
        mLog.add("sgt " + version);
    }
}
