#include "support/ProjectPath.h"

#include <gtest/gtest.h>

#include "support/LDataError.h"
#include "support/Text.h"

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
