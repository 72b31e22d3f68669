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
