package com.brinova.tv.orvella.testsupport;

import com.brinova.tv.orvella.services.scan.ZelTvIsdbScanConfig;
import com.brinova.tv.orvella.services.scan.ZelTvIsdbScanSettings;
import java.util.ArrayList;
import java.util.List;

/** An ISDB configuration that records the channels its getScanIndex is asked for. */
public final class RecordingIsdbConfig extends ZelTvIsdbScanConfig {
    private static final List<Integer> sAsked = new ArrayList<>();

    public RecordingIsdbConfig(ZelTvIsdbScanSettings settings) {
        super(settings);
    }

    /** Answers 100 + the channel, so that the block shows which channel was asked. */
    @Override
    protected int getScanIndex(int channel) {
        synchronized (sAsked) {
            sAsked.add(channel);
        }
        return 100 + channel;
    }

    /** The channels asked since the last call, in order. */
    public static int[] takeAsked() {
        synchronized (sAsked) {
            int[] out = sAsked.stream().mapToInt(Integer::intValue).toArray();
            sAsked.clear();
            return out;
        }
    }
}
