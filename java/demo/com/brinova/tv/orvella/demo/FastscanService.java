package com.brinova.tv.orvella.demo;

import com.brinova.tv.orvella.services.scan.ZelTvDvbsSatellite;
import com.brinova.tv.orvella.services.scan.ZelTvDvbsScanSettings;
import com.brinova.tv.orvella.services.scan.ZelTvScanFST;
import com.brinova.tv.orvella.services.scan.ZelTvScanFST.OperatorInfo;
import com.brinova.tv.orvella.services.scan.ZelTvScanFST.OperatorSelected;
import java.util.ArrayList;
import java.util.List;

/**
 * Fastscan: the operators' channel lists on the home transponder. A first scan learns the
 * operator sub-lists the tables offer; the user (or the rule) picks one, and a second scan
 * installs it. A receiver that has installed a list before (--installed) scans once to check
 * the tables' version; when the builder reports a change, it installs the list again.
 */
final class FastscanService implements SatelliteScanDemo.Service {
    /** The receiver's country: the rule prefers an operator of this country. */
    static final String COUNTRY = "NLD";
    /** The home transponder of the M7 operators' Fastscan tables on ASTRA 19.2E. */
    private static final ZelTvDvbsSatellite.Transponder HOME = new ZelTvDvbsSatellite.Transponder(
            12515, ZelTvDvbsSatellite.POL_HORIZONTAL, 22000, 0);

    /** A sub-list installed before: network id, sub-list id and the tables' version then. */
    record Installed(int networkId, int subListId, int version) {
        static Installed parse(String text) {
            String[] parts = text.split(",");
            if (parts.length != 3) {
                throw new IllegalArgumentException("--installed takes NWID,SUBLIST,VERSION, not "
                        + text);
            }
            try {
                return new Installed(Integer.parseInt(parts[0].trim()),
                        Integer.parseInt(parts[1].trim()), Integer.parseInt(parts[2].trim()));
            } catch (NumberFormatException e) {
                throw new IllegalArgumentException("--installed takes numbers, not " + text);
            }
        }

        OperatorSelected selection() {
            return new OperatorSelected(networkId, subListId, 0, version, "", "", 0);
        }

        boolean is(OperatorInfo op) {
            return op.getOperatorNWID() == networkId && op.getOperatorSLID() == subListId;
        }
    }

    /** What the builder's Fastscan tables said during one scan (on a builder thread). */
    private static final class Report implements ZelTvScanFST.FastscanListener {
        volatile String home;
        volatile List<OperatorInfo> operators = List.of();
        volatile int version = -1;
        volatile boolean changed;

        @Override
        public void onHomeTransponder(String satelliteId, int frequency, int polarization,
                int symbolRate) {
            home = frequency + " MHz " + ZelTvDvbsSatellite.polarizationName(polarization) + " "
                    + symbolRate + " kBd (satellite " + satelliteId + ")";
        }

        @Override
        public void onOperators(List<OperatorInfo> list) {
            operators = list;
        }

        @Override
        public void onVersion(int v) {
            version = v;
        }

        @Override
        public void onVersionChanged() {
            changed = true;
        }
    }

    private final Installed installed; // null: a first installation

    FastscanService(Installed installed) {
        this.installed = installed;
    }

    @Override
    public int run(SatelliteScanDemo demo) {
        ZelTvScanFST fst = new ZelTvScanFST();
        ZelTvDvbsScanSettings settings = demo.settings(COUNTRY, "dut");
        if (installed != null) {
            fst.selectOperator(installed.selection());
            demo.fact("installed", "network " + installed.networkId() + " sub-list "
                    + installed.subListId() + ", Fastscan version " + installed.version());
        }
        // The tables are on the home transponder: a scan of that one is enough to read them.
        ZelTvDvbsScanSettings homeOnly = new ZelTvDvbsScanSettings(settings)
                .setTransponder(ZelTvDvbsScanSettings.SCAN_TYPE_SINGLE_TRANSPONDER, HOME);
        Report first = new Report();
        fst.setFastscanListener(first);
        SatelliteScanDemo.Pass pass = demo.scan(installed == null
                ? "Fastscan: the operators on the home transponder"
                : "Fastscan: checking the installed list", homeOnly, List.of(fst));
        if (!pass.complete()) {
            return pass.exitCode();
        }
        showTables(demo, first);
        if (first.operators.isEmpty()) {
            demo.screen().error("satellite demo: the Fastscan tables listed no operator");
            return 1;
        }
        if (installed != null && !first.changed) {
            demo.summary(pass);
            demo.fact("Fastscan", "version " + first.version + ", the installed list is current");
            return 0;
        }
        OperatorInfo chosen = installed != null ? reinstalled(demo, first.operators)
                : choose(demo, first.operators);
        fst.selectOperator(new OperatorSelected(chosen));
        Report second = new Report();
        fst.setFastscanListener(second);
        pass = demo.scan("Fastscan: installing " + chosen, settings, List.of(fst));
        if (pass.complete()) {
            demo.summary(pass);
            demo.fact("operator", chosen + ", orbits " + orbits(chosen));
            demo.fact("Fastscan", "version " + second.version + (second.changed
                    ? ", changed again" : ", installed list current"));
        }
        return pass.exitCode();
    }

    private static void showTables(SatelliteScanDemo demo, Report r) {
        demo.fact("home TP", r.home == null ? "not reported" : r.home);
        demo.fact("Fastscan", r.version < 0 ? "no version reported" : "version " + r.version
                + (r.changed ? ", changed since the installed list" : ""));
        demo.fact("operators", r.operators.size() + " sub-lists");
    }

    /** The user's pick, or the rule's: the first sub-list of an operator of our country. */
    private static OperatorInfo choose(SatelliteScanDemo demo, List<OperatorInfo> operators) {
        int byRule = 0;
        for (int i = operators.size() - 1; i >= 0; i--) {
            byRule = COUNTRY.equals(operators.get(i).getCountryCode()) ? i : byRule;
        }
        demo.choice().heading("Fastscan operator", "the tables offer " + operators.size()
                + " operator sub-lists");
        int pick = demo.choice().ask(operators, op -> op + demo.screen().dim("  "
                + op.getCountryCode() + ", " + op.getMenuLangCode() + ", orbits " + orbits(op)),
                byRule, "the first sub-list of an operator of the receiver's country ("
                        + COUNTRY + "), else the first listed");
        OperatorInfo chosen = operators.get(pick);
        demo.screen().line("  operator " + chosen);
        return chosen;
    }

    /** The installed sub-list as the new tables describe it (the first listed when gone). */
    private OperatorInfo reinstalled(SatelliteScanDemo demo, List<OperatorInfo> operators) {
        for (OperatorInfo op : operators) {
            if (installed.is(op)) {
                demo.screen().line("  the tables changed: installing " + op + " again");
                return op;
            }
        }
        demo.screen().line("  the installed sub-list is gone: installing the first listed");
        return operators.get(0);
    }

    private static String orbits(OperatorInfo op) {
        List<String> names = new ArrayList<>();
        for (int orbit : op.getOrbitInfo()) {
            names.add(ZelTvDvbsSatellite.orbitName(orbit));
        }
        return String.join(" ", names);
    }
}
