#include "host/app/RecordText.h"

#include <gtest/gtest.h>

#include "host/app/Project.h"
#include "host/app/tests/FakeLasFileInfo.h"
#include "orvexcommon/AddFilesParams.h"
#include "support/Text.h"

namespace orvex {
namespace {

using testing::FakeLasFileInfo;

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

TEST(RecordText, SaysThatThereIsNothing) {
    EXPECT_EQ(RecordText(AddFilesParams()), Text(40859_lsid) + L"\n");
}

}  // namespace
}  // namespace orvex
