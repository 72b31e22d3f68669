// Satellite search: whether the dish has a customer-specific LNB, written into every scan.
#define LOG_TAG "ZelTvScanSatSearch_JNI"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_NativeZelTvScanSatSearch"

#include "ScanRegistrations.h"
#include "SatelliteExtensionCommon.h"

namespace android {

namespace {

const char* const kSatSearchClass = "com/brinova/tv/orvella/services/scan/ZelTvScanSatSearch";
const char* const kSatSearchInfoClass =
    "com/brinova/tv/orvella/services/scan/ZelTvScanSatSearch$SatSearchInfo";

struct {
    jmethodID getNativeExtension;
    struct {
        jmethodID getIsCustomerLNB;
    } satSearchInfo;
} gFields;

}  // namespace

class NativeZelTvScanSatSearch : public SatelliteExtension {
public:
    NativeZelTvScanSatSearch(JNIEnv* env, jobject thiz)
        : SatelliteExtension(LOG_TAG),
          mPeer(env, thiz, this, "NativeZelTvScanSatSearch", SCAN_SITE) {}

    void onPreScan(void* scanParams) override {
        XLOGI(" enter\n");
        // One byte of the field that HD+ writes as 16 bits: the later onPreScan decides.
        SB_DVBS_SCAN_PARAMS* block = satelliteBlockOf(scanParams, SCAN_SITE);
        if (block == nullptr) return;
        block->u_160.b_customized_lnb = mCustomerLnb;
        XLOGI(" =b_customized_lnb=%u\n", mCustomerLnb);
        XLOGI(" leave\n");
    }

    void setCustomerLnb(jboolean customerLnb) { mCustomerLnb = customerLnb != JNI_FALSE ? 1 : 0; }

protected:
    ~NativeZelTvScanSatSearch() override = default;

private:
    uint8_t mCustomerLnb = 0;
    ExtensionPeer mPeer;
};

}  // namespace android

using namespace android;

extern "C" SCAN_JNI_EXPORT jint
Java_com_brinova_tv_orvella_scan_NativeZelTvScanSatSearch_nativeSetup(JNIEnv* env, jobject thiz,
                                                                      jintArray array) {
    return setupExtension<NativeZelTvScanSatSearch>(env, thiz, array, SCAN_SITE);
}

extern "C" SCAN_JNI_EXPORT jint
Java_com_brinova_tv_orvella_scan_NativeZelTvScanSatSearch_NativeSetSatSearch(JNIEnv* env,
                                                                             jobject thiz,
                                                                             jobject info) {
    JavaCallerScope scope(env);
    InfoCall<NativeZelTvScanSatSearch> call(env, thiz, info, gFields.getNativeExtension, SCAN_SITE);
    const jboolean customerLnb = call.getBoolean(gFields.satSearchInfo.getIsCustomerLNB);
    if (NativeZelTvScanSatSearch* extension = call.extension()) {
        extension->setCustomerLnb(customerLnb);
    }
    return 0;
}

namespace {

const JNINativeMethod gMethods[] = {
    {"NativeSetSatSearch",
     "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanSatSearch$SatSearchInfo;)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_NativeZelTvScanSatSearch_NativeSetSatSearch)},
    {"nativeSetup", "([I)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_NativeZelTvScanSatSearch_nativeSetup)},
};

const MethodSpec gCallbacks[] = {
    {&gFields.getNativeExtension, "getNativeExtension", "()J",
     "!(gFields.getNativeExtension != __null)"},
};

const MethodSpec gInfoGetters[] = {
    {&gFields.satSearchInfo.getIsCustomerLNB, "getIsCustomerLNB", "()Z",
     "!(gFields.satSearchInfo.getIsCustomerLNB != __null)"},
};

}  // namespace

int register_com_brinova_tv_orvella_scan_NativeZelTvScanSatSearch(JNIEnv* env) {
    const SatelliteRegistration registration = {
        kSatSearchClass, gMethods, tableSize(gMethods), gCallbacks, std::size(gCallbacks),
        kRegistrationFailed, nullptr, 0, nullptr, kSatSearchInfoClass, gInfoGetters, std::size(gInfoGetters)};
    return registerSatelliteClass(env, registration, SCAN_SITE);
}
