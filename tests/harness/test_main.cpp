// Entry of every JVM test binary: starts the VM (unless only listing tests), loads the
// library from Java and runs the tests.
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <string>

#include <gtest/gtest.h>

namespace harness {
void startJvm(const char* classPath);
void installLogCapture();
}

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    GTEST_FLAG_SET(death_test_style, ORVELLA_DEATH_TEST_STYLE);
    harness::installLogCapture();
    if (!GTEST_FLAG_GET(list_tests)) {
        harness::startJvm(ORVELLA_TEST_CLASSPATH);
    }
    int rc = RUN_ALL_TESTS();
    fflush(stdout);
    fflush(stderr);
    // The VM and simulator threads are left to the process's end.
    _exit(rc);
}
