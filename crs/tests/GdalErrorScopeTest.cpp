#include "support/GdalErrorScope.h"

#include <cpl_error.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ogr_spatialref.h>

#include <thread>

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

void Report(const char* message, CPLErr severity = CE_Failure) {
    CPLError(severity, CPLE_AppDefined, "%s", message);
}

TEST(GdalErrorScope, CapturesWhatWouldReachTheConsole) {
    ::testing::internal::CaptureStderr();
    {
        const GdalErrorScope errors;
        EXPECT_EQ(errors.Text(), "");
        Report("a warning", CE_Warning);
        EXPECT_FALSE(errors.HasError());
        Report("a failure");
        EXPECT_TRUE(errors.HasError());
        EXPECT_EQ(errors.Text(), "a warning; a failure");
        OGRSpatialReference crs;
        crs.importFromWkt("PROJCS[\"broken\"");
        EXPECT_GT(errors.Messages().size(), 2U) << "PROJ's own errors";
        for (int i = 0; i < 10000; ++i) {
            Report(std::to_string(i).c_str(), CE_Warning);
        }
        EXPECT_EQ(errors.Messages().size(), 32U) << "a flood is bounded";
    }
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(CPLGetLastErrorType(), CE_None) << "the next call starts clean";
}

TEST(GdalErrorScope, TheInnermostScopeOfTheThreadGetsTheMessage) {
    const GdalErrorScope outer;
    {
        const GdalErrorScope inner;
        Report("inner");
        EXPECT_THAT(inner.Messages(), ElementsAre("inner"));
    }
    EXPECT_THAT(outer.Messages(), IsEmpty());
    std::thread([] {
        const GdalErrorScope other;
        Report("other thread");
        EXPECT_THAT(other.Messages(), ElementsAre("other thread"));
    }).join();
    Report("outer");
    EXPECT_THAT(outer.Messages(), ElementsAre("outer"));
}

}  // namespace
}  // namespace orvex
