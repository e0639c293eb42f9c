#include "host/app/SampleProject.h"

#include <gtest/gtest.h>

#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

namespace fs = std::filesystem;

TEST(SampleProject, OfAnEarlierVersionGetsWhatItLacksAndLosesNothing) {
    const testing::TemporaryFolder folder;
    folder.Write(L"Größe 日本/data/kept.las", "what was there");
    folder.Write(L"Größe 日本/data/rasters.new/half.tif", "of an interrupted run");
    const fs::path project = folder.Path() / ToPath(L"Größe 日本");
    ASSERT_EQ(EnsureSampleProject(project), project);
    const fs::path data = SampleData(project);
    EXPECT_EQ(testing::ReadFile(FromPath(data / "kept.las")), "what was there");
    EXPECT_FALSE(fs::exists(data / "wgs84.las")) << "mixed with what was there";
    EXPECT_TRUE(fs::exists(data / "elevation" / "terrain.bil"));
    EXPECT_FALSE(fs::exists(data / "rasters" / "half.tif"));
    EXPECT_FALSE(fs::exists(data / "rasters.new"));

    fs::remove(data / "elevation" / "terrain.bil");
    EnsureSampleProject(project);
    EXPECT_FALSE(fs::exists(data / "elevation" / "terrain.bil")) << "made twice";
}

}  // namespace
}  // namespace orvex
