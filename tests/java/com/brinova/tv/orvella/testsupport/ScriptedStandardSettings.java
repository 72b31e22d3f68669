package com.brinova.tv.orvella.testsupport;

import com.brinova.tv.orvella.services.scan.ZelTvDtmbScanSettings;
import com.brinova.tv.orvella.services.scan.ZelTvDvbcScanSettings;
import com.brinova.tv.orvella.services.scan.ZelTvIsdbScanSettings;

/** Settings whose text getters (and DTMB's scan type) answer what a test says, null included. */
public final class ScriptedStandardSettings {
    private ScriptedStandardSettings() {}

    public static final class Dvbc extends ZelTvDvbcScanSettings {
        public volatile String country;
        public volatile String language;

        public Dvbc(String country, String language) {
            super("DEU", "deu");
            this.country = country;
            this.language = language;
        }

        @Override
        public String getCountry() {
            return country;
        }

        @Override
        public String getUiLanguage() {
            return language;
        }
    }

    public static final class Dtmb extends ZelTvDtmbScanSettings {
        public volatile String country;
        public volatile String language;
        public volatile boolean nullScanType;

        public Dtmb(String country, String language) {
            super("CHN", "chi");
            this.country = country;
            this.language = language;
        }

        @Override
        public String getCountry() {
            return country;
        }

        @Override
        public String getUiLanguage() {
            return language;
        }

        @Override
        public DtmbScanType getScanType() {
            return nullScanType ? null : super.getScanType();
        }
    }

    public static final class Isdb extends ZelTvIsdbScanSettings {
        public volatile String country;

        public Isdb(String country) {
            super("BRA");
            this.country = country;
        }

        @Override
        public String getCountry() {
            return country;
        }
    }
}
