// Drives that take no more.
#include <cstring>

#include "host/dem/tests/DemFixture.h"
#include "support/Text.h"
#include "support/testing/FileSizeLimit_linux.h"

namespace orvex {
namespace {

using testing::DemSample;
using testing::FileSizeLimit;

class DemFilesLinuxTest : public testing::DemFixture {};

TEST_F(DemFilesLinuxTest, WriteErrorsGiveTheSystemsReasonAndLeaveNothing) {
    DemSample sample;
    sample.width = 500;
    sample.height = 400;
    const std::wstring path = Write(sample);
    const rlim_t whole = 375 + 20 * 500 * 400;
    for (const rlim_t limit : {rlim_t{100}, rlim_t{100000}, whole - 1}) {
        std::wstring text;
        {
            const FileSizeLimit limited(limit);
            text = FailureOf(path);
        }
        EXPECT_NE(text.find(L"a.las"), std::wstring::npos) << ToUtf8(text);
        EXPECT_NE(text.find(FromUtf8(std::strerror(EFBIG))), std::wstring::npos) << ToUtf8(text);
        EXPECT_TRUE(std::filesystem::is_empty(ToPath(options_.outputFolder))) << limit;
    }
    const FileSizeLimit limited(whole);
    EXPECT_EQ(Convert(path).points, 500U * 400U);
}

}  // namespace
}  // namespace orvex
