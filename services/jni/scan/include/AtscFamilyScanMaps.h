/*
 * The scan-maps frame of the ATSC, clear-QAM and ISDB configurations: the three differ
 * only by their callback's name, their command table and the closing line of a command
 * that writes nothing. Unlike the DVB callbacks, this frame never changes *pz_output_len.
 * The channel-index range of the ATSC and clear-QAM blocks is read here as well.
 */
#ifndef ATSC_FAMILY_SCAN_MAPS_H
#define ATSC_FAMILY_SCAN_MAPS_H

#include <stdint.h>

#include <initializer_list>

#include <jni.h>

#include "JINativeScanConfig.h"

namespace android {

/* What a command of the family's tables checks and writes. */
enum class FamilyCommandKind { kWord32, kWord16, kBypass };

struct AtscFamilyScanMaps {
    const char* name;                           /* the callback's name, as its lines give it */
    FamilyCommandKind (*kind)(uint32_t cmd);    /* the standard's table */
    /* The closing line of a command that writes nothing: ATSC's and ISDB's name a bandwidth
     * size, clear QAM's says the command is not supported. */
    bool closesWithBandwidth;
    const jmethodID* onScanMapCommands;
};

/* The command table of ATSC, which ISDB uses as well. */
FamilyCommandKind atscCommandKind(uint32_t cmd);

/* The callback's body once it knows its standard; `site` is the callback's own. */
int32_t atscFamilyScanMaps(const AtscFamilyScanMaps& family, const ScanSite& site, uint32_t cmd,
                           char* country, void* pv_input, void* pv_output,
                           uint32_t* pz_output_len, void* pv_tag);

/*
 * The 32-bit channel-index word of the ATSC and clear-QAM blocks, read from the config
 * object: type 5 the start index high and the end index low, type 4 the start index in
 * both halves, any other type 0 (and no getter called).
 */
uint32_t readIndexRange(JNIEnv* env, jobject thiz, jint scanType, jmethodID getStart,
                        jmethodID getEnd, const ScanSite& site);

/* What the three look up on their config class (getters called on it, not on the settings)
 * and their settings class; each file's gFields adds its own getters. */
struct AtscFamilyFields {
    jmethodID getNativeConfigId;
    jmethodID setNativeConfigId;
    jmethodID getScanTypeId;
    jmethodID getScanStartIndexId;
    jmethodID getScanEndIndexId;
    jmethodID onScanMapCommandsId;
    jmethodID onStatusId;
    jmethodID checkScanMapsId;
    struct {
        jmethodID getCountryId;
    } scanSettings;
};

/*
 * The configuration class of the three, over the standard's block: its builder name and
 * scan-maps callback are the only particulars. `site` is the standard's own, taken by its
 * constructor, so that the lines carry its tag.
 */
template <typename Block>
class AtscFamilyConfig : public ScanConfigPeer<Block> {
public:
    const char* getSbEbEngineName() override { return mEngineName; }
    void* getSbScanMapsNotify() override {
        SITE_LOG_RAW(mSite, BRINOVA_LOG_DEBUG, "[debug]getSbScanMapsNotify: %p", mScanMaps);
        return mScanMaps;
    }
    int checkScanMaps() override { return this->callCheckSettings(mFields.checkScanMapsId, mSite); }
    void onStatus(int status) override { this->callOnStatus(mFields.onStatusId, status, mSite); }
    Block& block() { return this->mBlock; }

protected:
    AtscFamilyConfig(JNIEnv* env, jobject obj, const ScanSite& site, const AtscFamilyFields& fields,
                     const char* engineName, void* scanMaps)
        : ScanConfigPeer<Block>(env, obj, site), mSite(site), mFields(fields),
          mEngineName(engineName), mScanMaps(scanMaps) {}

private:
    const ScanSite mSite;
    const AtscFamilyFields& mFields;
    const char* const mEngineName;
    void* const mScanMaps;
};

/* Java's native pointer of a config object of the three (setter named `setterName`). */
sp<JINativeScanConfig> setFamilyScanConfig(JNIEnv* env, jobject thiz, const sp<JINativeScanConfig>& config,
                                           const AtscFamilyFields& fields, const ScanSite& site,
                                           const char* setterName);

/*
 * The lookups of the three, in their order: the common config getters, `extras` (the
 * standard's own, after the index getters), the callbacks; then the settings class's
 * getCountry. Returns 1, or 0 when the natives could not be registered.
 */
int registerAtscFamily(JNIEnv* env, const char* configClass, const char* settingsClass,
                       const JNINativeMethod (&methods)[2], AtscFamilyFields& fields,
                       std::initializer_list<MethodSpec> extras, const ScanSite& site);

}  // namespace android

#endif /* ATSC_FAMILY_SCAN_MAPS_H */
