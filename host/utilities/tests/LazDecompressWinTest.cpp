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

// Windows refuses to replace a file in use: the file stays and the user reads why.
TEST(LazDecompress, ALasFileIsReplacedWhenAllItsReadersAreDone) {
    const testing::TemporaryFolder folder;
    const std::wstring laz = folder.Name(L"a.laz");
    const std::wstring las = folder.Write(L"a.las", "older");
    testing::WriteSample(laz, {2, 1, 28, 100}, true);
    testing::RecordingProgress progress;
    std::wstring reason;
    const auto expectRefusal = [&] {
        EXPECT_FALSE(OrvexUtilities::LAZDecompress(laz, las, progress, reason));
        EXPECT_NE(reason.find(las), std::wstring::npos) << ToUtf8(reason);
        EXPECT_NE(reason.find(SystemErrorText(ERROR_SHARING_VIOLATION)), std::wstring::npos)
            << ToUtf8(reason);
        EXPECT_EQ(folder.Entries(), 2U);
        EXPECT_EQ(testing::ReadFile(las), "older");
    };
    MappedView view;
    {
        MappedFile file;
        ASSERT_EQ(file.Open(las, true), 0);
        expectRefusal();
        ASSERT_EQ(file.CreateMapping(), 0);
        ASSERT_EQ(file.Map(0, 5, false, view), 0);
    }
    expectRefusal();  // by the view alone
    view = MappedView();
    EXPECT_TRUE(OrvexUtilities::LAZDecompress(laz, las, progress, reason)) << ToUtf8(reason);
}

}  // namespace
}  // namespace orvex
