package com.brinova.tv.orvella.services.scan;

/**
 * Loads the native half of the scan API, {@code liborvella_scan_jni.so}.
 *
 * <p>Every class of this package that has natives calls {@link #load()} from its static
 * initialiser, so an application never needs to call it itself. The load has to start from
 * Java code of an application class: the library's load hook looks the package's classes up
 * through the class loader of the class that loaded it.
 *
 * <p>The load hook initialises the package's classes. An application that first touches
 * them from several threads at once should call {@link #load()} early from one thread, so
 * that no class initialisation of another thread waits on the load while the load waits on
 * it.
 */
public final class ZelTvScanLibrary {
    /** The name given to {@link System#loadLibrary(String)}. */
    public static final String LIBRARY_NAME = "orvella_scan_jni";

    private static boolean sLoaded;

    private ZelTvScanLibrary() {}

    /**
     * Loads the library once per class loader; later calls return at once.
     *
     * <p>The load hook registers the natives of every class of the package and thereby
     * initialises those classes, whose static initialisers call this method again on the
     * same thread: the flag is set before loading so that those calls return at once.
     *
     * @throws UnsatisfiedLinkError when the library cannot be found or its load hook fails
     */
    public static synchronized void load() {
        if (sLoaded) {
            return;
        }
        sLoaded = true;
        try {
            System.loadLibrary(LIBRARY_NAME);
        } catch (RuntimeException | Error e) {
            sLoaded = false;
            throw e;
        }
    }
}
