#include "JINativeScanExtension.h"

namespace android {

// The default hooks do nothing: most extensions need only one of the two.
void JINativeScanExtension::onScanComplete(int) {}
void JINativeScanExtension::onPreScan(void*) {}

}  // namespace android
