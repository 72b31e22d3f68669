package com.brinova.tv.orvella.testsupport;

import com.brinova.tv.orvella.services.scan.ZelTvDvbtScanSettings;

/** Settings whose getters answer what a test says, null included, or throw what it says. */
public final class ScriptedDvbtSettings extends ZelTvDvbtScanSettings {
    public volatile String country;
    public volatile String language;
    public volatile RuntimeException countryFailure;
    public volatile RuntimeException scanTypeFailure;

    public ScriptedDvbtSettings(String country, String language) {
        super("GBR", "eng");
        this.country = country;
        this.language = language;
    }

    @Override
    public String getCountry() {
        if (countryFailure != null) throw countryFailure;
        return country;
    }

    @Override
    public int getScanType() {
        if (scanTypeFailure != null) throw scanTypeFailure;
        return super.getScanType();
    }

    @Override
    public String getUiLanguage() {
        return language;
    }
}
