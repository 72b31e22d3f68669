// The scan engine: the Java ZelTvScanEngine's native peer. It drives one scan-builder
// session, delivers the builder's scan notifications to Java in order from an event
// thread of its own, forwards channel-list changes, and calls the attached extensions.
#define LOG_TAG "ZEL_MW"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_ScanEngine"

#include "JScanEngine.h"

#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <map>
#include <mutex>

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
// reports it, one scan at a time). Every engine's event thread and start() change them:
// gProgressLock makes each update and its reading one step.
std::mutex gProgressLock;
int32_t gChannelCount = 0;
int32_t gTransponderIndex = 0;
int32_t gTransponderTotal = 0;

void resetProgress() {
    std::lock_guard<std::mutex> lock(gProgressLock);
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
    // cppcheck-suppress unusedStructMember ; read by findRow(), a template it does not follow
    const char* name;
    // cppcheck-suppress unusedStructMember ; as name
    bool wholeName;
    const char* tunerName;
    const char* openLog;  // "[%s][%d]..." with function, line and the SVL name
    bool satellite;       // takes the satellite builder's 24 further bytes of open data
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
    // cppcheck-suppress unusedStructMember ; read by findRow(), a template it does not follow
    const char* name;
    // cppcheck-suppress unusedStructMember ; as name
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

// Engines alive now, by address. The middleware may keep a list registration it refused to
// unregister and call it after the engine is gone: a tag that names no live engine is
// treated as no tag instead of being used.
std::mutex gLiveEnginesLock;
std::map<const void*, wp<JScanEngine>>& liveEngines() {
    static auto* engines = new std::map<const void*, wp<JScanEngine>>();  // outlives exit
    return *engines;
}

sp<JScanEngine> engineOf(void* tag) {
    std::lock_guard<std::mutex> lock(gLiveEnginesLock);
    auto it = liveEngines().find(tag);
    return it != liveEngines().end() ? it->second.promote() : nullptr;
}

}  // namespace

// ---------------------------------------------------------------------------------------
// Middleware callbacks

