// The scan engine: the Java ZelTvScanEngine's native peer. It drives one scan-builder
// session, delivers the builder's scan notifications to Java in order from an event
// thread of its own, forwards channel-list changes, and calls the attached extensions.
#define LOG_TAG "ZEL_MW"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_ScanEngine"

#include "JScanEngine.h"

#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <nativehelper/ScopedLocalRef.h>

#include "JINativeScanExtension.h"
#include "x_mw_api.h"

namespace android {

namespace {

const char* const kEngineClass = "com/brinova/tv/orvella/services/scan/ZelTvScanEngine";
const char* const kEngineSourcePath = "services/jni/scan/com_brinova_tv_orvella_scan_ScanEngine";

constexpr int32_t kBadValue = -22;      // engine missing, not initialised, bad argument
constexpr int32_t kRefused = -38;       // the middleware refused
constexpr int32_t kOpenFailed = static_cast<int32_t>(0x80000000);
constexpr HANDLE_TYPE_T kPipelineHandleType = 194;

struct fields_t {
    jmethodID getNativeContextID;
    jmethodID setAndUnlockNativeContextID;
    jmethodID onScanStatusEventID;
    jmethodID onScanUpdateSvlEventID;
    jmethodID onScanUpdateTslEventID;
    jmethodID onScanUpdateNwlEventID;
    jmethodID onSetNativeHandleID;
};
fields_t gFields;

// Progress of the running scan, shared by every engine of the process (as the builder
// reports it, one scan at a time).
int32_t gChannelCount = 0;
int32_t gTransponderIndex = 0;
int32_t gTransponderTotal = 0;

void resetProgress() {
    gChannelCount = 0;
    gTransponderIndex = 0;
    gTransponderTotal = 0;
}

// Serialises the middleware filters' pipeline lookups; created at library load.
pthread_mutex_t gPipelineLookupLock = PTHREAD_MUTEX_INITIALIZER;

// A builder name matches a row over the row's length; "sb_dvb" only when the whole name
// is that long, so that "sb_dvbt" matches nothing.
bool builderNameIs(const char* name, const char* row, bool wholeName) {
    size_t len = x_strlen(row);
    return x_strncmp(name, row, len) == 0 && (!wholeName || x_strlen(name) == len);
}

struct BuilderRow {
    const char* name;
    bool wholeName;
    const char* tunerName;
    const char* openLog;  // "[%s][%d]..." with function, line and the SVL name
    bool satellite;
};

// Tested in this order; the first match wins.
const BuilderRow kBuilders[] = {
    {"sb_dvb", true, "tuner_ter_dig_0", "[%s][%d]config dvbt opendata", false},
    {"sb_dvbc", false, "tuner_cab_dig_0", "[%s][%d]config dvbc opendata, ps_svl_name=%s", false},
    {"sb_dvbs", false, "tuner_sat_dig_0", "[%s][%d]config dvbs opendata", true},
    {"sb_isdb", false, "tuner_ter_dig_0", "[%s][%d] config isdb opendata", false},
    {"sb_atsc", false, "tuner_ter_dig_0", "[%s][%d]config atsc opendata", false},
    {"sb_cqam", false, "tuner_cab_dig_0", "[%s][%d]config cqam opendata", false},
    {"sb_dtmb", false, "tuner_ter_dig_0", "[%s][%d]config dtmb opendata", false},
    {"sb_cn_dvbc", false, "tuner_cab_dig_0", "[%s][%d]config cn dvbc opendata, ps_svl_name=%s",
     false},
};

// Monitor mode: the scan block copied at the builder's size, one word set to its mode.
struct MonitorRow {
    const char* name;
    bool wholeName;
    size_t blockSize;
    size_t modeOffset;
    uint32_t mode;
};

const MonitorRow kMonitors[] = {
    {"sb_dvb", true, 64, 4, 9},    {"sb_dvbc", false, 84, 8, 4},  {"sb_dvbs", false, 780, 12, 9},
    {"sb_cn_dvbc", false, 84, 8, 4}, {"sb_dtmb", false, 48, 8, 7}, {"sb_atsc", false, 8, 0, 6},
    {"sb_cqam", false, 20, 0, 6},  {"sb_isdb", false, 28, 4, 8},
};
constexpr size_t kMaxMonitorBlock = 780;

template <typename Row, size_t N>
const Row* findRow(const Row (&table)[N], const char* name) {
    for (const Row& row : table) {
        if (builderNameIs(name, row.name, row.wholeName)) return &row;
    }
    return nullptr;
}

bool isScanEnd(uint32_t reason) {
    return reason == SB_REASON_COMPLETE || reason == SB_REASON_CANCEL ||
           reason == SB_REASON_ABORT || reason == SB_REASON_STOPPED;
}

JScanEngine* engineOf(void* tag) { return static_cast<JScanEngine*>(tag); }

}  // namespace

// ---------------------------------------------------------------------------------------
// Middleware callbacks

extern "C" void native_scan_nfy_fct(HANDLE_T handle, uint32_t reason, uint32_t data, void* tag) {
    BLOGI("ui4_nfy_reason = 0x%x, data=0x%x", reason, data);
    if (tag == nullptr) return;
    sp<JScanEngine> engine = engineOf(tag);
    engine->pushEvent(reason, data);
    BLOGI("push scan event to queue. ui4_nfy_reason = 0x%x, data=0x%x", reason, data);
}

extern "C" void _native_sb_nfy_fct(HANDLE_T handle, SB_COND_T condition, void* tag) {
    BLOGE("e_builder_cond = %d\n", condition);
}

extern "C" MW_BOOL _scanengine_pipeline_handle_free(HANDLE_T handle, HANDLE_TYPE_T type,
                                                    void* object, void* tag, MW_BOOL requested) {
    // The global reference the handle carries is the engine's; its destructor deletes it.
    return 1;
}

extern "C" jobject getPipelineObjectFromScanEngine(JNIEnv* env, HANDLE_T handle) {
    pthread_mutex_lock(&gPipelineLookupLock);
    BLOGD_RAW("getPipelineObjectFromScanEngine Begin, handle: 0x%x", handle);
    jobject result = nullptr;
    if (handle == NULL_HANDLE) {
        BLOGE_RAW("getPipelineObjectFromScanEngine, h_pipeline  == NULL_HANDLE");
    } else {
        void* object = nullptr;
        if (handle_get_obj(handle, &object) == MWR_OK && object != nullptr) {
            result = env->NewGlobalRef(static_cast<jobject>(object));
        } else {
            BLOGE_RAW("getPipelineObjectFromScanEngine, handle_get_obj fail, pipeline handle: 0x%x",
                      handle);
        }
    }
    pthread_mutex_unlock(&gPipelineLookupLock);
    return result;
}

// Channel-list changes go to Java at once, on the middleware's thread.
template <typename Change>
static void deliverListChanges(uint16_t listId, uint32_t count, const Change* changes, void* tag,
                               jmethodID javaMethod, bool tagLoggedAsError) {
    BLOGI("ui2_svl_id = %d, ui4_nfy_count = %d", listId, count);
    ScopedJniThread thread(SCAN_SITE, ScopedJniThread::kRet);
    JNIEnv* env = thread.env();
    if (env == nullptr) {
        BLOGE("jenv is null, going to abort().");
        abort();
    }
    sp<JScanEngine> engine;
    if (tag != nullptr) {
        if (tagLoggedAsError) {
            BLOGE("pv_tag=%p", tag);
        } else {
            BLOGD("pv_tag=%p", tag);
        }
        engine = engineOf(tag);
    }
    if (count == 0) return;

    auto* eventType = static_cast<uint32_t*>(x_mem_alloc(count * sizeof(uint32_t)));
    SCAN_ASSERT(eventType != NULL);
    auto* eventRecord = static_cast<uint32_t*>(x_mem_alloc(count * sizeof(uint32_t)));
    SCAN_ASSERT(eventRecord != NULL);
    x_memset(eventType, 0, count * sizeof(uint32_t));
    x_memset(eventRecord, 0, count * sizeof(uint32_t));
    ScopedLocalRef<jintArray> arrEventType(env, env->NewIntArray(count));
    SCAN_ASSERT(arrEventType.get() != NULL);
    ScopedLocalRef<jintArray> arrEventRecord(env, env->NewIntArray(count));
    SCAN_ASSERT(arrEventRecord.get() != NULL);
    BLOGI("ui4_nfy_count = %d", count);
    for (uint32_t i = 0; i < count; ++i) {
        eventType[i] = changes[i].ui2_event_type;
        eventRecord[i] = changes[i].ui2_event_record;
        BLOGI("eventType=%d, eventRecord=%d.", eventType[i], eventRecord[i]);
    }
    env->SetIntArrayRegion(arrEventType.get(), 0, count, reinterpret_cast<jint*>(eventType));
    env->SetIntArrayRegion(arrEventRecord.get(), 0, count, reinterpret_cast<jint*>(eventRecord));
    jobject javaEngine = engine != nullptr ? engine->javaObject() : nullptr;
    BLOGD("mObject=%p", javaEngine);
    if (javaEngine != nullptr) {
        env->CallVoidMethod(javaEngine, javaMethod, static_cast<jint>(listId),
                            static_cast<jint>(count), arrEventType.get(), arrEventRecord.get());
        clearJavaException(env, SCAN_SITE, "OnScanUpdateEvent");
    }
    x_mem_free(eventType);
    x_mem_free(eventRecord);
}

extern "C" void native_sb_eng_svl_every_nfy_fct(uint16_t listId, uint32_t count,
                                                const SVL_EVERY_NTF_EVT* changes, void* tag) {
    deliverListChanges(listId, count, changes, tag, gFields.onScanUpdateSvlEventID, true);
}

extern "C" void native_sb_eng_tsl_every_nfy_fct(uint16_t listId, uint32_t count,
                                                const TSL_EVERY_NTF_EVT* changes, void* tag) {
    deliverListChanges(listId, count, changes, tag, gFields.onScanUpdateTslEventID, false);
}

extern "C" void native_sb_eng_nwl_every_nfy_fct(uint16_t listId, uint32_t count,
                                                const NWL_EVERY_NTF_EVT* changes, void* tag) {
    deliverListChanges(listId, count, changes, tag, gFields.onScanUpdateNwlEventID, false);
}

// A modified service is reported only when its identity, type or name changed.
extern "C" MW_BOOL _native_sb_eng_svl_filter_fct(uint16_t listId, uint16_t reason,
                                                 SVL_REC_T* newRecord, const SVL_REC_T* oldRecord) {
    if (reason != LIST_REASON_RECORD_MOD) return 1;
    if (oldRecord == nullptr) return 0;
    if (newRecord == nullptr) return 1;
    if (newRecord->ui2_svl_rec_id != oldRecord->ui2_svl_rec_id ||
        newRecord->ui2_on_id != oldRecord->ui2_on_id ||
        newRecord->ui2_ts_id != oldRecord->ui2_ts_id ||
        newRecord->ui2_svc_id != oldRecord->ui2_svc_id ||
        newRecord->ui2_nw_id != oldRecord->ui2_nw_id ||
        newRecord->ui1_svc_type != oldRecord->ui1_svc_type ||
        newRecord->ui1_brdcst_type != oldRecord->ui1_brdcst_type ||
        newRecord->ui4_channel_id != oldRecord->ui4_channel_id) {
        return 1;
    }
    return x_strncmp(newRecord->ac_name, oldRecord->ac_name, SVL_NAME_LEN) != 0 ? 1 : 0;
}

extern "C" MW_BOOL _native_sb_eng_tsl_filter_fct(uint16_t, uint16_t, TSL_REC_T*, const TSL_REC_T*) {
    return 1;
}

extern "C" MW_BOOL _native_sb_eng_nwl_filter_fct(uint16_t, uint16_t, NWL_REC_T*, const NWL_REC_T*) {
    return 1;
}

// ---------------------------------------------------------------------------------------
// JScanEngine

JScanEngine::JScanEngine(JNIEnv* env, jobject thiz, const char* name, HANDLE_T pipelineHandle,
                         jobject pipelineObject) {
    jclass clazz = env->GetObjectClass(thiz);
    SCAN_ASSERT(clazz != NULL);
    mClass = static_cast<jclass>(env->NewGlobalRef(clazz));
    mObject = env->NewGlobalRef(thiz);
    env->DeleteLocalRef(clazz);
    mInitStatus = 0;
    BLOGD("mObject=%p", mObject);
    mPipelineHandle = pipelineHandle;
    mPipelineObject = pipelineObject;
    mState = STATE_NO_BUILDER;

    if (sem_init(&mSbEventSem, 0, 0) != 0) {
        BLOGE(" failed to initialize semaphore");
    }
    pthread_t thread = 0;
    if (pthread_create(&thread, nullptr, sbEventThreadFunc, this) != 0) {
        thread = 0;
        BLOGE("failed to create thread.");
    }
    mSbEventThread = thread;
    BLOGD("create thread ok mSbEventThread = %ld", static_cast<long>(thread));
    if (thread != 0) {
        char threadName[32] = {};
        x_sprintf(threadName, "scanEngine_thread-%u", static_cast<unsigned>(thread));
        // Longer than the 15 characters Linux allows: the thread keeps its inherited name.
        pthread_setname_np(thread, threadName);
    }
    env->CallVoidMethod(thiz, gFields.onSetNativeHandleID, static_cast<jint>(pipelineHandle));
    clearJavaException(env, SCAN_SITE, "onSetNativeHandle");
    BLOGE_RAW("JScanEngine : %s create success.ScanEngine=%p, handle: 0x%x", name, this,
              pipelineHandle);
}

JScanEngine::~JScanEngine() {
    Mutex::Autolock lock(mLock);
    BLOGE("~JScanEngine release start,ScanEngine=%p", this);
    if (mPipelineHandle != NULL_HANDLE) {
        x_handle_free(mPipelineHandle);
        mPipelineHandle = NULL_HANDLE;
    }
    unregisterLists();
    if (javaVM == nullptr) {
        BLOGE("jenv is null, going to abort().");
        abort();
    }
    ScopedJniThread thread(SCAN_SITE, ScopedJniThread::kRet);
    JNIEnv* env = thread.env();
    if (mPipelineObject != nullptr) {
        BLOGE("DeleteGlobalRef of mPipelineObject.");
        env->DeleteGlobalRef(mPipelineObject);
        mPipelineObject = nullptr;
    }
    BLOGD("start deleteJavaObjects");
    deleteJavaObjects(env);
    BLOGE("release success.");
    sem_destroy(&mSbEventSem);
}

void JScanEngine::deleteJavaObjects(JNIEnv* env) {
    BLOGD("start DeleteGlobalRef mObject=%p", mObject);
    env->DeleteGlobalRef(mObject);
    mObject = nullptr;
    BLOGD("start DeleteGlobalRef mClass");
    env->DeleteGlobalRef(mClass);
    mClass = nullptr;
}

template <typename Hook>
void JScanEngine::forEachExtension(Hook hook) {
    for (int64_t handle : mListExtension) {
        hook(JINativeScanExtension::fromHandle(handle));
    }
}

void JScanEngine::unregisterLists() {
    if (mSvlNotifyHandler != NULL_HANDLE) {
        if (c_svl_unreg_every_notify(mSvlNotifyHandler) != MWR_OK) {
            BLOGE("x_svl_unreg_every_notify fail.");
        }
        mSvlNotifyHandler = NULL_HANDLE;
        BLOGD("unreg SVL OK.ScanEngine=%p, mobject=%p", this, mObject);
    }
    if (mTslNotifyHandler != NULL_HANDLE) {
        if (c_tsl_unreg_every_notify(mTslNotifyHandler) != MWR_OK) {
            BLOGE("x_tsl_unreg_every_notify fail.");
        }
        mTslNotifyHandler = NULL_HANDLE;
        BLOGD("unreg tsL OK.ScanEngine=%p, mobject=%p", this, mObject);
    }
    if (mMwlNotifyHandler != NULL_HANDLE) {
        if (c_nwl_unreg_every_notify(mMwlNotifyHandler) != MWR_OK) {
            BLOGE("x_nwl_unreg_every_notify fail.");
        }
        mMwlNotifyHandler = NULL_HANDLE;
        BLOGD("unreg nwL OK.ScanEngine=%p, mobject=%p", this, mObject);
    }
}

int32_t JScanEngine::configure(const char* builderName, JINativeScanConfig* config,
                               HANDLE_T dataSource, int32_t svlId) {
    Mutex::Autolock lock(mLock);
    if (config == nullptr || dataSource == NULL_HANDLE) {
        BLOGE("config or data source is NULL, return error");
        return kBadValue;
    }
    if (mSBHandler != NULL_HANDLE) {
        BLOGD("mSBHandler is aready exist, no need open builder again.");
        if (config != mScanConfig &&
            x_sb_reg_scan_map(builderName,
                              reinterpret_cast<x_sb_scan_maps_fct>(config->getSbScanMapsNotify()),
                              config) == MWR_OK) {
            mScanConfig = config;
            BLOGD("register scan map.mScanConfig=%p", mScanConfig);
        }
        return 0;
    }

    mScanConfig = config;
    BLOGD("builderName=%s, mScanConfig = %p", builderName, mScanConfig);
    BLOGD("svl,tsl,nwl reg ScanEngine=%p, mObject=%p", this, mObject);
    BLOGD("ds_handle = 0x%x, svlid=%d.pv_tag=%p", dataSource, svlId, this);
    uint16_t listId = static_cast<uint16_t>(svlId & 0xFFFF);
    HANDLE_T svl = NULL_HANDLE, tsl = NULL_HANDLE, nwl = NULL_HANDLE;
    int32_t status = c_svl_register_every_notify(listId, _native_sb_eng_svl_filter_fct,
                                                 native_sb_eng_svl_every_nfy_fct, this, &svl);
    BLOGD("mSvlNotifyHandler register. i4_ret=%d", status);
    status = c_tsl_register_every_notify(listId, _native_sb_eng_tsl_filter_fct,
                                         native_sb_eng_tsl_every_nfy_fct, this, &tsl);
    BLOGD("mTslNotifyHandler register. i4_ret=%d", status);
    status = c_nwl_register_every_notify(listId, _native_sb_eng_nwl_filter_fct,
                                         native_sb_eng_nwl_every_nfy_fct, this, &nwl);
    BLOGD("mMwlNotifyHandler register. i4_ret=%d", status);
    mSvlNotifyHandler = svl;
    mTslNotifyHandler = tsl;
    mMwlNotifyHandler = nwl;

    // "fs_Svl_" and at most three digits: svlId 1 to 1000. A longer name is cut, not overrun.
    constexpr size_t kSvlNameSize = 11;
    char* svlName = static_cast<char*>(x_mem_alloc(kSvlNameSize));
    x_memset(svlName, 0, kSvlNameSize);
    char formatted[24];
    x_sprintf(formatted, "fs_Svl_%d", svlId - 1);
    x_strncpy(svlName, formatted, kSvlNameSize - 1);

    HANDLE_T handle = NULL_HANDLE;
    SB_COND_T condition = 0;
    const BuilderRow* row = findRow(kBuilders, builderName);
    if (row == nullptr) {
        // Deliberately goes on with the last list registration's status, as if a builder
        // with handle 0 had been opened.
        BLOGI("unknow builder name: %s.", builderName);
    } else {
        SB_DVBS_OPEN_DATA_T openData;
        x_memset(&openData, 0, sizeof(openData));
        openData.t_common.ui4_svl_id = static_cast<uint32_t>(svlId);
        openData.t_common.ps_svl_name = svlName;
        openData.t_common.ps_file_name = "/dev";
        openData.t_common.ps_tuner_name = row->tunerName;
        openData.t_common.ui1_flags = 1;
        openData.t_common.h_data_source = mPipelineHandle;
        BLOG_PRINT(BRINOVA_LOG_DEBUG, LOG_TAG, row->openLog, __FUNCTION__, __LINE__, svlName);
        status = x_sb_open_builder(builderName, &openData, this, _native_sb_nfy_fct, &handle,
                                   &condition);
    }
    if (status != MWR_OK) {
        BLOGE("open %s builder failed", builderName);
        x_mem_free(svlName);
        return kOpenFailed;
    }
    mSBHandler = handle;
    mState = STATE_BUILDER_OPEN;
    BLOGI_RAW("%s builder open success, sb handler = 0x%x", builderName, mSBHandler);
    status = x_sb_reg_scan_map(builderName,
                               reinterpret_cast<x_sb_scan_maps_fct>(config->getSbScanMapsNotify()),
                               mScanConfig);
    x_mem_free(svlName);
    if (status != MWR_OK) {
        BLOGE(" set scan map failed");
        return kOpenFailed;
    }
    return 0;
}

int32_t JScanEngine::start() {
    Mutex::Autolock lock(mLock);
    if (mScanConfig == nullptr) {
        BLOGE("ScanConfig is NULL, return error \n");
        return kBadValue;
    }
    void* params = mScanConfig->getSbScanParams(0);
    BLOGE("mScanConfig = %p\n", mScanConfig);
    BLOGD("ScanEngine=%p, mobject=%p", this, mObject);
    if (mListExtension.empty()) {
        BLOGD("mListExtension is empty.");
    } else {
        forEachExtension([&](JINativeScanExtension* extension) {
            BLOGD("onPreScan to Extension = %p\n", extension);
            extension->onPreScan(params);
        });
    }
    int ret = mScanConfig->checkScanMaps();
    if (ret != 0) {
        BLOGE("checkScanMaps failed,ret=%d\n", ret);
        return kRefused;
    }
    resetProgress();
    SB_COND_T out = 0;
    ret = x_sb_start_scan(mSBHandler, params, this, native_scan_nfy_fct, &out);
    if (ret != MWR_OK) {
        BLOGE("start failed,ret=%d\n", ret);
        return kRefused;
    }
    BLOGE("onStatus scan start \n");
    mScanConfig->onStatus(1);
    BLOGE("start scan success \n");
    mState = STATE_SCANNING;
    return 0;
}

int32_t JScanEngine::cancel() {
    Mutex::Autolock lock(mLock);
    mState = STATE_STOP_REQUESTED;
    int32_t ret = x_sb_cancel_scan(mSBHandler);
    if (ret != MWR_OK) {
        BLOGE("x_sb_cancel_scan fail, i4_ret=%d\n", ret);
        return kRefused;
    }
    BLOGD("ScanEngine=%p, mobject=%p", this, mObject);
    if (mScanConfig != nullptr) {
        BLOGD("onStatus cancel \n");
        mScanConfig->onStatus(0);
    }
    BLOGE("scan cancel success \n");
    mState = STATE_CANCELLED;
    return 0;
}

int32_t JScanEngine::close() {
    Mutex::Autolock lock(mLock);
    if (mState != STATE_NO_BUILDER) {
        if (mListExtension.empty()) {
            BLOGD("mListExtension is empty.");
        } else {
            BLOGD("detach all the extensions before sb close");
            forEachExtension([&](JINativeScanExtension* extension) {
                BLOGD("detach extension = %p\n", extension);
                extension->detach(mSBHandler);
            });
        }
    }
    BLOGD("ScanEngine=%p, mobject=%p", this, mObject);
    unregisterLists();
    if (mSBHandler == NULL_HANDLE) {
        BLOGE("Service builder is NULL\n");
        return kRefused;
    }
    int32_t ret = x_sb_close_builder(mSBHandler);
    if (ret != MWR_OK) {
        BLOGE("Service builder close failed ,err=%d\n", ret);
        return kRefused;
    }
    BLOGI("Service builder close successful \n");
    mState = STATE_NO_BUILDER;
    mSBHandler = NULL_HANDLE;
    return 0;
}

int32_t JScanEngine::addExtension(int64_t handle) {
    Mutex::Autolock lock(mLock);
    if (mScanConfig == nullptr) {
        BLOGE("ScanConfig is NULL, return error \n");
        return kBadValue;
    }
    // No duplicate check: an extension added twice gets every hook twice.
    mListExtension.push_back(handle);
    JINativeScanExtension* extension = JINativeScanExtension::fromHandle(handle);
    BLOGD("addExtension %p ", extension);
    if (mSBHandler != NULL_HANDLE) {
        extension->attach(mSBHandler);
        BLOGD("attach extension");
    }
    return 0;
}

int32_t JScanEngine::removeExtension(int64_t handle) {
    Mutex::Autolock lock(mLock);
    for (auto it = mListExtension.begin(); it != mListExtension.end(); ++it) {
        if (*it == handle) {
            mListExtension.erase(it);
            BLOGE("find and remove extension=0x%llx ", static_cast<long long>(handle));
            if (mSBHandler != NULL_HANDLE) {
                JINativeScanExtension::fromHandle(handle)->detach(mSBHandler);
                BLOGE("datach extension");
            }
            return 0;
        }
    }
    BLOGE("Can NOT find extension=0x%llx ", static_cast<long long>(handle));
    return 0;
}

int32_t JScanEngine::startMonitor() {
    Mutex::Autolock lock(mLock);
    if (mScanConfig == nullptr) {
        BLOGE("ScanConfig is NULL, return error \n");
        return kBadValue;
    }
    BLOGE("mScanConfig = %p\n", mScanConfig);
    void* params = mScanConfig->getSbScanParams(0);
    if (params == nullptr) {
        BLOGE("pScanData is NULL, return error \n");
        return kBadValue;
    }
    if (mListExtension.empty()) {
        BLOGD("mListExtension is empty.");
    } else {
        forEachExtension([&](JINativeScanExtension* extension) {
            BLOGD("onPreScan to Extension = %p\n", extension);
            extension->onPreScan(params);
        });
    }
    const char* name = mScanConfig->getSbEbEngineName();
    int ret = mScanConfig->checkScanMaps();
    if (ret != 0) {
        BLOGE("checkScanMaps failed,ret=%d\n", ret);
        return kRefused;
    }
    BLOGE("start native SB monitor.");
    const MonitorRow* row = findRow(kMonitors, name);
    if (row != nullptr) {
        uint8_t block[kMaxMonitorBlock];
        x_memcpy(block, params, row->blockSize);
        x_memcpy(block + row->modeOffset, &row->mode, sizeof(row->mode));
        SB_COND_T out = 0;
        ret = x_sb_start_scan(mSBHandler, block, nullptr, nullptr, &out);
        if (ret != MWR_OK) {
            BLOGE("start failed,ret=%d\n", ret);
            return kRefused;
        }
    }
    BLOGE("onStatus Running \n");
    mScanConfig->onStatus(1);
    BLOGE("start Monitor success \n");
    mState = STATE_MONITORING;
    return 0;
}

int32_t JScanEngine::stopMonitor() {
    Mutex::Autolock lock(mLock);
    mState = STATE_STOP_REQUESTED;
    if (mListExtension.empty()) {
        BLOGD("mListExtension is empty.");
    } else {
        BLOGD("detach all the extensions before sb close");
        forEachExtension([&](JINativeScanExtension* extension) {
            BLOGD("detach extension = %p\n", extension);
            extension->detach(mSBHandler);
        });
    }
    BLOGE("start to stop Monitor.\n");
    if (x_sb_cancel_scan(mSBHandler) != MWR_OK) {
        BLOGE("\n");
        return kRefused;
    }
    if (mScanConfig != nullptr) {
        BLOGD("onStatus stopMonitor \n");
        mScanConfig->onStatus(0);
    }
    BLOGE("stop Monitor success \n");
    mState = STATE_SCAN_ENDED;
    return 0;
}

// ---------------------------------------------------------------------------------------
// Event thread

void JScanEngine::pushEvent(uint32_t reason, uint32_t data) {
    {
        std::lock_guard<std::mutex> lock(mEventQueueLock);
        mEventQueue.push_back(SB_EVENT{reason, data});
    }
    sem_post(&mSbEventSem);
}

bool JScanEngine::peekEvent(SB_EVENT* event) {
    std::lock_guard<std::mutex> lock(mEventQueueLock);
    if (mEventQueue.empty()) return false;
    *event = mEventQueue.front();
    return true;
}

bool JScanEngine::popEvent(SB_EVENT* event) {
    std::lock_guard<std::mutex> lock(mEventQueueLock);
    if (mEventQueue.empty()) return false;
    *event = mEventQueue.front();
    mEventQueue.pop_front();
    return mEventQueue.empty();
}

// Drops the builder's events but keeps an exit request: release() may queue one while the
// thread is still handling an event of a builder that close() has just shut, and losing it
// would leave the thread (and with it the engine) alive for ever.
void JScanEngine::clearEvents() {
    std::lock_guard<std::mutex> lock(mEventQueueLock);
    bool exitRequested = false;
    for (const SB_EVENT& e : mEventQueue) {
        exitRequested = exitRequested || e.reason == SB_EVENT_REASON_EXIT;
    }
    mEventQueue.clear();
    if (exitRequested) {
        mEventQueue.push_back(SB_EVENT{SB_EVENT_REASON_EXIT, 0});
    }
}

void* JScanEngine::sbEventThreadFunc(void* arg) {
    if (pthread_detach(pthread_self()) != 0) {
        BLOGE("pthread_detach return fail.");
    }
    sp<JScanEngine> engine = static_cast<JScanEngine*>(arg);
    BLOGE("sbEventThreadFunc started. mThreadForceExit=%d, ScanEngine=%p.",
          engine->mThreadForceExit.load(), engine.get());
    bool forced;
    {
        // Decided under the queue lock, so that exitSBEventThread sees either a thread that
        // has started its loop or one that will take the forced exit, never one in between.
        std::lock_guard<std::mutex> lock(engine->mEventQueueLock);
        forced = engine->mThreadForceExit;
        engine->mThreadStarted = !forced;
    }
    if (forced) {
        engine->mSbEventThread = 0;
        sem_post(&engine->mSbEventSem);
        BLOGE("sbEventThreadFunc forced exit!");
    } else {
        BLOGE("scanEngie->sbEventThreadLoop() started.");
        engine->sbEventThreadLoop();
        BLOGE("sbEventThreadFunc exited.");
    }
    return nullptr;
}

int32_t JScanEngine::progressOf(uint32_t reason, uint32_t data) {
    if (mScanConfig == nullptr) return 0;
    gChannelCount += static_cast<int32_t>(data & 0xFFFF);
    if (reason & SB_REASON_PROGRESS) {
        gTransponderTotal = static_cast<int32_t>((data >> 16) & 0x7FFF);
        gTransponderIndex =
            gTransponderIndex >= gTransponderTotal ? gTransponderTotal : gTransponderIndex + 1;
    }
    const char* name = mScanConfig->getSbEbEngineName();
    if (x_strncmp(name, "sb_dvbc", 7) == 0 || x_strncmp(name, "sb_cn_dvbc", 10) == 0) {
        return static_cast<int32_t>((data >> 16) & 0x7FFF);  // the builder's own percentage
    }
    if (x_strncmp(name, "sb_dvbs", 7) == 0) {
        return static_cast<int32_t>(data >> 16);
    }
    if (gTransponderTotal == 0) return 0;
    if (gTransponderTotal == -1) return -(100 * gTransponderIndex);  // kept as it always was
    return 100 * gTransponderIndex / gTransponderTotal;
}

void JScanEngine::sbEventThreadLoop() {
    for (;;) {
        BLOGE("wait mSbEventSem");
        while (sem_wait(&mSbEventSem) != 0) {
        }
        BLOGI("got mSbEventSem");
        SB_EVENT event;
        while (peekEvent(&event)) {
            BLOGI("ui4_nfy_reason = 0x%x, data=0x%x", event.reason, event.data);
            if (event.reason == SB_EVENT_REASON_EXIT) {
                // The exit event and anything behind it stay queued.
                BLOGI("exit mSbEventThread");
                mSbEventThread = 0;
                return;
            }
            if (mScanConfig != nullptr && isScanEnd(event.reason)) {
                BLOGD("onStatus stopped \n");
                mScanConfig->onStatus(0);
                mState = STATE_SCAN_ENDED;
            }
            if (javaVM == nullptr) {
                BLOGI(" jenv is null, going to abort().");
                abort();
            }
            {
                ScopedJniThread thread(SCAN_SITE, ScopedJniThread::kRet);
                JNIEnv* env = thread.env();
                if (isScanEnd(event.reason)) {
                    BLOGD("SB_REASON:%d\n", event.reason);
                    // Walked without mLock: Java does not add or remove extensions while a
                    // scan is ending.
                    if (mListExtension.empty()) {
                        BLOGD("mListExtension is empty.");
                    } else {
                        forEachExtension([&](JINativeScanExtension* extension) {
                            BLOGD("Notify SB_REASON_COMPLETE to Extension = %p\n", extension);
                            extension->onScanComplete(1);
                        });
                    }
                    env->CallVoidMethod(mObject, gFields.onScanStatusEventID, 2,
                                        static_cast<jint>(event.reason), 0);
                    clearJavaException(env, SCAN_SITE, "OnScanStatusEvent");
                    resetProgress();
                } else if (event.reason == SB_REASON_PROGRESS ||
                           event.reason == SB_REASON_PROGRESS_ONLY) {
                    if (gFields.onScanStatusEventID != nullptr) {
                        BLOGD("SB_REASON_PROGRESS\n");
                        int32_t progress = progressOf(event.reason, event.data);
                        env->CallVoidMethod(mObject, gFields.onScanStatusEventID, 1,
                                            gChannelCount, progress);
                        clearJavaException(env, SCAN_SITE, "OnScanStatusEvent");
                        BLOGD("progress = %d, channel=%d\n", progress, gChannelCount);
                    }
                } else if (event.reason == SB_REASON_FREQ_REPORT) {
                    if (gFields.onScanStatusEventID != nullptr) {
                        BLOGD("SB_REASON_FREQ_REPORT");
                        env->CallVoidMethod(mObject, gFields.onScanStatusEventID, 3,
                                            static_cast<jint>(event.data), 0);
                        clearJavaException(env, SCAN_SITE, "OnScanStatusEvent");
                    }
                } else {
                    BLOGD("Scan nofity reason not handle currently.");
                }
            }
            if (popEvent(&event)) {
                BLOGD("Remove the processed event from queue.");
            }
            if (mState == STATE_NO_BUILDER) {
                BLOGD("clear all event.\n");
                clearEvents();
                break;
            }
        }
    }
}

void JScanEngine::exitSBEventThread() {
    if (mSbEventThread == 0) {
        BLOGE("mSbEventThread is already exit.");
        return;
    }
    bool started;
    {
        std::lock_guard<std::mutex> lock(mEventQueueLock);
        started = mThreadStarted;
        mThreadForceExit = !started;
    }
    if (started) {
        pushEvent(SB_EVENT_REASON_EXIT, 0);
        BLOGD("send event to exit mSbEventThread.");
        int retryTimes = 0;
        while (retryTimes < 10 && mSbEventThread != 0) {
            usleep(10000);
            ++retryTimes;
        }
        BLOGE("send event to exit mSbEventThread.retryTimes=%d", retryTimes);
        return;
    }
    BLOGE("start to wait scanengine thread exit.");
    while (sem_wait(&mSbEventSem) != 0) {
    }
    BLOGE("scanengine thread exit OK.");
}

// ---------------------------------------------------------------------------------------
// Java natives

namespace {

sp<JScanEngine> getScanEngine(JNIEnv* env, jobject thiz) {
    jlong context = env->CallLongMethod(thiz, gFields.getNativeContextID);
    clearJavaException(env, SCAN_SITE, "getNativeContext");
    return reinterpret_cast<JScanEngine*>(static_cast<uintptr_t>(context));
}

// Java's stored context owns one strong reference, taken and dropped under `thiz`.
void setScanEngine(JNIEnv* env, jobject thiz, const sp<JScanEngine>& engine) {
    sp<JScanEngine> old = getScanEngine(env, thiz);
    if (old != nullptr) {
        old->decStrong(thiz);
    }
    if (engine != nullptr) {
        engine->incStrong(thiz);
    }
    env->CallVoidMethod(thiz, gFields.setAndUnlockNativeContextID,
                        static_cast<jlong>(reinterpret_cast<uintptr_t>(engine.get())));
    clearJavaException(env, SCAN_SITE, "setAndUnlockNativeContext");
}

jint setupEngine(JNIEnv* env, jobject thiz, HANDLE_T handle, jobject pipelineObject) {
    sp<JScanEngine> engine = new JScanEngine(env, thiz, "Good ScanEngine", handle, pipelineObject);
    if (engine->initCheck() != 0) {
        BLOGE("Failed to find a Good engine , error %#x", engine->initCheck());
        return kBadValue;
    }
    setScanEngine(env, thiz, engine);
    return 0;
}

jint native_setup(JNIEnv* env, jobject thiz, jobject pipelineObject) {
    jobject gref = env->NewGlobalRef(pipelineObject);
    HANDLE_T handle = NULL_HANDLE;
    if (handle_alloc(kPipelineHandleType, gref, nullptr, _scanengine_pipeline_handle_free,
                     &handle) != MWR_OK) {
        BLOGE_RAW("orvella_scan_ZelTvScanEngine_setUp fail to alloc handle");
    }
    BLOGD(" pipeline handle: 0x%x", handle);
    x_orvella_filter_register_get_pipeline_obj(getPipelineObjectFromScanEngine);
    return setupEngine(env, thiz, handle, gref);
}

jint native_setup_with_pipeline_handle(JNIEnv* env, jobject thiz, jint handle) {
    BLOGD(" pipeline handle: 0x%x", handle);
    return setupEngine(env, thiz, static_cast<HANDLE_T>(handle), nullptr);
}

// The frame of the engine's natives: the engine of `thiz`, held for the call, or -22 when
// there is none; a failing operation is logged with `failure` (its error as the argument,
// after the native's function and line when the text starts "[%s][%d]") and answers
// `failureStatus`.
struct EngineCall {
    const char* function;
    int line;
    const char* failure;
    jint failureStatus;
};

// The engine of `thiz` held for the call, or null (logged) when it is missing or unusable.
sp<JScanEngine> usableEngine(JNIEnv* env, jobject thiz, const char* function, int line) {
    sp<JScanEngine> engine = getScanEngine(env, thiz);
    if (engine == nullptr || engine->initCheck() != 0) {
        BLOG_PRINT(BRINOVA_LOG_ERROR, LOG_TAG, "[%s][%d]Engine is NULL or not init", function, line);
        return nullptr;
    }
    return engine;
}

template <typename Op>
jint callEngine(JNIEnv* env, jobject thiz, const EngineCall& call, Op op) {
    sp<JScanEngine> engine = usableEngine(env, thiz, call.function, call.line);
    if (engine == nullptr) {
        return kBadValue;
    }
    int32_t ret = op(*engine);
    if (ret == 0 || call.failure == nullptr) {
        return 0;
    }
    if (strncmp(call.failure, "[%s][%d]", 8) == 0) {
        BLOG_PRINT(BRINOVA_LOG_ERROR, LOG_TAG, call.failure, call.function, call.line, ret);
    } else {
        BLOG_PRINT(BRINOVA_LOG_ERROR, LOG_TAG, call.failure, ret);
    }
    return call.failureStatus;
}

#define ENGINE_CALL(failure, status) (EngineCall{__FUNCTION__, __LINE__, (failure), (status)})

jint native_configure(JNIEnv* env, jobject thiz, jlong configPointer, jint svlId) {
    sp<JScanEngine> engine = usableEngine(env, thiz, __FUNCTION__, __LINE__);
    if (engine == nullptr) {
        return kBadValue;
    }
    if (engine->getPipelineHandle() == NULL_HANDLE) {
        BLOGE(" h_pipeline is null handler.");
        return kBadValue;
    }
    BLOGD("config = 0x%llx, datasource=0x%x, svlId=%d", static_cast<long long>(configPointer),
          engine->getPipelineHandle(), svlId);
    auto* config = reinterpret_cast<JINativeScanConfig*>(static_cast<uintptr_t>(configPointer));
    BLOGD("pConfig = %p", config);
    if (config == nullptr) {
        // configure() refuses a null configuration; there is no name to ask it for.
        BLOGE_RAW("engine start failed, return err = 0x%x", kBadValue);
        return kBadValue;
    }
    int32_t ret = engine->configure(config->getSbEbEngineName(), config,
                                    engine->getPipelineHandle(), svlId);
    if (ret != 0) {
        BLOGE_RAW("engine start failed, return err = 0x%x", ret);
        return kBadValue;
    }
    return 0;
}


jint native_add_extension(JNIEnv* env, jobject thiz, jlong handle) {
    return callEngine(env, thiz, ENGINE_CALL("[%s][%d]engine->addExtension fail", kBadValue),
                      [&](JScanEngine& engine) { return engine.addExtension(handle); });
}

jint native_remove_extension(JNIEnv* env, jobject thiz, jlong handle) {
    // Removing answers 0 whether or not the extension was there.
    return callEngine(env, thiz, ENGINE_CALL(nullptr, 0),
                      [&](JScanEngine& engine) { return engine.removeExtension(handle); });
}

jint native_start(JNIEnv* env, jobject thiz) {
    // -22 for the engine's -22 and -38 alike.
    return callEngine(env, thiz, ENGINE_CALL("engine start failed, return err = 0x%x", kBadValue),
                      [](JScanEngine& engine) { return engine.start(); });
}

jint native_cancel(JNIEnv* env, jobject thiz) {
    return callEngine(env, thiz, ENGINE_CALL("[%s][%d]engine cancel failed err=0x%x", kRefused),
                      [](JScanEngine& engine) { return engine.cancel(); });
}

jint native_close(JNIEnv* env, jobject thiz) {
    sp<JScanEngine> engine = getScanEngine(env, thiz);
    if (engine == nullptr || engine->initCheck() != 0) {
        // The bracket missing at the start is how this line has always read.
        BLOGE_RAW("%s][%s][%d]Engine is NULL or not init", kEngineSourcePath, __FUNCTION__,
                  __LINE__);
        return kBadValue;
    }
    return callEngine(env, thiz, ENGINE_CALL("[%s][%d]engine close failed err=0x%x", kRefused),
                      [](JScanEngine& e) { return e.close(); });
}

jint native_release(JNIEnv* env, jobject thiz) {
    return callEngine(env, thiz, ENGINE_CALL(nullptr, 0), [&](JScanEngine& engine) {
        BLOGE("start native release.\n");
        engine.exitSBEventThread();
        setScanEngine(env, thiz, nullptr);
        return 0;
    });
}

jint native_start_monitor(JNIEnv* env, jobject thiz) {
    return callEngine(env, thiz, ENGINE_CALL("startMonitor failed, return err = 0x%x", kBadValue),
                      [](JScanEngine& engine) {
                          BLOGD("startMonitor");
                          return engine.startMonitor();
                      });
}

jint native_stop_monitor(JNIEnv* env, jobject thiz) {
    return callEngine(env, thiz, ENGINE_CALL("stopMonitor failed, return err = 0x%x", kBadValue),
                      [](JScanEngine& engine) { return engine.stopMonitor(); });
}

const JNINativeMethod gMethods[] = {
    {"nativeSetup", "(Ljava/lang/Object;)I", reinterpret_cast<void*>(native_setup)},
    {"nativeSetUpWithPipelineHandle", "(I)I",
     reinterpret_cast<void*>(native_setup_with_pipeline_handle)},
    {"nativeConfigure", "(JI)I", reinterpret_cast<void*>(native_configure)},
    {"nativeAddExtension", "(J)I", reinterpret_cast<void*>(native_add_extension)},
    {"nativeRemoveExtension", "(J)I", reinterpret_cast<void*>(native_remove_extension)},
    {"nativeStart", "()I", reinterpret_cast<void*>(native_start)},
    {"nativeCancel", "()I", reinterpret_cast<void*>(native_cancel)},
    {"nativeClose", "()I", reinterpret_cast<void*>(native_close)},
    {"nativeRelease", "()I", reinterpret_cast<void*>(native_release)},
    {"nativeStartMonitor", "()I", reinterpret_cast<void*>(native_start_monitor)},
    {"nativeStopMonitor", "()I", reinterpret_cast<void*>(native_stop_monitor)},
};

const MethodSpec gEngineMethods[] = {
    {&gFields.getNativeContextID, "getNativeContext", "()J",
     "!(gFields.getNativeContextID != __null)"},
    {&gFields.setAndUnlockNativeContextID, "setAndUnlockNativeContext", "(J)V",
     "!(gFields.setAndUnlockNativeContextID != __null)"},
    {&gFields.onScanStatusEventID, "OnScanStatusEvent", "(III)V",
     "!(gFields.onScanStatusEventID != __null)"},
    {&gFields.onScanUpdateSvlEventID, "OnScanUpdateSvlEvent", "(II[I[I)V",
     "!(gFields.onScanUpdateSvlEventID != __null)"},
    {&gFields.onScanUpdateTslEventID, "OnScanUpdateTslEvent", "(II[I[I)V",
     "!(gFields.onScanUpdateTslEventID != __null)"},
    {&gFields.onScanUpdateNwlEventID, "OnScanUpdateNwlEvent", "(II[I[I)V",
     "!(gFields.onScanUpdateNwlEventID != __null)"},
    {&gFields.onSetNativeHandleID, "onSetNativeHandle", "(I)V",
     "!(gFields.onSetNativeHandleID != __null)"},
};

}  // namespace

}  // namespace android

using namespace android;

int register_com_brinova_tv_orvella_scan_ZelTvScanEngine(JNIEnv* env) {
    return registerClass(env, kEngineClass, gMethods, tableSize(gMethods), gEngineMethods,
                         std::size(gEngineMethods), SCAN_SITE);
}
