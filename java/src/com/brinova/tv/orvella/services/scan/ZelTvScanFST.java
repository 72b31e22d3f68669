package com.brinova.tv.orvella.services.scan;

import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collections;
import java.util.List;
import java.util.Objects;

/**
 * Fastscan (FST) operator scans of a satellite scan: an operator such as Canal Digitaal or
 * TV Vlaanderen broadcasts its channel list, grouped in sub-lists, on a home transponder.
 *
 * <p>Before a scan the application chooses the operator and sub-list to install
 * ({@link #selectOperator}) and the satellites that carry the operator's services besides the
 * scanned one ({@link #setAssociatedSatellites}); both are written into the satellite scan's
 * parameters when the scan starts, the last choice winning. During the scan the builder
 * reports, on its own thread, the home transponder it found, the operators its tables list,
 * the table version and a version change; they go to the {@link FastscanListener}. An
 * {@link OperatorChooser}, when set, is asked with the operators found and its answer becomes
 * the selection of the next scan.
 */
public class ZelTvScanFST extends ZelTvScanExtension {
    static {
        ZelTvScanLibrary.load();
    }

    private static final int MAX_ARRAY = 50;
    /** The scan takes at most this many associated satellites; more are cut. */
    public static final int MAX_ASSOCIATED_SATELLITES = 15;
    /** Operator and sub-list names keep at most this many characters. */
    public static final int MAX_NAME_LENGTH = 63;

    /** One operator sub-list that the builder's Fastscan tables list. Filled by the native side. */
    public static final class OperatorInfo {
        private int mNetworkId;
        private int mSubListId;
        private int mFstPid;
        private int mFstVersion;
        private String mName = "";
        private String mSubListName = "";
        private String mCountryCode = "";
        private String mMenuLanguage = "";
        private String mAudio1Language = "";
        private String mAudio2Language = "";
        private String mSubtitleLanguage = "";
        private int[] mOrbits = new int[0];
        private int mParentalRating;
        private int mDefaultCharSet;
        private boolean mSubtitlesEnabled;
        private boolean mSpecialRegionSetup;
        private String mOttBrandId = "";

        public OperatorInfo() {}

        public int getOperatorNWID() {
            return mNetworkId;
        }

        public int getOperatorSLID() {
            return mSubListId;
        }

        public int getFstPid() {
            return mFstPid;
        }

        public int getFstVersion() {
            return mFstVersion;
        }

        public String getOperatorName() {
            return mName;
        }

        public String getOperatorSLName() {
            return mSubListName;
        }

        public String getCountryCode() {
            return mCountryCode;
        }

        public String getMenuLangCode() {
            return mMenuLanguage;
        }

        public String getAud1LangCode() {
            return mAudio1Language;
        }

        public String getAud2LangCode() {
            return mAudio2Language;
        }

        public String getSbtlLangCode() {
            return mSubtitleLanguage;
        }

        /** The number of orbital positions the operator's services use. */
        public int getOrbitNum() {
            return mOrbits.length;
        }

        /** The orbital positions, tenths of a degree, east positive. */
        public int[] getOrbitInfo() {
            return mOrbits.clone();
        }

        public int getPareConRate() {
            return mParentalRating;
        }

        public int getDeftCharSet() {
            return mDefaultCharSet;
        }

        public boolean isSbtlEnabled() {
            return mSubtitlesEnabled;
        }

        public boolean isSpecRegnSetup() {
            return mSpecialRegionSetup;
        }

        public String getOTTBrandID() {
            return mOttBrandId;
        }

        public void setOperatorNWID(int networkId) {
            mNetworkId = networkId;
        }

        public void setOperatorSLID(int subListId) {
            mSubListId = subListId;
        }

        public void setFstPid(int pid) {
            mFstPid = pid;
        }

        public void setFstVersion(int version) {
            mFstVersion = version;
        }

        public void setOperatorName(String name) {
            mName = orEmpty(name);
        }

        public void setOperatorSLName(String name) {
            mSubListName = orEmpty(name);
        }

        public void setCountryCode(String code) {
            mCountryCode = orEmpty(code);
        }

        public void setMenuLangCode(String code) {
            mMenuLanguage = orEmpty(code);
        }

        public void setAud1LangCode(String code) {
            mAudio1Language = orEmpty(code);
        }

        public void setAud2LangCode(String code) {
            mAudio2Language = orEmpty(code);
        }

        public void setSbtlLangCode(String code) {
            mSubtitleLanguage = orEmpty(code);
        }

        /** The count the tables announced; {@link #setOrbitInfo} carries the positions. */
        public void setOrbitNum(int count) {
            if (count != mOrbits.length) {
                mOrbits = Arrays.copyOf(mOrbits, Math.max(0, count));
            }
        }

        public void setOrbitInfo(int[] orbits) {
            mOrbits = orbits == null ? new int[0] : orbits.clone();
        }

        public void setPareConRate(int rating) {
            mParentalRating = rating;
        }

        public void setDeftCharSet(int charSet) {
            mDefaultCharSet = charSet;
        }

        public void setSbtlEnabled(boolean enabled) {
            mSubtitlesEnabled = enabled;
        }

        public void setSpecRegnSetup(boolean special) {
            mSpecialRegionSetup = special;
        }

        public void setOTTBrandID(String brand) {
            mOttBrandId = orEmpty(brand);
        }

        /** "Canal Digitaal / HD (nid 53, sub-list 1)". */
        @Override
        public String toString() {
            return mName + " / " + mSubListName + " (nid " + mNetworkId + ", sub-list "
                    + mSubListId + ")";
        }
    }

