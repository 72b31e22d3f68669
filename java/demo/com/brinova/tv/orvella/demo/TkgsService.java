package com.brinova.tv.orvella.demo;

import com.brinova.tv.orvella.services.scan.ZelTvDvbsSatellite;
import com.brinova.tv.orvella.services.scan.ZelTvScanTKGS;
import com.brinova.tv.orvella.services.scan.ZelTvScanTKGS.Category;
import com.brinova.tv.orvella.services.scan.ZelTvScanTKGS.TKGSLocator;
import java.util.ArrayList;
import java.util.List;

/**
 * TKGS, the Turkish channel-list service: a first scan, with no TKGS tables installed,
 * learns the version, the hidden locators, the categories, the service lists and the
 * message for the viewer; the user (or the rule) picks a service list, and a second scan
 * installs it with the version and locators learned, so the builder has nothing new to say.
 */
final class TkgsService implements SatelliteScanDemo.Service {
    /** The TKGS PID of the locator a receiver ships with. */
    private static final int LOCATOR_PID = 3000;
    private static final int MODE = 0;

    /** What the builder's TKGS tables said during one scan (on a builder thread). */
    private static final class Report implements ZelTvScanTKGS.TKGSListener {
        volatile int version = -1;
        volatile List<TKGSLocator> hidden = List.of();
        volatile List<Category> categories = List.of();
        volatile List<String> lists = List.of();
        volatile String message;

        @Override
        public void onVersion(int v) {
            version = v;
        }

        @Override
        public void onHiddenLocators(List<TKGSLocator> locators) {
            hidden = locators;
        }

        @Override
        public void onCategories(List<Category> list) {
            categories = list;
        }

        @Override
        public void onServiceLists(List<String> names) {
            lists = names;
        }

        @Override
        public void onUserMessage(String text) {
            message = text;
        }
    }

    @Override
    public int run(SatelliteScanDemo demo) {
        ZelTvDvbsSatellite.Transponder home = demo.satellite().getTransponder(0);
        TKGSLocator visible = new TKGSLocator(home.getFrequency(), home.getPolarization(),
                home.getSymbolRate(), LOCATOR_PID);
        ZelTvScanTKGS tkgs = new ZelTvScanTKGS();
        tkgs.apply(new ZelTvScanTKGS.Settings().setVersion(0).setMode(MODE)
                .addVisibleLocator(visible));
        demo.fact("TKGS", "nothing installed (version 0), mode " + MODE + ", locator " + visible);
        Report first = new Report();
        tkgs.setTKGSListener(first);
        SatelliteScanDemo.Pass pass = demo.scan("TKGS: reading the tables",
                demo.settings("TUR", "tur"), List.of(tkgs));
        if (!pass.complete()) {
            return pass.exitCode();
        }
        show(demo, first);
        if (first.lists.isEmpty() || first.version < 0) {
            demo.screen().error("satellite demo: the TKGS tables gave no version or service list");
            return 1;
        }
        String list = demo.choice().askName("TKGS service list", "the tables offer "
                + first.lists.size() + " lists", first.lists, "the first list the tables give",
                "service list");
        ZelTvScanTKGS.Settings install = new ZelTvScanTKGS.Settings().setVersion(first.version)
                .setMode(MODE).setPreferredServiceList(list);
        first.hidden.forEach(install::addHiddenLocator);
        tkgs.apply(install);
        Report second = new Report();
        tkgs.setTKGSListener(second);
        pass = demo.scan("TKGS: installing \"" + list + "\"", demo.settings("TUR", "tur"),
                List.of(tkgs));
        if (pass.complete()) {
            demo.summary(pass);
            demo.fact("service list", "\"" + list + "\"");
            demo.fact("TKGS", "version " + second.version + (second.categories.isEmpty()
                    && second.lists.isEmpty() ? ", the tables are the installed ones"
                    : ", new tables"));
        }
        return pass.exitCode();
    }

    private static void show(SatelliteScanDemo demo, Report r) {
        demo.fact("TKGS", "version " + r.version);
        List<String> hidden = new ArrayList<>();
        r.hidden.forEach(l -> hidden.add(l.toString()));
        demo.fact("hidden", hidden.isEmpty() ? "none" : String.join(", ", hidden));
        List<String> categories = new ArrayList<>();
        r.categories.forEach(c -> categories.add(c.getNo() + " " + c.getName()));
        demo.fact("categories", r.categories.size() + ": " + String.join(", ", categories));
        demo.fact("service lists", r.lists.size() + ": " + String.join(", ", r.lists));
        if (r.message != null) {
            demo.choice().heading("Message", "from the TKGS tables, for the viewer");
            demo.screen().line("    " + demo.screen().bold(r.message));
        }
    }
}
