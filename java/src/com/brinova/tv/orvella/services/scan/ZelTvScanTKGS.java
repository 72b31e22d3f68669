package com.brinova.tv.orvella.services.scan;

import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collections;
import java.util.List;
import java.util.Objects;

/**
 * TKGS, the Turkish satellite channel-list service on TÜRKSAT 42°E: transponders called
 * locators carry tables with the channel lists, their categories and messages for the viewer.
 *
 * <p>Before a scan the application gives the TKGS table version it already has, the TKGS mode,
 * the service list it prefers and the locators it knows ({@link #apply} with a
 * {@link Settings}); they are written into the satellite scan's parameters when the scan
 * starts. Locators only add up: the scan takes at most {@link #MAX_HIDDEN_LOCATORS} hidden and
 * {@link #MAX_VISIBLE_LOCATORS} visible ones over the extension's life. During the scan the
 * builder reports, on its own thread, the new version, the hidden locators, the categories,
 * the service lists and a user message to the {@link TKGSListener}.
 */
public class ZelTvScanTKGS extends ZelTvScanExtension {
    static {
        ZelTvScanLibrary.load();
    }

    private static final int MAX_ARRAY = 50;
    /** Locator types, as element 2 of the call array carries them. */
    public static final int LOCATOR_VISIBLE = 0;
    public static final int LOCATOR_HIDDEN = 1;
    public static final int MAX_HIDDEN_LOCATORS = 20;
    public static final int MAX_VISIBLE_LOCATORS = 5;
    /** The preferred service list name keeps at most this many characters. */
    public static final int MAX_PREFERRED_LIST_LENGTH = 31;

    /** A transponder carrying TKGS tables: frequency (MHz), polarisation, symbol rate, PID. */
    public static final class TKGSLocator {
        private int mFrequency;
        private int mPol;
        private int mSymbolRate;
        private int mPid;

        public TKGSLocator() {}

        public TKGSLocator(int frequency, int pol, int symbolRate, int pid) {
            mFrequency = frequency;
            mPol = pol;
            mSymbolRate = symbolRate;
            mPid = pid;
        }

        public int getFrequency() {
            return mFrequency;
        }

        public int getPol() {
            return mPol;
        }

        public int getSymbolRate() {
            return mSymbolRate;
        }

        public int getPID() {
            return mPid;
        }

        public void setFrequency(int frequency) {
            mFrequency = frequency;
        }

        public void setPol(int pol) {
            mPol = pol;
        }

        public void setSymbolRate(int symbolRate) {
            mSymbolRate = symbolRate;
        }

        public void setPID(int pid) {
            mPid = pid;
        }

        @Override
        public boolean equals(Object o) {
            return o instanceof TKGSLocator l && l.mFrequency == mFrequency && l.mPol == mPol
                    && l.mSymbolRate == mSymbolRate && l.mPid == mPid;
        }

        @Override
        public int hashCode() {
            return Objects.hash(mFrequency, mPol, mSymbolRate, mPid);
        }

        /** "11096 V 30000 PID 0x0bb8". */
        @Override
        public String toString() {
            return mFrequency + " " + (mPol == 2 ? "V" : "H") + " "
                    + mSymbolRate + " PID 0x" + String.format("%04x", mPid);
        }
    }

    /** A channel category of the TKGS tables: its number and name. */
    public static final class Category {
        private int mNo;
        private String mName = "";

        public Category() {}

        public int getNo() {
            return mNo;
        }

        public String getName() {
            return mName;
        }

        public void setNo(int no) {
            mNo = no;
        }

        public void setName(String name) {
            mName = name == null ? "" : name;
        }

        @Override
        public String toString() {
            return mNo + " " + mName;
        }
    }

    /** What a TKGS scan starts from; {@link #apply} hands it to the native side. */
    public static final class Settings {
        private int mVersion;
        private int mMode;
        private String mPreferredList;
        private final List<TKGSLocator> mHidden = new ArrayList<>();
        private final List<TKGSLocator> mVisible = new ArrayList<>();

        /** The TKGS table version the receiver already has (0 to 255). */
        public Settings setVersion(int version) {
            mVersion = version;
            return this;
        }

        /** The TKGS mode, as the builder numbers it (0 to 255). */
        public Settings setMode(int mode) {
            mMode = mode;
            return this;
        }

        /** The service list to install, by name; null for none. */
        public Settings setPreferredServiceList(String name) {
            mPreferredList = name;
            return this;
        }

