#include <gmock/gmock.h>

#include "support/testing/ChildProcess.h"

int main(int argc, char** argv) {
    if (const auto exitCode = orvex::testing::RunAsChild()) {
        return *exitCode;
    }
    ::testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
