#include "JINativeScanExtension.h"

namespace android {

// The default hooks do nothing: most extensions need only one of the two.
void JINativeScanExtension::onScanComplete(int) {}
void JINativeScanExtension::onPreScan(void*) {}

namespace {
thread_local PreScanBlock* tPreScanBlock = nullptr;
}  // namespace

PreScanBlock::PreScanBlock(const void* block, const char* builderName)
    : mBlock(block), mBuilderName(builderName), mOuter(tPreScanBlock) {
    tPreScanBlock = this;
}

PreScanBlock::~PreScanBlock() { tPreScanBlock = mOuter; }

const char* PreScanBlock::builderOf(const void* block) {
    for (const PreScanBlock* b = tPreScanBlock; b != nullptr; b = b->mOuter) {
        if (b->mBlock == block) return b->mBuilderName;
    }
    return nullptr;
}

}  // namespace android

#ifdef ORVELLA_RACE_CHECK
#include <stdlib.h>
#include <sys/mman.h>

#include <mutex>

namespace android {

namespace {
std::mutex gLowLock;
uint8_t* gLowNext = nullptr;
size_t gLowLeft = 0;
}  // namespace

// Extensions are few and never freed: a bump allocator over MAP_32BIT chunks.
void* JINativeScanExtension::operator new(size_t size) {
    constexpr size_t kChunk = 1 << 20;
    const size_t need = (size + 15) & ~size_t{15};
    std::lock_guard<std::mutex> lock(gLowLock);
    if (need > gLowLeft) {
        const size_t chunk = need > kChunk ? need : kChunk;
        void* p = mmap(nullptr, chunk, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_32BIT,
                       -1, 0);
        if (p == MAP_FAILED) abort();
        gLowNext = static_cast<uint8_t*>(p);
        gLowLeft = chunk;
    }
    void* out = gLowNext;
    gLowNext += need;
    gLowLeft -= need;
    return out;
}

void JINativeScanExtension::operator delete(void*) {}

}  // namespace android
#endif
