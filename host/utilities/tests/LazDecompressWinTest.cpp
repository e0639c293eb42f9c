// Windows refuses to replace a file in use: the file stays and the user reads why.
#include <gtest/gtest.h>
#include <windows.h>

#include "host/utilities/testing/LazSamples.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/MappedFile.h"
#include "support/Text.h"
#include "support/testing/Scripted.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using testing::ReadFile;
using testing::RecordingProgress;
using testing::TemporaryFolder;
using testing::WriteSample;

class ReplacingALasFile : public ::testing::Test {
  protected:
    ReplacingALasFile() { WriteSample(laz_, {2, 1, 28, 100}, true); }

    void ExpectRefusal(SystemError error) const {
        RecordingProgress progress;
        std::wstring reason;
        EXPECT_FALSE(OrvexUtilities::LAZDecompress(laz_, las_, progress, reason));
        EXPECT_NE(reason.find(las_), std::wstring::npos) << ToUtf8(reason);
        EXPECT_NE(reason.find(SystemErrorText(error)), std::wstring::npos) << ToUtf8(reason);
        EXPECT_EQ(folder_.Entries(), 2U);
        EXPECT_EQ(ReadFile(las_), "older");
    }

    const TemporaryFolder folder_;
    const std::wstring laz_ = folder_.Name(L"a.laz");
    const std::wstring las_ = folder_.Write(L"a.las", "older");
};

TEST_F(ReplacingALasFile, NeedsAllItsReadersToBeDone) {
    MappedView view;
    {
        MappedFile file;
        ASSERT_EQ(file.Open(las_, true), 0);
        ExpectRefusal(ERROR_SHARING_VIOLATION);
        ASSERT_EQ(file.CreateMapping(), 0);
        ASSERT_EQ(file.Map(0, 5, false, view), 0);
    }
    ExpectRefusal(ERROR_SHARING_VIOLATION);  // by the view alone
    view = MappedView();
    RecordingProgress progress;
    std::wstring reason;
    EXPECT_TRUE(OrvexUtilities::LAZDecompress(laz_, las_, progress, reason)) << ToUtf8(reason);
}

}  // namespace
}  // namespace orvex
