package com.brinova.tv.orvella.testsupport;

import com.brinova.tv.orvella.services.scan.ZelTvScanLibrary;

import java.lang.reflect.Field;

/** Loads the scan library from Java code of an application class, as a tuner service does. */
public final class TestLoader {
    private TestLoader() {}

    /** Returns null when the library loaded, else what the load threw. */
    public static String load() {
        try {
            ZelTvScanLibrary.load();
            return null;
        } catch (Throwable t) {
            keepClassesUsable();
            return t.toString();
        }
    }

    /*
     * After a failed load the library stays in the test process (the test binary links it),
     * with the natives registered before the failure still bound. Marking it loaded lets the
     * package's classes initialise, so that a test can see which natives are bound.
     */
    private static void keepClassesUsable() {
        try {
            Field loaded = ZelTvScanLibrary.class.getDeclaredField("sLoaded");
            loaded.setAccessible(true);
            loaded.setBoolean(null, true);
        } catch (ReflectiveOperationException e) {
            throw new IllegalStateException(e);
        }
    }
}
