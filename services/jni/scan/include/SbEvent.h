/* One builder notification queued for the scan engine's event thread. */
#ifndef SB_EVENT_H
#define SB_EVENT_H

#include <stddef.h>
#include <stdint.h>

typedef struct {
    uint32_t reason;
    uint32_t data;
} SB_EVENT;
static_assert(sizeof(SB_EVENT) == 8, "SB_EVENT size");
static_assert(offsetof(SB_EVENT, data) == 4, "SB_EVENT.data offset");

/* The engine's own request to end its event thread. */
#define SB_EVENT_REASON_EXIT ((uint32_t)255)

#ifdef __cplusplus
namespace android {

/*
 * The engine's first-in first-out queue of events, stored in blocks of kEventsPerBlock. A
 * block is freed as soon as its last event has been taken out, and pop() says when that
 * happened (the engine logs it). Not locked: the engine guards it.
 */
class SbEventQueue {
public:
    static constexpr size_t kEventsPerBlock = 64;

    SbEventQueue() = default;
    ~SbEventQueue() { clear(); }
    SbEventQueue(const SbEventQueue&) = delete;
    SbEventQueue& operator=(const SbEventQueue&) = delete;

    bool empty() const { return mHead == nullptr || (mHead == mTail && mHeadIndex == mTailIndex); }

    void push(const SB_EVENT& event) {
        if (mTail == nullptr || mTailIndex == kEventsPerBlock) {
            Block* block = new Block();
            if (mTail != nullptr) {
                mTail->next = block;
            } else {
                mHead = block;
                mHeadIndex = 0;
            }
            mTail = block;
            mTailIndex = 0;
        }
        mTail->events[mTailIndex++] = event;
    }

    /* The front event, left in the queue; false when there is none. */
    bool front(SB_EVENT* event) const {
        if (empty()) return false;
        *event = mHead->events[mHeadIndex];
        return true;
    }

    /* Removes the front event; true when that freed its block. */
    bool pop() {
        if (empty()) return false;
        if (++mHeadIndex < kEventsPerBlock) return false;
        Block* done = mHead;
        mHead = done->next;
        mHeadIndex = 0;
        if (mHead == nullptr) mTail = nullptr;
        delete done;
        return true;
    }

    void clear() {
        while (mHead != nullptr) {
            Block* next = mHead->next;
            delete mHead;
            mHead = next;
        }
        mTail = nullptr;
        mHeadIndex = mTailIndex = 0;
    }

private:
    struct Block {
        SB_EVENT events[kEventsPerBlock];
        Block* next = nullptr;
    };
    Block* mHead = nullptr;
    Block* mTail = nullptr;
    size_t mHeadIndex = 0;  // next event to take from mHead
    size_t mTailIndex = 0;  // next free slot of mTail
};

}  // namespace android
#endif

#endif /* SB_EVENT_H */
