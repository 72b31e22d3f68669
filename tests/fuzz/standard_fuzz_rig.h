// The rig of the cable, DTMB, ATSC, clear-QAM and ISDB fuzz targets
// (testsupport/StandardFuzzRig): one configuration of each standard.
#ifndef ORVELLA_TESTS_STANDARD_FUZZ_RIG_H
#define ORVELLA_TESTS_STANDARD_FUZZ_RIG_H

#include <vector>

#include <jni.h>

#include "JINativeScanConfig.h"

namespace fuzz {

// The standards in the rig's order.
enum Standard { kDvbc, kDtmb, kAtsc, kCqam, kIsdb, kStandards };

// The native configuration of one standard (the rig is made on the first call).
android::JINativeScanConfig* standardConfig(Standard standard);
void setStandardAnswer(const std::vector<jint>& answer);

}  // namespace fuzz

#endif  // ORVELLA_TESTS_STANDARD_FUZZ_RIG_H
