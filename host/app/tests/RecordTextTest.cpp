#include "host/app/RecordText.h"

#include <gtest/gtest.h>

#include "host/app/RecordFiles.h"
#include "host/app/tests/FakeLasFileInfo.h"
#include "host/app/tests/FakeRasterFileInfo.h"
#include "orvexcommon/AddFilesParams.h"
#include "support/Text.h"

namespace orvex {
namespace {

using testing::FakeLasFileInfo;
using testing::FakeRasterFileInfo;

TEST(RecordText, TellsFilesLayersAndOptions) {
    AddFilesParams record;
    record.lasFiles = {{NativePath(L"/data/a"), {L"2.las", L"1.laz"}},
                       {NativePath(L"/data/b"), {L"unknown.las"}}};
    auto* first = new FakeLasFileInfo;
    first->name = NativePath(L"/data/a/2.las");
    auto* second = new FakeLasFileInfo;
    second->name = NativePath(L"/data/a/1.las");
    second->readOnly = false;
    record.lasFileDetails = {{NativePath(L"/data/a/2.las"), first}, {NativePath(L"/data/a/1.laz"), second}};
    record.existingLasLayers = {{L"old", L""}};
    record.lasFileLayers = {{NativePath(L"/data/a/2.las"), L"old"},
                            {NativePath(L"/data/a/1.laz"), L"new"},
                            {NativePath(L"/data/b/unknown.las"), L"new"}};
    record.lasThinning = 16;
    record.lasPyramidType = 2;
    const std::wstring text = RecordText(record);
    DeleteDetails(record);

    // Files stand in grid order below their folder.
    const std::size_t folderA = text.find(NativePath(L"/data/a\n"));
    const std::size_t two = text.find(L"  2.las  ");
    const std::size_t one = text.find(L"  1.laz  ");
    const std::size_t folderB = text.find(NativePath(L"/data/b\n"));
    ASSERT_NE(folderB, std::wstring::npos);
    EXPECT_LT(folderA, two);
    EXPECT_LT(two, one);
    EXPECT_LT(one, folderB);
    EXPECT_NE(text.find(L"(1.las)"), std::wstring::npos) << "the decompressed file";
    EXPECT_NE(text.find(L"  unknown.las\n"), std::wstring::npos);
    EXPECT_NE(text.find(L": 16\n"), std::wstring::npos);
    EXPECT_NE(text.find(L": QVR\n"), std::wstring::npos);
    EXPECT_EQ(text.find(L'#'), std::wstring::npos) << "a text is missing";
}

TEST(RecordText, TellsRastersAndElevationFiles) {
    AddFilesParams record;
    record.rasterFiles = {{NativePath(L"/r"), {L"b.tif", L"a.png", L"broken.tif"}}};
    auto* placed = new FakeRasterFileInfo;
    placed->properties.width = 4000;
    placed->properties.height = 3000;
    placed->properties.bands = 3;
    placed->properties.driver = L"GTiff";
    placed->properties.extent = {{0, 0, 1, 1}};
    placed->bigTiff = true;
    auto* nowhere = new FakeRasterFileInfo;
    nowhere->properties.driver = L"PNG";
    record.rasterFileDetails = {{NativePath(L"/r/b.tif"), placed}, {NativePath(L"/r/a.png"), nowhere}};
    record.rasterFileLayers = {{NativePath(L"/r/b.tif"), L"Raster Layer_1"}};
    record.demFiles = {{NativePath(L"/d"), {L"terrain.asc"}}};
    record.demFileLayers = {{NativePath(L"/d/terrain.asc"), L"old"}};
    record.existingLasLayers = {{L"old", L""}};
    record.demLasVersion = 3;
    record.demThinning = 12;
    record.demLasFolder = L"<ORVEX_PROJECT_PATH>\\DEM Import";
    record.demPyramid = true;
    const std::wstring text = RecordText(record);
    DeleteDetails(record);
    for (const wchar_t* part :
         {L"  b.tif  GTiff (BigTIFF), 4000 x 3000", L"  a.png  PNG, ", L"  broken.tif\n", L"Raster Layer_1",
          L"  terrain.asc\n", L"  old: ", L": 12\n", L": <ORVEX_PROJECT_PATH>\\DEM Import\n"}) {
        EXPECT_NE(text.find(part), std::wstring::npos) << ToUtf8(part) << "\n" << ToUtf8(text);
    }
    EXPECT_NE(text.find(Text(text::kRecordPyramidNotBuilt)), std::wstring::npos)
        << "what the host does not do goes unsaid";
    EXPECT_EQ(text.find(L'#'), std::wstring::npos) << "a text is missing";
}

TEST(RecordText, SaysThatThereIsNothing) {
    EXPECT_EQ(RecordText(AddFilesParams()), Text(text::kRecordEmpty) + L"\n");
}

}  // namespace
}  // namespace orvex