extern "C" void native_scan_nfy_fct(HANDLE_T handle, uint32_t reason, uint32_t data, void* tag) {
    BLOGI("ui4_nfy_reason = 0x%x, data=0x%x", reason, data);
    if (tag == nullptr) return;
    sp<JScanEngine> engine = engineOf(tag);
    if (engine == nullptr) return;
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

// Channel-list changes go to Java at once, on the middleware's thread; lines and assertions
// are those of the list's own callback (`site`).
template <typename Change>
static void deliverListChanges(const ScanSite& site, uint16_t listId, uint32_t count,
                               const Change* changes, void* tag, jmethodID javaMethod,
                               int tagLevel) {
    SITE_LOGI(site, "ui2_svl_id = %d, ui4_nfy_count = %d", listId, count);
    ScopedJniThread thread(site, ScopedJniThread::kRet);
    JNIEnv* env = thread.env();
    if (env == nullptr) {
        SITE_LOGE(site, "jenv is null, going to abort().");
        abort();
    }
    sp<JScanEngine> engine;
    if (tag != nullptr) {
        SITE_LOG(site, tagLevel, "pv_tag=%p", tag);
        engine = engineOf(tag);
    }
    if (count == 0) return;

    // A count whose arrays cannot exist (their size in bytes, or as a Java array's length,
    // does not fit) fails as their allocation would, instead of wrapping to a short buffer.
    constexpr uint32_t kMaxChanges = SIZE_MAX / sizeof(uint32_t) < INT32_MAX
                                         ? static_cast<uint32_t>(SIZE_MAX / sizeof(uint32_t))
                                         : INT32_MAX;
    if (count > kMaxChanges) scanFatal(site, "!(eventType != __null)");
    const auto length = static_cast<jsize>(count);
    auto* eventType = static_cast<uint32_t*>(x_mem_alloc(count * sizeof(uint32_t)));
    if (eventType == nullptr) scanFatal(site, "!(eventType != __null)");
    auto* eventRecord = static_cast<uint32_t*>(x_mem_alloc(count * sizeof(uint32_t)));
    if (eventRecord == nullptr) scanFatal(site, "!(eventRecord != __null)");
    x_memset(eventType, 0, count * sizeof(uint32_t));
    x_memset(eventRecord, 0, count * sizeof(uint32_t));
    jintArray arrEventType = env->NewIntArray(length);
    if (arrEventType == nullptr) scanFatal(site, "!(arrEventType != __null)");
    jintArray arrEventRecord = env->NewIntArray(length);
    if (arrEventRecord == nullptr) scanFatal(site, "!(arrEventRecord != __null)");
    // Deleted when done, so that an already attached middleware thread does not pile them up.
    ScopedLocalRef<jintArray> typesRef(env, arrEventType);
    ScopedLocalRef<jintArray> recordsRef(env, arrEventRecord);
    SITE_LOGI(site, "ui4_nfy_count = %d", count);
    for (uint32_t i = 0; i < count; ++i) {
        eventType[i] = changes[i].ui2_event_type;
        eventRecord[i] = changes[i].ui2_event_record;
        SITE_LOGI(site, "eventType=%d, eventRecord=%d.", eventType[i], eventRecord[i]);
    }
    env->SetIntArrayRegion(arrEventType, 0, length, reinterpret_cast<jint*>(eventType));
    env->SetIntArrayRegion(arrEventRecord, 0, length, reinterpret_cast<jint*>(eventRecord));
    jobject javaEngine = engine != nullptr ? engine->javaObject() : nullptr;
    SITE_LOGD(site, "mObject=%p", javaEngine);
    if (javaEngine != nullptr) {
        env->CallVoidMethod(javaEngine, javaMethod, static_cast<jint>(listId),
                            static_cast<jint>(count), arrEventType, arrEventRecord);
        checkJavaException(env, site, "OnScanUpdateEvent");
    }
    x_mem_free(eventType);
    x_mem_free(eventRecord);
}

extern "C" void native_sb_eng_svl_every_nfy_fct(uint16_t listId, uint32_t count,
                                                const SVL_EVERY_NTF_EVT* changes, void* tag) {
    deliverListChanges(SCAN_SITE, listId, count, changes, tag, gFields.onScanUpdateSvlEventID,
                       BRINOVA_LOG_ERROR);
}

extern "C" void native_sb_eng_tsl_every_nfy_fct(uint16_t listId, uint32_t count,
                                                const TSL_EVERY_NTF_EVT* changes, void* tag) {
    deliverListChanges(SCAN_SITE, listId, count, changes, tag, gFields.onScanUpdateTslEventID,
                       BRINOVA_LOG_DEBUG);
}

extern "C" void native_sb_eng_nwl_every_nfy_fct(uint16_t listId, uint32_t count,
                                                const NWL_EVERY_NTF_EVT* changes, void* tag) {
    deliverListChanges(SCAN_SITE, listId, count, changes, tag, gFields.onScanUpdateNwlEventID,
                       BRINOVA_LOG_DEBUG);
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

// The SVL name in a zeroed middleware buffer, or null when the allocation is refused.
// "fs_Svl_" and at most three digits: svlId 1 to 1000. A longer name is cut, not overrun.
static char* newSvlName(int32_t svlId) {
    constexpr size_t kSvlNameSize = 11;
    char* svlName = static_cast<char*>(x_mem_alloc(kSvlNameSize));
    if (svlName == nullptr) return nullptr;
    x_memset(svlName, 0, kSvlNameSize);
    char formatted[24];
    x_sprintf(formatted, "fs_Svl_%d", svlId - 1);
    x_strncpy(svlName, formatted, kSvlNameSize - 1);
    return svlName;
}

// Opens the builder of `row` for the engine `tag` on its data source.
static int32_t openBuilder(const ScanSite& site, const BuilderRow& row, const char* builderName,
                           int32_t svlId, const char* svlName, HANDLE_T dataSource, void* tag,
                           HANDLE_T* handle) {
    // The satellite builder reads 24 bytes more than the others.
    SB_DVBS_OPEN_DATA_T openData;
    x_memset(&openData, 0, sizeof(openData));
    SB_OPEN_DATA_T& common = openData.t_common;
    common.ui4_svl_id = static_cast<uint32_t>(svlId);
    common.ps_svl_name = svlName;
    common.ps_file_name = "/dev";
    common.ps_tuner_name = row.tunerName;
    common.ui1_flags = 1;
    common.h_data_source = dataSource;
    SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, row.openLog, site.function, site.line, svlName);
    SB_COND_T condition = 0;
    void* data = row.satellite ? static_cast<void*>(&openData) : static_cast<void*>(&common);
    return x_sb_open_builder(builderName, data, tag, _native_sb_nfy_fct, handle, &condition);
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
    {
        std::lock_guard<std::mutex> lock(gLiveEnginesLock);
        liveEngines()[this] = this;
    }
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
    checkJavaException(env, SCAN_SITE, "onSetNativeHandle");
    BLOGE_RAW("JScanEngine : %s create success.ScanEngine=%p, handle: 0x%x", name, this,
              pipelineHandle);
}

JScanEngine::~JScanEngine() {
    {
        std::lock_guard<std::mutex> lock(gLiveEnginesLock);
        liveEngines().erase(this);
    }
    Mutex::Autolock lock(mLock);
    BLOGE("~JScanEngine release start,ScanEngine=%p", this);
    if (mPipelineHandle != NULL_HANDLE) {
        x_handle_free(mPipelineHandle);
        mPipelineHandle = NULL_HANDLE;
    }
    unregisterLists(SCAN_SITE, ListLog::kDestructor);
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

std::list<int64_t> JScanEngine::extensionsSnapshot() {
    std::lock_guard<std::mutex> lock(mExtensionListLock);
    return mListExtension;
}

// Walks a copy: the hooks may run while another thread adds or removes (extensions are
// never destroyed, so a removed one is still safe to call).
template <typename Hook>
void JScanEngine::walkExtensions(const ScanSite& site, const char* announce, Hook hook) {
    const std::list<int64_t> extensions = extensionsSnapshot();
    if (extensions.empty()) {
        SITE_LOGD(site, "mListExtension is empty.");
        return;
    }
    if (announce != nullptr) {
        SITE_LOGD(site, "%s", announce);
    }
    for (int64_t handle : extensions) {
        hook(JINativeScanExtension::fromHandle(handle));
    }
}

void JScanEngine::preScanExtensions(const ScanSite& site, void* params) {
    // Tells the extensions whose block this is: a satellite extension writes only into the
    // satellite builder's.
    PreScanBlock block(params, mScanConfig.load()->getSbEbEngineName());
    walkExtensions(site, nullptr, [&](JINativeScanExtension* extension) {
        SITE_LOGD(site, "onPreScan to Extension = %p\n", extension);
        extension->onPreScan(params);
    });
}

void JScanEngine::detachExtensions(const ScanSite& site) {
    walkExtensions(site, "detach all the extensions before sb close",
                   [&](JINativeScanExtension* extension) {
                       SITE_LOGD(site, "detach extension = %p\n", extension);
                       extension->detach(mSBHandler);
                   });
}

void JScanEngine::completeExtensions(const ScanSite& site) {
    // Without mLock, as every event: on a copy of the list.
    walkExtensions(site, nullptr, [&](JINativeScanExtension* extension) {
        SITE_LOGD(site, "Notify SB_REASON_COMPLETE to Extension = %p\n", extension);
        extension->onScanComplete(1);
    });
}

void JScanEngine::unregisterLists(const ScanSite& site, ListLog log) {
    struct Registration {
        HANDLE_T handle;
        int32_t (*unregister)(HANDLE_T);
    };
    // Taken out at once: given up whatever the middleware answers.
    const Registration lists[] = {{mSvlNotifyHandler, c_svl_unreg_every_notify},
                                  {mTslNotifyHandler, c_tsl_unreg_every_notify},
                                  {mMwlNotifyHandler, c_nwl_unreg_every_notify}};
    mSvlNotifyHandler = mTslNotifyHandler = mMwlNotifyHandler = NULL_HANDLE;
    // Unregistering waits for the list callbacks in progress, whose Java listeners may call
    // any engine operation: close() waits for them without holding mLock. (The destructor
    // has no such caller: a callback in progress holds a reference on the engine.)
    const bool unlock = log == ListLog::kClose;
    if (unlock) mLock.unlock();
    for (size_t i = 0; i < std::size(lists); ++i) {
        if (lists[i].handle == NULL_HANDLE) continue;
        bool ok = lists[i].unregister(lists[i].handle) == MWR_OK;
        logListUnregistered(site, static_cast<ListKind>(i), ok, log);
    }
    if (unlock) mLock.lock();
}

void JScanEngine::logListUnregistered(const ScanSite& site, ListKind list, bool ok, ListLog log) {
    switch (list) {
        case ListKind::kSvl:
            if (!ok) SITE_LOGE(site, "x_svl_unreg_every_notify fail.");
            break;
        case ListKind::kTsl:
            if (!ok) SITE_LOGE(site, "x_tsl_unreg_every_notify fail.");
            break;
        case ListKind::kNwl:
            if (!ok) SITE_LOGE(site, "x_nwl_unreg_every_notify fail.");
            break;
    }
    if (log == ListLog::kDestructor) {
        SITE_LOGD(site, "unreg SVL OK.");  // the destructor's one wording for the three lists
        return;
    }
    switch (list) {
        case ListKind::kSvl:
            SITE_LOGD(site, "unreg SVL OK.ScanEngine=%p, mobject=%p", this, mObject);
            break;
        case ListKind::kTsl:
            SITE_LOGD(site, "unreg tsL OK.ScanEngine=%p, mobject=%p", this, mObject);
            break;
        case ListKind::kNwl:
            SITE_LOGD(site, "unreg nwL OK.ScanEngine=%p, mobject=%p", this, mObject);
            break;
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
            BLOGD("register scan map.mScanConfig=%p", mScanConfig.load());
        }
        return 0;
    }

    mScanConfig = config;
    BLOGD("builderName=%s, mScanConfig = %p", builderName, mScanConfig.load());
    BLOGD("svl,tsl,nwl reg ScanEngine=%p, mObject=%p", this, mObject);
    BLOGD("ds_handle = 0x%x, svlid=%d.pv_tag=%p", dataSource, svlId, this);
    int32_t status = registerLists(SCAN_SITE, static_cast<uint16_t>(svlId & 0xFFFF));

    char* svlName = newSvlName(svlId);
    if (svlName == nullptr) {
        // A refused allocation: no name, no builder; the open fails as a refused one does.
        BLOGE("open %s builder failed", builderName);
        return kOpenFailed;
    }

    HANDLE_T handle = NULL_HANDLE;
    const BuilderRow* row = findRow(kBuilders, builderName);
    if (row == nullptr) {
        // Deliberately goes on with the last list registration's status, as if a builder
        // with handle 0 had been opened.
        BLOGI("unknow builder name: %s.", builderName);
    } else {
        status = openBuilder(SCAN_SITE, *row, builderName, svlId, svlName, mPipelineHandle, this,
                             &handle);
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
                               mScanConfig.load());
    x_mem_free(svlName);
    if (status != MWR_OK) {
        BLOGE(" set scan map failed");
        return kOpenFailed;
    }
    return 0;
}

int32_t JScanEngine::registerLists(const ScanSite& site, uint16_t listId) {
    HANDLE_T svl = NULL_HANDLE, tsl = NULL_HANDLE, nwl = NULL_HANDLE;
    int32_t status = c_svl_register_every_notify(listId, _native_sb_eng_svl_filter_fct,
                                                 native_sb_eng_svl_every_nfy_fct, this, &svl);
    SITE_LOGD(site, "mSvlNotifyHandler register. i4_ret=%d", status);
    status = c_tsl_register_every_notify(listId, _native_sb_eng_tsl_filter_fct,
                                         native_sb_eng_tsl_every_nfy_fct, this, &tsl);
    SITE_LOGD(site, "mTslNotifyHandler register. i4_ret=%d", status);
    status = c_nwl_register_every_notify(listId, _native_sb_eng_nwl_filter_fct,
                                         native_sb_eng_nwl_every_nfy_fct, this, &nwl);
    SITE_LOGD(site, "mMwlNotifyHandler register. i4_ret=%d", status);
    mSvlNotifyHandler = svl;
    mTslNotifyHandler = tsl;
    mMwlNotifyHandler = nwl;
    return status;  // the last registration's: it decides an unknown builder's fate
}

int32_t JScanEngine::start() {
    Mutex::Autolock lock(mLock);
    if (mScanConfig == nullptr) {
        BLOGE("ScanConfig is NULL, return error \n");
        return kBadValue;
    }
    void* params = mScanConfig.load()->getSbScanParams(0);
    BLOGE("mScanConfig = %p\n", mScanConfig.load());
    BLOGD("ScanEngine=%p, mobject=%p", this, mObject);
    preScanExtensions(SCAN_SITE, params);
    int ret = mScanConfig.load()->checkScanMaps();
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
    mScanConfig.load()->onStatus(1);
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
        mScanConfig.load()->onStatus(0);
    }
    BLOGE("scan cancel success \n");
    mState = STATE_CANCELLED;
    return 0;
}

