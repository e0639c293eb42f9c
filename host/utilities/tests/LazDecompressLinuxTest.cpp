// A full drive, imitated by a limit on the size of files.
#include <gtest/gtest.h>

#include <cstring>

#include "host/utilities/testing/LazSamples.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/Text.h"
#include "support/testing/FileSizeLimit_linux.h"
#include "support/testing/Scripted.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using testing::FileSizeLimit;
using testing::RecordingProgress;
using testing::TemporaryFolder;
using testing::WriteSample;

TEST(LazDecompress, WriteErrorsInTheMiddleAndAtTheEndGiveTheSystemsReason) {
    const TemporaryFolder folder;
    const std::wstring laz = folder.Name(L"a.laz");
    WriteSample(laz, {2, 1, 28, 100000}, true);
    const rlim_t whole = 227 + 54 + 21 + 28 * 100000;
    for (const rlim_t limit : {rlim_t{100}, rlim_t{100000}, whole - 1}) {
        RecordingProgress progress;
        std::wstring reason;
        bool done = true;
        {
            const FileSizeLimit limited(limit);
            done = OrvexUtilities::LAZDecompress(laz, folder.Name(L"a.las"), progress, reason);
        }
        EXPECT_FALSE(done) << limit;
        EXPECT_NE(reason.find(L"a.las"), std::wstring::npos);
        EXPECT_NE(reason.find(FromUtf8(std::strerror(EFBIG))), std::wstring::npos) << ToUtf8(reason);
        EXPECT_EQ(folder.Entries(), 1U) << limit;
    }
}

}  // namespace
}  // namespace orvex
