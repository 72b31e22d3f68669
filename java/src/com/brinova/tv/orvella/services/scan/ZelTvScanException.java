package com.brinova.tv.orvella.services.scan;

/**
 * Thrown when a scan object cannot be created: its native setup answered a non-zero status
 * or left no native object behind.
 */
public class ZelTvScanException extends IllegalStateException {
    private static final long serialVersionUID = 1L;

    private final int mStatus;

    public ZelTvScanException(String message, int status) {
        super(message + " (status " + status + ")");
        mStatus = status;
    }

    /** The status the native setup answered (0 when it answered 0 but created nothing). */
    public int getStatus() {
        return mStatus;
    }
}