int32_t JScanEngine::close() {
    Mutex::Autolock lock(mLock);
    if (mState != STATE_NO_BUILDER) {
        detachExtensions(SCAN_SITE);
    }
    BLOGD("ScanEngine=%p, mobject=%p", this, mObject);
    unregisterLists(SCAN_SITE, ListLog::kClose);
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
    {
        std::lock_guard<std::mutex> list(mExtensionListLock);
        mListExtension.push_back(handle);
    }
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
    std::unique_lock<std::mutex> list(mExtensionListLock);
    for (auto it = mListExtension.begin(); it != mListExtension.end(); ++it) {
        if (*it == handle) {
            mListExtension.erase(it);
            list.unlock();
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
    BLOGE("mScanConfig = %p\n", mScanConfig.load());
    void* params = mScanConfig.load()->getSbScanParams(0);
    if (params == nullptr) {
        BLOGE("pScanData is NULL, return error \n");
        return kBadValue;
    }
    preScanExtensions(SCAN_SITE, params);
    const char* name = mScanConfig.load()->getSbEbEngineName();
    int ret = mScanConfig.load()->checkScanMaps();
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
    mScanConfig.load()->onStatus(1);
    BLOGE("start Monitor success \n");
    mState = STATE_MONITORING;
    return 0;
}

int32_t JScanEngine::stopMonitor() {
    Mutex::Autolock lock(mLock);
    mState = STATE_STOP_REQUESTED;
    detachExtensions(SCAN_SITE);
    BLOGE("start to stop Monitor.\n");
    if (x_sb_cancel_scan(mSBHandler) != MWR_OK) {
        BLOGE("\n");
        return kRefused;
    }
    if (mScanConfig != nullptr) {
        BLOGD("onStatus stopMonitor \n");
        mScanConfig.load()->onStatus(0);
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
        mEventQueue.push(SB_EVENT{reason, data});
    }
    sem_post(&mSbEventSem);
}

bool JScanEngine::peekEvent(SB_EVENT* event) {
    std::lock_guard<std::mutex> lock(mEventQueueLock);
    return mEventQueue.front(event);
}

bool JScanEngine::popEvent() {
    std::lock_guard<std::mutex> lock(mEventQueueLock);
    return mEventQueue.pop();
}

// Drops the builder's events but keeps an exit request: release() may queue one while the
// thread is still handling an event of a builder that close() has just shut, and losing it
// would leave the thread (and with it the engine) alive for ever.
void JScanEngine::clearEvents() {
    std::lock_guard<std::mutex> lock(mEventQueueLock);
    bool exitRequested = false;
    SB_EVENT event;
    while (mEventQueue.front(&event)) {
        exitRequested = exitRequested || event.reason == SB_EVENT_REASON_EXIT;
        mEventQueue.pop();
    }
    if (exitRequested) {
        mEventQueue.push(SB_EVENT{SB_EVENT_REASON_EXIT, 0});
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

// Counts the event into the shared counters (the transponder index goes up by one but stops
// at the total) and gives the channel count and the percentage it makes.
JScanEngine::Progress JScanEngine::progressOf(uint32_t reason, uint32_t data) {
    JINativeScanConfig* config = mScanConfig.load();
    std::lock_guard<std::mutex> lock(gProgressLock);
    if (config == nullptr) return Progress{gChannelCount, 0};
    gChannelCount += static_cast<int32_t>(data & 0xFFFF);
    if (reason & SB_REASON_PROGRESS) {
        gTransponderTotal = static_cast<int32_t>((data >> 16) & 0x7FFF);
        gTransponderIndex =
            gTransponderIndex >= gTransponderTotal ? gTransponderTotal : gTransponderIndex + 1;
    }
    const char* name = config->getSbEbEngineName();
    if (x_strncmp(name, "sb_dvbc", 7) == 0 || x_strncmp(name, "sb_cn_dvbc", 10) == 0) {
        return Progress{gChannelCount, static_cast<int32_t>((data >> 16) & 0x7FFF)};
    }
    if (x_strncmp(name, "sb_dvbs", 7) == 0) {
        return Progress{gChannelCount, static_cast<int32_t>(data >> 16)};
    }
    if (gTransponderTotal == 0) return Progress{gChannelCount, 0};
    if (gTransponderTotal == -1) {
        return Progress{gChannelCount, -(100 * gTransponderIndex)};  // kept as it always was
    }
    return Progress{gChannelCount, 100 * gTransponderIndex / gTransponderTotal};
}

void JScanEngine::sbEventThreadLoop() {
    const ScanSite site = SCAN_SITE;
    for (;;) {
        SITE_LOGE(site, "wait mSbEventSem");
        while (sem_wait(&mSbEventSem) != 0) {
        }
        SITE_LOGI(site, "got mSbEventSem");
        SB_EVENT event;
        while (peekEvent(&event)) {
            SITE_LOGI(site, "ui4_nfy_reason = 0x%x, data=0x%x", event.reason, event.data);
            if (event.reason == SB_EVENT_REASON_EXIT) {
                // The exit event and anything behind it stay queued.
                SITE_LOGI(site, "exit mSbEventThread");
                mSbEventThread = 0;
                return;
            }
            handleEvent(site, event);
            if (popEvent()) {
                SITE_LOGD(site, "Remove the processed event from queue.");
            }
            if (mState == STATE_NO_BUILDER) {
                SITE_LOGD(site, "clear all event.\n");
                clearEvents();
                break;
            }
        }
    }
}

// One builder event at the front of the queue, on the event thread (logged at the loop's site).
void JScanEngine::handleEvent(const ScanSite& site, const SB_EVENT& event) {
    JINativeScanConfig* config = mScanConfig.load();
    if (config != nullptr && isScanEnd(event.reason)) {
        SITE_LOGD(site, "onStatus stopped \n");
        config->onStatus(0);
        mState = STATE_SCAN_ENDED;
    }
    if (javaVM == nullptr) {
        SITE_LOGI(site, " jenv is null, going to abort().");
        abort();
    }
    ScopedJniThread thread(site, ScopedJniThread::kRet);
    if (isScanEnd(event.reason)) {
        deliverScanEnd(site, thread.env(), event.reason);
    } else if (event.reason == SB_REASON_PROGRESS || event.reason == SB_REASON_PROGRESS_ONLY) {
        deliverProgress(site, thread.env(), event);
    } else if (event.reason == SB_REASON_FREQ_REPORT) {
        deliverFrequency(site, thread.env(), event.data);
    } else {
        SITE_LOGD(site, "Scan nofity reason not handle currently.");
    }
}

void JScanEngine::deliverScanEnd(const ScanSite& site, JNIEnv* env, uint32_t reason) {
    SITE_LOGD(site, "SB_REASON:%d\n", reason);
    completeExtensions(site);
    env->CallVoidMethod(mObject, gFields.onScanStatusEventID, 2, static_cast<jint>(reason), 0);
    checkJavaException(env, site, "OnScanStatusEvent");
    resetProgress();
}

void JScanEngine::deliverProgress(const ScanSite& site, JNIEnv* env, const SB_EVENT& event) {
    if (gFields.onScanStatusEventID == nullptr) return;
    SITE_LOGD(site, "SB_REASON_PROGRESS\n");
    const Progress progress = progressOf(event.reason, event.data);
    env->CallVoidMethod(mObject, gFields.onScanStatusEventID, 1, progress.channels, progress.percent);
    checkJavaException(env, site, "OnScanStatusEvent");
    SITE_LOGD(site, "progress = %d, channel=%d\n", progress.percent, progress.channels);
}

void JScanEngine::deliverFrequency(const ScanSite& site, JNIEnv* env, uint32_t frequency) {
    if (gFields.onScanStatusEventID == nullptr) return;
    SITE_LOGD(site, "SB_REASON_FREQ_REPORT");
    env->CallVoidMethod(mObject, gFields.onScanStatusEventID, 3, static_cast<jint>(frequency), 0);
    checkJavaException(env, site, "OnScanStatusEvent");
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
        // A sleep before each look; the thread is detached, so this is all the waiting done.
        int retryTimes = 0;
        do {
            usleep(10000);
            ++retryTimes;
        } while (retryTimes < 10 && mSbEventThread != 0);
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
    checkJavaException(env, SCAN_SITE, "getNativeContext");
    return reinterpret_cast<JScanEngine*>(static_cast<uintptr_t>(context));  // NOLINT(performance-no-int-to-ptr): Java holds the object as its address
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
    checkJavaException(env, SCAN_SITE, "setAndUnlockNativeContext");
}

// The engine of a native's `thiz` for the length of the call: Java's context read once and
// held by a strong reference, inside the native's Java-caller scope.
class EngineNative {
public:
    EngineNative(JNIEnv* env, jobject thiz) : mScope(env), mEngine(getScanEngine(env, thiz)) {}

    bool usable() const { return mEngine != nullptr && mEngine->initCheck() == 0; }
    /* As usable(), logging "Engine is NULL or not init" at the native's site when not. */
    bool usable(const ScanSite& site) const {
        if (!usable()) {
            SITE_LOGE(site, "Engine is NULL or not init");
            return false;
        }
        return true;
    }
    JScanEngine* operator->() const { return mEngine.get(); }

private:
    JavaCallerScope mScope;  // declared first: a kept exception is thrown after the release
    sp<JScanEngine> mEngine;
};

jint setupEngine(JNIEnv* env, jobject thiz, HANDLE_T handle, jobject pipelineObject,
                 const ScanSite& site) {
    sp<JScanEngine> engine = new JScanEngine(env, thiz, "Good ScanEngine", handle, pipelineObject);
    if (engine->initCheck() != 0) {
        SITE_LOGE(site, "Failed to find a Good engine , error %#x", engine->initCheck());
        return kBadValue;
    }
    setScanEngine(env, thiz, engine);
    return 0;
}

jint native_setup(JNIEnv* env, jobject thiz, jobject pipelineObject) {
    JavaCallerScope scope(env);
    jobject gref = env->NewGlobalRef(pipelineObject);
    HANDLE_T handle = NULL_HANDLE;
    if (handle_alloc(kPipelineHandleType, gref, nullptr, _scanengine_pipeline_handle_free,
                     &handle) != MWR_OK) {
        BLOGE_RAW("orvella_scan_ZelTvScanEngine_setUp fail to alloc handle");
        handle = NULL_HANDLE;  // whatever a refusing middleware left there
    }
    BLOGD(" pipeline handle: 0x%x", handle);
    x_orvella_filter_register_get_pipeline_obj(getPipelineObjectFromScanEngine);
    return setupEngine(env, thiz, handle, gref, SCAN_SITE);
}

jint native_setup_with_pipeline_handle(JNIEnv* env, jobject thiz, jint handle) {
    JavaCallerScope scope(env);
    BLOGD(" pipeline handle: 0x%x", handle);
    return setupEngine(env, thiz, static_cast<HANDLE_T>(handle), nullptr, SCAN_SITE);
}

jint native_configure(JNIEnv* env, jobject thiz, jlong configPointer, jint svlId) {
    EngineNative engine(env, thiz);
    if (!engine.usable(SCAN_SITE)) {
        return kBadValue;
    }
    if (engine->getPipelineHandle() == NULL_HANDLE) {
        BLOGE(" h_pipeline is null handler.");
        return kBadValue;
    }
    BLOGD("config = 0x%llx, datasource=0x%x, svlId=%d", static_cast<long long>(configPointer),
          engine->getPipelineHandle(), svlId);
    auto* config = reinterpret_cast<JINativeScanConfig*>(  // NOLINT(performance-no-int-to-ptr)
        static_cast<uintptr_t>(configPointer));  // Java passes the configuration's address
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
    EngineNative engine(env, thiz);
    if (!engine.usable(SCAN_SITE)) {
        return kBadValue;
    }
    if (engine->addExtension(handle) != 0) {
        BLOGE("engine->addExtension fail");
        return kBadValue;
    }
    return 0;
}

jint native_remove_extension(JNIEnv* env, jobject thiz, jlong handle) {
    EngineNative engine(env, thiz);
    if (!engine.usable(SCAN_SITE)) {
        return kBadValue;
    }
    engine->removeExtension(handle);  // 0 whether or not the extension was there
    return 0;
}

jint native_start(JNIEnv* env, jobject thiz) {
    EngineNative engine(env, thiz);
    if (!engine.usable(SCAN_SITE)) {
        return kBadValue;
    }
    int32_t ret = engine->start();
    if (ret != 0) {
        BLOGE_RAW("engine start failed, return err = 0x%x", ret);
        return kBadValue;  // for the engine's -22 and -38 alike
    }
    return 0;
}

jint native_cancel(JNIEnv* env, jobject thiz) {
    EngineNative engine(env, thiz);
    if (!engine.usable(SCAN_SITE)) {
        return kBadValue;
    }
    int32_t ret = engine->cancel();
    if (ret != 0) {
        BLOGE("engine cancel failed err=0x%x", ret);
        return kRefused;
    }
    return 0;
}

jint native_close(JNIEnv* env, jobject thiz) {
    EngineNative engine(env, thiz);
    if (!engine.usable()) {
        // The bracket missing at the start is how this line has always read.
        const ScanSite site = SCAN_SITE;
        BLOGE_RAW("%s][%s][%d]Engine is NULL or not init", kEngineSourcePath, site.function,
                  site.line);
        return kBadValue;
    }
    int32_t ret = engine->close();
    if (ret != 0) {
        BLOGE("engine close failed err=0x%x", ret);
        return kRefused;
    }
    return 0;
}

jint native_release(JNIEnv* env, jobject thiz) {
    EngineNative engine(env, thiz);
    if (!engine.usable(SCAN_SITE)) {
        return kBadValue;
    }
    BLOGE("start native release.\n");
    engine->exitSBEventThread();
    setScanEngine(env, thiz, nullptr);
    return 0;
}

jint native_start_monitor(JNIEnv* env, jobject thiz) {
    EngineNative engine(env, thiz);
    if (!engine.usable(SCAN_SITE)) {
        return kBadValue;
    }
    BLOGD("startMonitor");
    int32_t ret = engine->startMonitor();
    if (ret != 0) {
        BLOGE_RAW("startMonitor failed, return err = 0x%x", ret);
        return kBadValue;
    }
    return 0;
}

jint native_stop_monitor(JNIEnv* env, jobject thiz) {
    EngineNative engine(env, thiz);
    if (!engine.usable(SCAN_SITE)) {
        return kBadValue;
    }
    int32_t ret = engine->stopMonitor();
    if (ret != 0) {
        BLOGE_RAW("stopMonitor failed, return err = 0x%x", ret);
        return kBadValue;
    }
    return 0;
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
