#include "support/ProjectPath.h"

#include <gtest/gtest.h>

#include "support/Files.h"
#include "support/LDataError.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"
#include "support/testing/TestSystem.h"

namespace orvex {
namespace {

TEST(ProjectPath, TheTokenTakesThePlaceOfTheDriveAndStandsOnce) {
    const struct {
        const wchar_t* text;
        const wchar_t* wanted;
    } cases[] = {
        {L"C:\\Data\\DEM", L"<ORVEX_PROJECT_PATH>\\Data\\DEM"},
        {L"Exports", L"<ORVEX_PROJECT_PATH>Exports"},
        {L"/srv/dem", L"<ORVEX_PROJECT_PATH>/srv/dem"},
        {L"a:b:c", L"<ORVEX_PROJECT_PATH>b:c"},
        {L"<ORVEX_PROJECT_PATH>\\DEM Import", L"<ORVEX_PROJECT_PATH>\\DEM Import"},
        {L"D:\\x<ORVEX_PROJECT_PATH>", L"D:\\x<ORVEX_PROJECT_PATH>"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(InsertProjectPathToken(c.text), c.wanted);
        EXPECT_EQ(InsertProjectPathToken(InsertProjectPathToken(c.text)), c.wanted) << "inserted twice";
    }
}

TEST(ProjectPath, ResolvesToOneSeparatorAtTheSeam) {
    const struct {
        const wchar_t* text;
        const wchar_t* folder;
        const wchar_t* wanted;
    } cases[] = {
        {L"<ORVEX_PROJECT_PATH>\\DEM Import", L"/home/me/project/", L"/home/me/project/DEM Import"},
        {L"<ORVEX_PROJECT_PATH>\\DEM Import", L"/home/me/project", L"/home/me/project/DEM Import"},
        {L"<ORVEX_PROJECT_PATH>Exports", L"/home/me/project", L"/home/me/project/Exports"},
        {L"<ORVEX_PROJECT_PATH>/\\a\\b/", L"/p/", L"/p/a/b/"},
        {L"<ORVEX_PROJECT_PATH>", L"/p", L"/p"},
        {L"<ORVEX_PROJECT_PATH>\\", L"/", L"/"},
        {L"/elsewhere", L"", L"/elsewhere"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ResolveProjectPath(c.text, c.folder), NativePath(c.wanted)) << ToUtf8(c.text);
    }
}

TEST(ProjectPath, VariablesAreReplacedByTheirValues) {
    const testing::Variable data(L"ORVEX_TEST_DATA", L"/srv/data");
    const struct {
        const wchar_t* text;
        const wchar_t* wanted;
    } cases[] = {
        {L"%ORVEX_TEST_DATA%/dwg", L"/srv/data/dwg"},
        {L"$ORVEX_TEST_DATA/dwg", L"/srv/data/dwg"},
        {L"${ORVEX_TEST_DATA}2/dwg", L"/srv/data2/dwg"},
        {L"<ORVEX_PROJECT_PATH>%ORVEX_TEST_DATA%", L"/p/srv/data"},
        {L"/100%/of%them", L"/100%/of%them"},
        {L"%ORVEX_TEST_NONE%$ORVEX_TEST_NONE${ORVEX_TEST_DATA",
         L"%ORVEX_TEST_NONE%$ORVEX_TEST_NONE${ORVEX_TEST_DATA"},
        {L"/a$", L"/a$"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(ResolveProjectPath(c.text, L"/p"), NativePath(c.wanted)) << ToUtf8(c.text);
    }
}

TEST(ProjectPath, AFolderForFilesIsMadeOrRefused) {
    const testing::TemporaryFolder folder;
    const std::wstring project = folder.Name({});
    const std::wstring made = MakeWritableFolder(L"<ORVEX_PROJECT_PATH>\\DWG Import\\deep", project);
    EXPECT_EQ(made, NativePath(folder.Name(L"DWG Import/deep")));
    EXPECT_TRUE(FolderExists(made));
    EXPECT_EQ(MakeWritableFolder(made, {}), made) << "there already";
    const std::wstring file = folder.Write(L"file", "x");
    for (const std::wstring& text :
         {std::wstring(), std::wstring(L"out"), std::wstring(L"<ORVEX_PROJECT_PATH>x"),
          L"x" + std::wstring(kProjectPathToken), file, file + L"/below"}) {
        EXPECT_EQ(MakeWritableFolder(text, {}), L"") << ToUtf8(text);
    }
}

TEST(ProjectPath, RefusesWhatNamesNoFolder) {
    for (const auto& [text, folder] : {std::pair(L"<ORVEX_PROJECT_PATH>\\DEM", L""),
                                       std::pair(L"D:\\x\\<ORVEX_PROJECT_PATH>", L"/project")}) {
        try {
            ResolveProjectPath(text, folder);
            FAIL() << ToUtf8(text);
        } catch (const LDataError& error) {
            EXPECT_NE(error.Text().find(text), std::wstring::npos) << error.what();
        }
    }
}

}  // namespace
}  // namespace orvex
