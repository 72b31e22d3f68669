/*
 * The scan-maps frame of the ATSC, clear-QAM and ISDB configurations: the three differ
 * only by their callback's name, their command table and the closing line of a command
 * that writes nothing. Unlike the DVB callbacks, this frame never changes *pz_output_len.
 * The channel-index range of the ATSC and clear-QAM blocks is read here as well.
 */
#ifndef ATSC_FAMILY_SCAN_MAPS_H
#define ATSC_FAMILY_SCAN_MAPS_H

#include <stdint.h>

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

}  // namespace android

#endif /* ATSC_FAMILY_SCAN_MAPS_H */
