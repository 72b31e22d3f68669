package com.brinova.tv.orvella.services.scan;

import java.util.List;
import java.util.Objects;

/**
 * Name sorting of a terrestrial scan: a list of service names, each with a value on which
 * the builder orders the services it finds under that name.
 *
 * <p>The list reaches the builder when the extension is added to the engine: call
 * {@link #setNameList} before {@link ZelTvScanEngine#addExtension}.
 */
public class ZelTvNameSorting extends ZelTvScanExtension {
    static {
        ZelTvScanLibrary.load();
    }

    private static final int MAX_ARRAY = 70;
    private static final int NAME_AT = 6;
    /** The longest name, in bytes, that the builder keeps. */
    public static final int NAME_MAX_BYTES = 64;

    /** One entry: a value (0 to 65535) and a service name (at most 64 bytes are kept). */
    public record Entry(int value, String name) {
        public Entry {
            Objects.requireNonNull(name, "name");
            if (value < 0 || value > 0xFFFF) {
                throw new IllegalArgumentException("value " + value + " outside 0..65535");
            }
        }
    }

    /** @throws ZelTvScanException when the native extension cannot be created */
    public ZelTvNameSorting() {
        super(MAX_ARRAY);
        int[] setup = newSetupArray();
        bindNativeExtension(nativeSetup(setup), setup);
    }

    /**
     * Replaces the name list, one native call per entry, the first one first. An empty list
     * sends nothing (a list sent before stays). Names are sent in ISO-8859-1 when they fit it,
     * in UTF-8 otherwise, cut to {@value #NAME_MAX_BYTES} bytes.
     *
     * @return the first non-zero status, or {@link #STATUS_OK}
     * @throws IllegalArgumentException for more than 65535 entries
     */
    public int setNameList(List<Entry> entries) {
        if (entries.size() > 0xFFFF) {
            throw new IllegalArgumentException("too many names: " + entries.size());
        }
        int total = entries.size();
        for (int index = 0; index < total; index++) {
            Entry entry = entries.get(index);
            byte[] name = ScanText.encode(entry.name(), NAME_MAX_BYTES);
            int[] call = newCallArray(NAME_AT + name.length);
            call[2] = total;
            call[3] = index;
            call[4] = entry.value();
            call[5] = name.length;
            for (int i = 0; i < name.length; i++) {
                call[NAME_AT + i] = name[i] & 0xFF;
            }
            int status = nativeSetNameList(call);
            if (status != STATUS_OK) {
                return status;
            }
        }
        return STATUS_OK;
    }

    private native int nativeSetNameList(int[] call);

    private native int nativeSetup(int[] setup);
}
