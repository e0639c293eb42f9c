// A path longer than the 260 characters that older Windows programs are limited to.
#include <gtest/gtest.h>

#include <fstream>

#include "las/LasInspection.h"
#include "las/LasPointViews.h"
#include "las/testing/LasBuilder.h"
#include "support/Files.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

TEST(LongPath, IsReadMappedAndDescribed) {
    const testing::TemporaryFolder folder;
    const std::wstring deep =
        folder.Name(std::wstring(140, L'd') + L"/" + std::wstring(110, L'ü') + L"/Süd und West");
    ASSERT_EQ(CreateFolders(deep), 0);
    const std::wstring path = FromPath(ToPath(deep) / "tile.las");
    ASSERT_GT(path.size(), 260U);
    const std::string bytes = testing::LasBuilder(14, 6).AddPoints(7).Wkt("LOCAL_CS[\"site\"]").Build();
    std::ofstream(ToPath(path), std::ios::binary) << bytes;

    const LasInspection found = InspectLasFile(path);
    ASSERT_TRUE(found.loadable) << ToUtf8(found.summary);
    EXPECT_EQ(found.path, path);
    EXPECT_EQ(found.fileSize, bytes.size());
    EXPECT_GT(found.modifiedMs, 0);
    EXPECT_EQ(found.crs->name, L"site");
    EXPECT_EQ(found.file->GetCompanionStatus(), 0);
    std::ofstream(ToPath(WithExtension(path, L".qvr")), std::ios::binary) << "companion";
    for (const bool readOnly : {true, false}) {
        const auto file = LASFile::Open(path, readOnly, false);
        EXPECT_EQ(file->GetCompanionStatus(), 2);
        EXPECT_EQ(file->FileName(), path);
        ASSERT_NE(file->Points(), nullptr);
        EXPECT_EQ(file->Points()->Map(0).Count(), 7U);
    }
}

}  // namespace
}  // namespace orvex
