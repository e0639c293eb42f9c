#include <gtest/gtest.h>

#include <cerrno>

#include "las/companion/tests/QvrClouds.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"
#include "support/testing/FileSizeLimit_linux.h"

namespace orvex {
namespace {

// A drive that is full in the temporary file, or only in the companion.
TEST(QvrBuilder, FullDriveLeavesWhatWasThere) {
    const testing::LasFolder folder;
    const std::wstring path = folder.TemporaryFolder::Write(L"a.las", testing::Cloud{}.Bytes());
    folder.TemporaryFolder::Write(L"a.qvr", "old");
    for (const std::uint64_t memory : {std::uint64_t{64} << 20U, std::uint64_t{64} << 10U}) {
        QvrSettings settings;
        settings.memory = memory;
        settings.replaceExisting = true;
        Kst::NullProgress progress;
        const QvrPlan plan = PlanQvr(path, settings);
        const testing::FileSizeLimit full(10000);
        try {
            BuildQvr(plan, settings, progress);
            ADD_FAILURE() << "written beyond the limit";
        } catch (const LDataError& error) {
            EXPECT_TRUE(error.Text().ends_with(SystemErrorText(EFBIG)));
        }
        EXPECT_EQ(testing::ReadFile(folder.Name(L"a.qvr")), "old");
        EXPECT_EQ(folder.Entries(), 2U);
    }
}

}  // namespace
}  // namespace orvex
