// Name sorting of a terrestrial scan: Java fills a list of service names with a value each,
// entry by entry, and the whole list goes to the builder when the extension is attached.
#define LOG_TAG "ZelTvNameSorting_JNI"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_NativeZelTvNameSorting"

#include "ScanExtensionCommon.h"
#include "ScanRegistrations.h"

namespace android {

namespace {

const char* const kNameSortingClass = "com/brinova/tv/orvella/services/scan/ZelTvNameSorting";

// Up to 70 elements: six fixed ones and a name of 64 bytes.
constexpr jsize kNameSortingArrayLimit = 70;
using NameSortingCall = IntArrayCall<kNameSortingArrayLimit>;

// nativeSetNameList's int[] layout.
enum : size_t { kTotal = 2, kIndex = 3, kValue = 4, kLength = 5, kName = 6 };

}  // namespace

class NativeZelTvNameSorting : public JINativeScanExtension {
public:
    NativeZelTvNameSorting(JNIEnv* env, jobject thiz) {
        ExtensionPeer::take(mRefs, env, thiz, this, "NativeZelTvNameSorting",
                            ExtensionPeer::CreateLog::kWithPointers, SCAN_SITE);
    }

    int attach(unsigned int builderHandle) override {
        mBuilderHandle = builderHandle;
        BLOGD_RAW("attach");
        _dvbt_set_name_sorting_info();
        return 0;
    }
    int detach(unsigned int) override {
        mBuilderHandle = 0;
        return 0;
    }

    jint setNameList(NameSortingCall& call);

protected:
    // Never reached in practice (nothing owns the object), but correct from any thread: it
    // keeps no creating environment and attaches the thread it runs on.
    ~NativeZelTvNameSorting() override {
        ScanEnvAttacher attacher;
        jobject object = mRefs.object();
        if (attacher.env() != nullptr) {
            mRefs.release(attacher.env());
        }
        BLOGE_RAW("NativeZelTvNameSorting delete instance, weak mObject: %p ", object);
    }

private:
    // Sends the count and then every entry; stops at the first refusal.
    void _dvbt_set_name_sorting_info();

    SB_NAME_SORTING_ENTRY_T* entryAt(uint32_t index) {
        return mEntries != nullptr ? &mEntries[index] : nullptr;
    }

    BuilderHandle mBuilderHandle{0};
    uint32_t mEntryCount = 0;
    SB_NAME_SORTING_ENTRY_T* mEntries = nullptr;
    JavaPeerRefs mRefs;
};

void NativeZelTvNameSorting::_dvbt_set_name_sorting_info() {
    int32_t ret = x_sb_set(mBuilderHandle, SB_KEY_TYPE_NAME_SORTING_NUM, nullptr, sizeof(uint16_t),
                           keyValue(mEntryCount));
    if (ret != MWR_OK) {
        XLOGI(" exit, %d\n", ret);
        return;
    }
    for (uint32_t i = 0; i < mEntryCount; ++i) {
        ret = x_sb_set(mBuilderHandle, SB_KEY_TYPE_NAME_SORTING_INFO, keyIndex(i),
                       sizeof(SB_NAME_SORTING_ENTRY_T), entryAt(i));
        if (ret != MWR_OK) {
            XLOGI(" exit, %d\n", ret);
            return;
        }
    }
    XLOGI(" exit\n");
}

jint NativeZelTvNameSorting::setNameList(NameSortingCall& call) {
    SB_NAME_SORTING_ENTRY_T entry;
    x_memset(&entry, 0, sizeof(entry));
    entry.ui2_value = static_cast<uint16_t>(call[kValue]);
    // The length is a byte (300 means 44) of which at most 64 count.
    size_t length = static_cast<uint8_t>(call[kLength]);
    if (length > SB_NAME_SORTING_NAME_MAX) length = SB_NAME_SORTING_NAME_MAX;
    SITE_LOGD(call.site(), "[length:%d]\n", static_cast<int>(length));
    for (size_t i = 0; i < length; ++i) {
        entry.ac_name[i] = static_cast<char>(call[kName + i]);
        SITE_LOGD(call.site(), "[%d,%d]\n", static_cast<int>(i), static_cast<uint8_t>(entry.ac_name[i]));
    }
    entry.ac_name[length] = '\0';
    SITE_LOGD(call.site(), "[%d, %s]\n", entry.ui2_value, entry.ac_name);

    const uint16_t index = static_cast<uint16_t>(call[kIndex]);
    if (index == 0) {
        // Entry 0 starts a new list; the previous table is not released.
        // An empty list has no table (a zero-sized one would take entry 0 out of bounds).
        const uint32_t total = static_cast<uint16_t>(call[kTotal]);
        mEntries = total == 0 ? nullptr
                              : static_cast<SB_NAME_SORTING_ENTRY_T*>(
                                    x_mem_alloc(total * sizeof(SB_NAME_SORTING_ENTRY_T)));
        if (mEntries != nullptr) {
            x_memset(mEntries, 0, total * sizeof(SB_NAME_SORTING_ENTRY_T));
        }
        mEntryCount = total;
    }
    // Java sends indices below the count, entry 0 first. One past the table is dropped rather
    // than written over whatever follows it.
    if (mEntries != nullptr && index < mEntryCount) {
        mEntries[index].ui2_value = entry.ui2_value;
        x_memcpy(mEntries[index].ac_name, entry.ac_name, sizeof(entry.ac_name));
    }
    return 0;
}

}  // namespace android

using namespace android;

extern "C" SCAN_JNI_EXPORT jint Java_com_brinova_tv_orvella_scan_ZelTvNameSorting_nativeSetup(
    JNIEnv* env, jobject thiz, jintArray array) {
    return setupExtension<NativeZelTvNameSorting, kNameSortingArrayLimit>(env, thiz, array,
                                                                          SCAN_SITE);
}

extern "C" SCAN_JNI_EXPORT jint Java_com_brinova_tv_orvella_scan_ZelTvNameSorting_nativeSetNameList(
    JNIEnv* env, jobject, jintArray array) {
    return extensionCall(env, array, SCAN_SITE, &NativeZelTvNameSorting::setNameList);
}

namespace {

const JNINativeMethod gMethods[] = {
    {"nativeSetNameList", "([I)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvNameSorting_nativeSetNameList)},
    {"nativeSetup", "([I)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvNameSorting_nativeSetup)},
};

}  // namespace

int register_com_brinova_tv_orvella_scan_ZelTvNameSorting(JNIEnv* env) {
    // No callbacks: the class is only looked up again.
    return registerExtensionClass(env, kNameSortingClass, gMethods, tableSize(gMethods), nullptr, 0,
                                  SCAN_SITE);
}