    /** The operator sub-list to install, as the scan's parameters carry it. */
    public static final class OperatorSelected {
        private final int mNetworkId;
        private final int mSubListId;
        private final int mFstPid;
        private final int mFstVersion;
        private final String mName;
        private final String mSubListName;
        private final int mDefaultCharSet;

        public OperatorSelected(int networkId, int subListId, int fstPid, int fstVersion,
                String name, String subListName, int defaultCharSet) {
            mNetworkId = networkId;
            mSubListId = subListId;
            mFstPid = fstPid;
            mFstVersion = fstVersion;
            mName = name;
            mSubListName = subListName;
            mDefaultCharSet = defaultCharSet;
        }

        /** The selection of an operator sub-list the builder reported. */
        public OperatorSelected(OperatorInfo operator) {
            this(operator.getOperatorNWID(), operator.getOperatorSLID(), operator.getFstPid(),
                    operator.getFstVersion(), operator.getOperatorName(),
                    operator.getOperatorSLName(), operator.getDeftCharSet());
        }

        public int getOperatorNWIDSel() {
            return mNetworkId;
        }

        public int getOperatorSLIDSel() {
            return mSubListId;
        }

        public int getFstPidSel() {
            return mFstPid;
        }

        public int getFstVersionSel() {
            return mFstVersion;
        }

        public String getOperatorNameSel() {
            return mName;
        }

        public String getOperatorSLNameSel() {
            return mSubListName;
        }

        public int getDeftCharSetSel() {
            return mDefaultCharSet;
        }

        @Override
        public String toString() {
            return mName + " / " + mSubListName + " (nid " + mNetworkId + ", sub-list "
                    + mSubListId + ", PID 0x" + Integer.toHexString(mFstPid) + ", version "
                    + mFstVersion + ")";
        }
    }

    /** Picks the operator sub-list to install from those the builder reported. */
    @FunctionalInterface
    public interface OperatorChooser {
        /**
         * @param operators the operator sub-lists, in the builder's order
         * @return the one to install on the next scan, or null to keep the current selection
         */
        OperatorInfo choose(List<OperatorInfo> operators);
    }

    /** Receives the builder's Fastscan reports during a scan, on a builder thread. */
    public interface FastscanListener {
        /**
         * @param satelliteId the home transponder's satellite as "id,recordId"
         * @param polarization 2 vertical, otherwise horizontal
         */
        default void onHomeTransponder(String satelliteId, int frequency, int polarization,
                int symbolRate) {}

        default void onOperators(List<OperatorInfo> operators) {}

        default void onVersion(int version) {}

        default void onVersionChanged() {}
    }

    private volatile FastscanListener mListener;
    private volatile OperatorChooser mChooser;
    private volatile OperatorSelected mSelected;

    /** @throws ZelTvScanException when the native extension cannot be created */
    public ZelTvScanFST() {
        super(MAX_ARRAY);
        int[] setup = newSetupArray();
        bindNativeExtension(nativeSetup(setup), setup);
    }

    public void setFastscanListener(FastscanListener listener) {
        mListener = listener;
    }

    public void setOperatorChooser(OperatorChooser chooser) {
        mChooser = chooser;
    }

    /** Sets the operator sub-list that the next scans install. */
    public void selectOperator(OperatorSelected selection) {
        Objects.requireNonNull(selection, "selection");
        nativeSetOperatorSelected(newCallArray(2), selection);
        mSelected = selection;
    }

    /** The last selection made, or null. */
    public OperatorSelected getSelectedOperator() {
        return mSelected;
    }

    /**
     * Sets the satellites that carry the operator's services, each as "id,recordId"; the
     * scan keeps the first {@link #MAX_ASSOCIATED_SATELLITES}.
     */
    public void setAssociatedSatellites(List<String> satelliteIds) {
        String[] ids = satelliteIds.toArray(new String[0]);
        for (String id : ids) {
            Objects.requireNonNull(id, "satellite id");
        }
        nativeSetAssociateSateInfo(newCallArray(2), ids);
    }

    void onDetectedHomeTPInfo(String satelliteId, int frequency, int polarization,
            int symbolRate) {
        FastscanListener listener = mListener;
        if (listener != null) {
            deliver("Fastscan home transponder", () -> listener.onHomeTransponder(satelliteId,
                    frequency, polarization, symbolRate));
        }
    }

    void onDetectedOperatorInfo(OperatorInfo[] operators) {
        List<OperatorInfo> list = operators == null ? Collections.emptyList()
                : Collections.unmodifiableList(new ArrayList<>(Arrays.asList(operators)));
        FastscanListener listener = mListener;
        if (listener != null) {
            deliver("Fastscan operators", () -> listener.onOperators(list));
        }
        OperatorChooser chooser = mChooser;
        if (chooser != null && !list.isEmpty()) {
            deliver("Fastscan operator choice", () -> {
                OperatorInfo chosen = chooser.choose(list);
                if (chosen != null) {
                    selectOperator(new OperatorSelected(chosen));
                }
            });
        }
    }

    void onFSTInfo(int version) {
        FastscanListener listener = mListener;
        if (listener != null) {
            deliver("Fastscan version", () -> listener.onVersion(version));
        }
    }

    void onFSTChanged() {
        FastscanListener listener = mListener;
        if (listener != null) {
            deliver("Fastscan version change", listener::onVersionChanged);
        }
    }

    private static String orEmpty(String s) {
        return s == null ? "" : s;
    }

    private native int nativeSetup(int[] setup);

    private native int nativeSetAssociateSateInfo(int[] call, String[] satelliteIds);

    private native int nativeSetOperatorSelected(int[] call, OperatorSelected selection);
}
