package com.brinova.tv.orvella.testsupport;

import com.brinova.tv.orvella.services.scan.ZelTvDvbtScanSettings;

/** Settings whose getters answer what a test says, null included. */
public final class ScriptedDvbtSettings extends ZelTvDvbtScanSettings {
    public volatile String country;
    public volatile String language;

    public ScriptedDvbtSettings(String country, String language) {
        super("GBR", "eng");
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
