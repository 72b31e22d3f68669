/*
 * What the satellite configurations (and the satellite extensions) share: the satellite
 * identity text, and the frame of a satellite scan-maps callback, whose Java answer is a
 * status and whose commands carry records.
 */
#ifndef DVBS_SCAN_CONFIG_COMMON_H
#define DVBS_SCAN_CONFIG_COMMON_H

#include <stddef.h>
#include <stdint.h>

#include <jni.h>

#include "SbDvbsScanParams.h"
#include "ScanConfigShared.h"
#include "ScanJniCommon.h"

namespace android {

/* A satellite given as text: satellite id, a comma, satellite record id. */
struct SatelliteIdentity {
    uint16_t satelliteId;
    uint16_t recordId;
};

/*
 * Parses the text exactly as the system always has: its length kept to 16 bits, split at
 * the first comma (none: the whole text is the satellite id), each part folded as
 * value * 10 + (character - '0') in 16 bits without checking that it is a digit, an empty
 * part giving 0. Logs the text, its length and the comma's index, then both numbers, at
 * the caller's site.
 */
SatelliteIdentity parseSatelliteIdText(const char* text, const ScanSite& site);
#define PARSE_SATELLITE_ID_TEXT(text) ::android::parseSatelliteIdText((text), SCAN_SITE)

/* 0 when `text` was read; else logs at the caller's site, in the configuration's
 * "[file][function][line]" form, `missing` (and answers -6) or " Out of memory." (-4). */
int settingStatus(const SettingText& text, const char* missing, const ScanSite& site);

/* An int getter of the settings object. */
jint intSetting(JNIEnv* env, jobject settings, jmethodID getter, const char* what, const ScanSite& site);

/* The manual transponder's three getters, in the order frequency, polarisation, symbol
 * rate, into offsets 164, 168 and 172 of the block. */
struct ManualTransponderGetters {
    jmethodID frequency;
    jmethodID polarization;
    jmethodID symbolRate;
};
void readManualTransponder(JNIEnv* env, jobject settings, const ManualTransponderGetters& getters,
                           SB_DVBS_SCAN_PARAMS& block, const ScanSite& site);

/* One command of a satellite scan-maps table. */
struct DvbsCommandRow {
    enum Input {
        kNoInput,    /* a null input array */
        kValue,      /* 1 int: the pv_input argument itself */
        kU16At,      /* 1 int: the 16-bit value pv_input points to */
        kQuerySat,   /* 70 ints from the SB_DVBS_QUERY_SAT_T pv_input points to */
    };
    uint32_t cmd;
    Input input;
    bool needsInput;      /* a null pv_input is refused */
    uint32_t outputSize;  /* the least *pz_output_len, and what it becomes */
    jsize outputInts;     /* the length of Java's output array */
    /* Converts Java's answer into the builder's buffer and logs it at `site`. */
    void (*write)(uint32_t cmd, const jint* answer, void* output, const ScanSite& site);
};

struct DvbsCommandTable {
    const DvbsCommandRow* rows;
    size_t count;
    /* The single-satellite configuration logs the lengths and the status after the call. */
    bool logAfterCall;
};

/*
 * The satellite scan-maps callback once it has its table: a null tag answers 0; a command
 * of the table is checked for null pointers (-6) and a short buffer (-24) and given its
 * input and output arrays; any other command is a bypass with null arrays. Java's
 * onScanMapCommands answers a status: a non-zero one goes to the builder as it is, with
 * nothing written; 0 writes the answer by the row. Lines and assertions at `site`.
 */
int dvbsScanMaps(const DvbsCommandTable& table, jmethodID onScanMapCommands, uint32_t cmd,
                 char* country, void* pv_input, void* pv_output, uint32_t* pz_output_len,
                 void* pv_tag, const ScanSite& site);

/* The answer writers every satellite table uses. */
void writeDvbsBoolean(uint32_t cmd, const jint* answer, void* output, const ScanSite& site);
void writeDvbsU16(uint32_t cmd, const jint* answer, void* output, const ScanSite& site);
void writeDvbsU32(uint32_t cmd, const jint* answer, void* output, const ScanSite& site);

/* Copies a name answered one byte per int into a field of max + 1 bytes: up to the first
 * 0 or `max` bytes, then a terminating 0, and a 0 in the field's last byte. */
void copyAnsweredName(char* field, const jint* answer, size_t max);

}  // namespace android

#endif /* DVBS_SCAN_CONFIG_COMMON_H */
