package com.brinova.tv.orvella.testsupport;

import com.brinova.tv.orvella.services.scan.ZelTvScanEngine;
import com.brinova.tv.orvella.services.scan.ZelTvScanFavNetwork;

import java.util.concurrent.CountDownLatch;
import java.util.concurrent.TimeUnit;

/** Listeners that call back into the engine from the threads the library calls them on. */
public final class ReentrantCalls {
    private ReentrantCalls() {}

    /** A list listener that, once released, cancels the engine from the builder's thread. */
    public static final class CancelOnListUpdate implements ZelTvScanEngine.Listener {
        private final ZelTvScanEngine mEngine;
        public final CountDownLatch entered = new CountDownLatch(1);
        public final CountDownLatch release = new CountDownLatch(1);
        public volatile int cancelStatus = Integer.MIN_VALUE;

        public CancelOnListUpdate(ZelTvScanEngine engine) {
            mEngine = engine;
        }

        @Override
        public void onListUpdate(ZelTvScanEngine.ChannelList list, int listId, int count,
                int[] eventTypes, int[] eventRecords) {
            entered.countDown();
            try {
                release.await(10, TimeUnit.SECONDS);
            } catch (InterruptedException e) {
                Thread.currentThread().interrupt();
            }
            cancelStatus = mEngine.cancel();
        }

        public void open() {
            release.countDown();
        }

        public boolean awaitEntered() throws InterruptedException {
            return entered.await(10, TimeUnit.SECONDS);
        }
    }

    /** A favourite-network user who, asked on the event thread, removes the extension. */
    public static void removeWhenAsked(ZelTvScanEngine engine, ZelTvScanFavNetwork extension) {
        extension.setChooser(candidates -> {
            engine.removeExtension(extension);
            return ZelTvScanFavNetwork.Chooser.NONE;
        });
    }
}
