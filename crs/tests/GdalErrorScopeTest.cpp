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

TEST(GdalErrorScope, CapturesWhatWouldReachTheConsole) {
    ::testing::internal::CaptureStderr();
    {
        const GdalErrorScope errors;
        EXPECT_EQ(errors.Text(), "");
        CPLError(CE_Warning, CPLE_AppDefined, "a %s", "warning");
        EXPECT_FALSE(errors.HasError());
        CPLError(CE_Failure, CPLE_AppDefined, "a failure");
        EXPECT_TRUE(errors.HasError());
        EXPECT_EQ(errors.Text(), "a warning; a failure");
        OGRSpatialReference crs;
        crs.importFromWkt("PROJCS[\"broken\"");
        EXPECT_GT(errors.Messages().size(), 2U) << "PROJ's own errors";
    }
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(CPLGetLastErrorType(), CE_None) << "the next call starts clean";
}

TEST(GdalErrorScope, TheInnermostScopeOfTheThreadGetsTheMessage) {
    const GdalErrorScope outer;
    {
        const GdalErrorScope inner;
        CPLError(CE_Failure, CPLE_AppDefined, "inner");
        EXPECT_THAT(inner.Messages(), ElementsAre("inner"));
    }
    EXPECT_THAT(outer.Messages(), IsEmpty());
    std::thread([] {
        const GdalErrorScope other;
        CPLError(CE_Failure, CPLE_AppDefined, "other thread");
        EXPECT_THAT(other.Messages(), ElementsAre("other thread"));
    }).join();
    CPLError(CE_Failure, CPLE_AppDefined, "outer");
    EXPECT_THAT(outer.Messages(), ElementsAre("outer"));
}

TEST(GdalErrorScope, AFloodOfMessagesIsBounded) {
    const GdalErrorScope errors;
    for (int i = 0; i < 10000; ++i) {
        CPLError(CE_Warning, CPLE_AppDefined, "message %d", i);
    }
    EXPECT_EQ(errors.Messages().size(), 32U);
    EXPECT_EQ(errors.Messages().back(), "message 31");
}

}  // namespace
}  // namespace orvex
