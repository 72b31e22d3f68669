/*
 * The native peer of one Java scan engine: one session with the middleware's scan
 * builder, its event thread and queue, its list-change registrations and the list of
 * attached scan extensions.
 */
#ifndef JSCAN_ENGINE_H
#define JSCAN_ENGINE_H

#include <pthread.h>
#include <semaphore.h>
#include <stdint.h>

#include <atomic>
#include <list>
#include <mutex>

#include <jni.h>
#include <utils/Mutex.h>
#include <utils/RefBase.h>

#include "JINativeScanConfig.h"
#include "SbEvent.h"
#include "x_mw_common.h"

namespace android {

class JScanEngine : public RefBase {
public:
    /* Session states. */
    enum {
        STATE_NO_BUILDER = 0,
        STATE_BUILDER_OPEN = 1,
        STATE_SCANNING = 3,
        STATE_STOP_REQUESTED = 4,
        STATE_CANCELLED = 5,
        STATE_MONITORING = 6,
        STATE_SCAN_ENDED = 7,
    };

    JScanEngine(JNIEnv* env, jobject thiz, const char* name, HANDLE_T pipelineHandle,
                jobject pipelineObject);

    int32_t initCheck() const { return mInitStatus; }
    HANDLE_T getPipelineHandle() const { return mPipelineHandle; }

    int32_t configure(const char* builderName, JINativeScanConfig* config, HANDLE_T dataSource,
                      int32_t svlId);
    int32_t start();
    int32_t cancel();
    int32_t close();
    void deleteJavaObjects(JNIEnv* env);

    int32_t addExtension(int64_t handle);
    int32_t removeExtension(int64_t handle);

    int32_t startMonitor();
    int32_t stopMonitor();

    /* Queues a builder notification for the event thread (one post per event). */
    void pushEvent(uint32_t reason, uint32_t data);
    void exitSBEventThread();
    static void* sbEventThreadFunc(void* engine);

    int32_t state() const { return mState; }
    jobject javaObject() const { return mObject; }

protected:
    ~JScanEngine() override;

private:
    enum class ListKind { kSvl, kTsl, kNwl };
    /* Which words the list unregistrations are logged with. */
    enum class ListLog { kClose, kDestructor };

    /* Helpers of the operations: each logs at the site its caller passes. */
    int32_t registerLists(const ScanSite& site, uint16_t listId);
    void unregisterLists(const ScanSite& site, ListLog log);
    void logListUnregistered(const ScanSite& site, ListKind list, bool ok, ListLog log);
    /* Calls `hook` on every attached extension, front to back, after `announce` if given;
     * an empty list is logged as such. */
    template <typename Hook>
    void walkExtensions(const ScanSite& site, const char* announce, Hook hook);
    void preScanExtensions(const ScanSite& site, void* params);
    void detachExtensions(const ScanSite& site);
    void completeExtensions(const ScanSite& site);

    void sbEventThreadLoop();
    bool peekEvent(SB_EVENT* event);
    bool popEvent();  /* true when the removal freed a block of the queue */
    void clearEvents();
    void handleEvent(const ScanSite& site, const SB_EVENT& event);
    void deliverScanEnd(const ScanSite& site, JNIEnv* env, uint32_t reason);
    void deliverProgress(const ScanSite& site, JNIEnv* env, const SB_EVENT& event);
    void deliverFrequency(const ScanSite& site, JNIEnv* env, uint32_t frequency);
    /* Services found and percent done after one progress event. */
    struct Progress {
        int32_t channels;
        int32_t percent;
    };
    Progress progressOf(uint32_t reason, uint32_t data);
    std::list<int64_t> extensionsSnapshot();

    /* Written under mLock, read by the event thread without it. */
    std::atomic<JINativeScanConfig*> mScanConfig{nullptr};
    Mutex mLock;
    int32_t mInitStatus = 0;
    std::atomic<int32_t> mState{STATE_NO_BUILDER};
    jclass mClass = nullptr;
    jobject mObject = nullptr;
    HANDLE_T mSBHandler = NULL_HANDLE;
    HANDLE_T mSvlNotifyHandler = NULL_HANDLE;
    HANDLE_T mTslNotifyHandler = NULL_HANDLE;
    HANDLE_T mMwlNotifyHandler = NULL_HANDLE;
    HANDLE_T mPipelineHandle = NULL_HANDLE;
    jobject mPipelineObject = nullptr;
    std::list<int64_t> mListExtension;
    /* Guards mListExtension itself: the event thread walks a copy taken under it, so that
     * Java may add and remove extensions (under mLock) at any time. */
    std::mutex mExtensionListLock;
    SbEventQueue mEventQueue;
    std::mutex mEventQueueLock;  // the queue is shared by the builder's threads and ours
    std::atomic<pthread_t> mSbEventThread{0};
    sem_t mSbEventSem;
    std::atomic<bool> mThreadForceExit{false};
    std::atomic<bool> mThreadStarted{false};
};

}  // namespace android

#endif /* JSCAN_ENGINE_H */