        public Settings addHiddenLocator(TKGSLocator locator) {
            mHidden.add(Objects.requireNonNull(locator, "locator"));
            return this;
        }

        public Settings addVisibleLocator(TKGSLocator locator) {
            mVisible.add(Objects.requireNonNull(locator, "locator"));
            return this;
        }

        public int getVersion() {
            return mVersion;
        }

        public int getMode() {
            return mMode;
        }

        public String getPreferredServiceList() {
            return mPreferredList;
        }

        public List<TKGSLocator> getHiddenLocators() {
            return Collections.unmodifiableList(mHidden);
        }

        public List<TKGSLocator> getVisibleLocators() {
            return Collections.unmodifiableList(mVisible);
        }
    }

    /** Receives the builder's TKGS reports during a scan, on a builder thread. */
    public interface TKGSListener {
        default void onVersion(int version) {}

        default void onHiddenLocators(List<TKGSLocator> locators) {}

        default void onCategories(List<Category> categories) {}

        default void onServiceLists(List<String> names) {}

        default void onUserMessage(String message) {}
    }

    private volatile TKGSListener mListener;
    private int mHiddenSent;
    private int mVisibleSent;

    /** @throws ZelTvScanException when the native extension cannot be created */
    public ZelTvScanTKGS() {
        super(MAX_ARRAY);
        int[] setup = newSetupArray();
        bindNativeExtension(nativeSetup(setup), setup);
    }

    public void setTKGSListener(TKGSListener listener) {
        mListener = listener;
    }

    /**
     * Hands the settings to the native side: version, mode, the preferred list when one is
     * named, and the locators, which add to those given before.
     *
     * @return the number of locators the scan will not take because the limits were reached
     */
    public synchronized int apply(Settings settings) {
        nativeSetTKGSVersion(newCallArray(2), settings.getVersion());
        nativeSetTKGSMode(newCallArray(2), settings.getMode());
        if (settings.getPreferredServiceList() != null) {
            nativeSetPrefServiceList(newCallArray(2), settings.getPreferredServiceList());
        }
        int dropped = 0;
        for (TKGSLocator locator : settings.getHiddenLocators()) {
            dropped += addLocator(LOCATOR_HIDDEN, locator) ? 0 : 1;
        }
        for (TKGSLocator locator : settings.getVisibleLocators()) {
            dropped += addLocator(LOCATOR_VISIBLE, locator) ? 0 : 1;
        }
        return dropped;
    }

    private boolean addLocator(int type, TKGSLocator locator) {
        int[] call = newCallArray(3);
        call[2] = type;
        nativeSetLocator(call, locator);
        if (type == LOCATOR_HIDDEN) {
            return ++mHiddenSent <= MAX_HIDDEN_LOCATORS;
        }
        return ++mVisibleSent <= MAX_VISIBLE_LOCATORS;
    }

    void nativeOnTKGSVersion(int version) {
        TKGSListener listener = mListener;
        if (listener != null) {
            deliver("TKGS version", () -> listener.onVersion(version));
        }
    }

    void nativeOnHiddenLocator(TKGSLocator[] locators) {
        TKGSListener listener = mListener;
        if (listener != null) {
            List<TKGSLocator> list = listOf(locators);
            deliver("TKGS hidden locators", () -> listener.onHiddenLocators(list));
        }
    }

    void nativeOnCategory(Category[] categories) {
        TKGSListener listener = mListener;
        if (listener != null) {
            List<Category> list = listOf(categories);
            deliver("TKGS categories", () -> listener.onCategories(list));
        }
    }

    void nativeOnServiceList(String[] names) {
        TKGSListener listener = mListener;
        if (listener != null) {
            List<String> list = listOf(names);
            deliver("TKGS service lists", () -> listener.onServiceLists(list));
        }
    }

    void nativeOnUserMessage(String message) {
        TKGSListener listener = mListener;
        if (listener != null) {
            deliver("TKGS user message", () -> listener.onUserMessage(message));
        }
    }

    private static <T> List<T> listOf(T[] items) {
        return items == null ? Collections.emptyList()
                : Collections.unmodifiableList(new ArrayList<>(Arrays.asList(items)));
    }

    private native int nativeSetup(int[] setup);

    private native int nativeSetTKGSVersion(int[] call, int version);

    private native int nativeSetTKGSMode(int[] call, int mode);

    private native int nativeSetPrefServiceList(int[] call, String name);

    private native int nativeSetLocator(int[] call, TKGSLocator locator);
}
