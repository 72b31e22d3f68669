package com.brinova.tv.orvella.services.scan;

/**
 * Base of the scan extensions: optional features that a scan engine calls at fixed moments
 * of a scan (attached to the builder, before the start, at the end).
 *
 * <p>A subclass creates its native half in its constructor through its {@code nativeSetup}
 * and hands the array that call filled to {@link #bindNativeExtension}. The native half lives
 * as long as the process; the Java object must stay reachable while an engine uses it (the
 * engine keeps the extensions it has added).
 *
 * <p>The other natives of an extension take an {@code int[]}: element 0 receives the status,
 * element 1 carries the native handle ({@link #newCallArray}), the elements after that are
 * the call's inputs and outputs. Each class has a limit on the array's length.
 */
public abstract class ZelTvScanExtension {
    /** Status of a native call that succeeded. */
    public static final int STATUS_OK = 0;
    /** Status of a native call whose item does not exist, or that the builder refused. */
    public static final int STATUS_NOT_FOUND = -6;

    private final int mMaxArrayLength;
    private volatile long mNativeExtension;

    /** @param maxArrayLength the longest {@code int[]} the class's natives accept */
    ZelTvScanExtension(int maxArrayLength) {
        mMaxArrayLength = maxArrayLength;
    }

    /** A fresh array for {@code nativeSetup}. */
    static int[] newSetupArray() {
        return new int[2];
    }

    /**
     * Takes the handle from the array that {@code nativeSetup} filled: element 1 gives the low
     * 32 bits, element 0 the high 32 bits.
     *
     * @throws ZelTvScanException when the setup answered non-zero or gave no handle
     */
    final void bindNativeExtension(int status, int[] setup) {
        long handle = ((long) setup[0] << 32) | (setup[1] & 0xFFFFFFFFL);
        if (status != 0 || (int) handle == 0) {
            throw new ZelTvScanException(getClass().getSimpleName() + " not created", status);
        }
        mNativeExtension = handle;
    }

    /** The extension handle that the engine's add and remove take (0 before setup). */
    public final long getNativeExtension() {
        return mNativeExtension;
    }

    /**
     * A zeroed array of {@code length} elements for a native call, with the handle's low 32
     * bits in element 1.
     *
     * @throws IllegalArgumentException when the length is below 2 or above the class's limit
     */
    final int[] newCallArray(int length) {
        if (length < 2 || length > mMaxArrayLength) {
            throw new IllegalArgumentException(getClass().getSimpleName() + ": array length "
                    + length + " outside 2.." + mMaxArrayLength);
        }
        int[] call = new int[length];
        call[1] = (int) mNativeExtension;
        return call;
    }

    /** The longest {@code int[]} the class's natives accept. */
    final int maxArrayLength() {
        return mMaxArrayLength;
    }

    /** Decodes a name answered one byte per element (see the class comment of the codec). */
    static String decodeName(int[] elements, int from, int maxBytes) {
        return ScanText.decode(elements, from, maxBytes);
    }

    /** Runs a callback's application part so that nothing it throws reaches the native side. */
    static void deliver(String what, Runnable action) {
        ScanCallbacks.deliver(what, action);
    }

    @Override
    public String toString() {
        return getClass().getSimpleName() + "[0x" + Long.toHexString(mNativeExtension) + "]";
    }
}
