package com.brinova.tv.orvella.services.scan;

import java.lang.System.Logger;
import java.lang.System.Logger.Level;

/**
 * Runs application code on behalf of a call from the native side.
 *
 * <p>The native side does not look for Java exceptions after calling back, and the thread it
 * calls from (a scan-builder thread or the engine's event thread) goes on making JNI calls:
 * an exception left pending there would break those calls. Every callback therefore runs
 * its application part through {@link #deliver}, which reports and swallows whatever the
 * application throws.
 */
final class ScanCallbacks {
    static final Logger LOG = System.getLogger("com.brinova.tv.orvella.services.scan");

    private ScanCallbacks() {}

    static void deliver(String what, Runnable action) {
        try {
            action.run();
        } catch (Throwable t) { // nothing may stay pending on a native caller's thread
            LOG.log(Level.ERROR, "exception in " + what + " handler, ignored", t);
        }
    }

    static void warn(String message) {
        LOG.log(Level.WARNING, message);
    }
}
