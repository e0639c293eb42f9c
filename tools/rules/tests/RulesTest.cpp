#include "tools/rules/Rules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/testing/TemporaryFolder.h"

namespace orvex::rules {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct File {
    const wchar_t* name;
    const char* bytes;
};

std::vector<std::string> Findings(std::initializer_list<File> files) {
    const orvex::testing::TemporaryFolder folder;
    for (const File& file : files) {
        folder.Write(file.name, file.bytes);
    }
    std::vector<std::string> lines;
    for (const Violation& violation : CheckAll(ReadTree(folder.Path()))) {
        lines.push_back(violation.file + ":" + std::to_string(violation.line) + ": " + violation.what);
    }
    return lines;
}

TEST(Rules, ATreeThatKeepsThemIsClean) {
    EXPECT_THAT(Findings({
                    {L"las/LasFile.cpp",
                     "#include \"las/LasFile.h\"\n#include <vector>\n// QSettings, LSwchar(1), _WIN32\n"},
                    {L"las/LasFile.h", "#pragma once\n#include \"orvexcommon/Exports.h\"\n"},
                    {L"las/page/AddLASFilesPP.h", "#include <QDialog>\n#include \"las/LasFile.h\"\n"},
                    {L"las/tests/LasFilesTest.cpp", "#include <QSignalSpy>\n"},
                    {L"include/orvexcommon/Exports.h", "#if defined(_WIN32)\n#endif\n"},
                    {L"support/MappedFile_win.cpp", "#include <windows.h>\n"},
                    {L"las/Pages_win.cpp", "#include <windows.h>\n#ifdef _WIN32\n#endif\n"},
                    {L"dialog/AddFilesDlg.cpp",
                     "const char* text = \"QSettings _WIN32 LSwchar(\";\nint big = 1'000'000;\n"},
                    {L"host/strings/StringLibrary.cpp", "const wchar_t* LSwchar(unsigned id);\n"},
                    {L"host/inspect/main.cpp", "int main() {}\n"},
                    {L"build/dev/Moc.cpp", "QSettings all;\n"},
                    {L".git/Config.cpp", "QSettings all;\n"},
                }),
                IsEmpty());
}

TEST(Rules, QtInACoreFileIsFoundAlsoThroughHeaders) {
    EXPECT_THAT(
        Findings({
            {L"las/LasFile.cpp", "#include <string>\n#  include <QString>\n"},
            {L"raster/RasterText.cpp", "#include \"raster/RasterInfo.h\"\n"},
            {L"raster/RasterInfo.h", "#include \"dialog/Units.h\"\n"},
            {L"dialog/Units.h", "#include \"Other.h\"\n"},
            {L"dialog/Other.h", "#include \"dialog/Units.h\"\n#include <QtCore/QObject>\n"},
            {L"settings/Pages.h", "#include <QList>\n"},
        }),
        ElementsAre("las/LasFile.cpp:2: a core file includes Qt: <QString>",
                    "raster/RasterInfo.h:1: a core file includes Qt: dialog/Units.h -> dialog/Other.h -> "
                    "<QtCore/QObject>",
                    "raster/RasterText.cpp:1: a core file includes Qt: raster/RasterInfo.h -> dialog/Units.h "
                    "-> dialog/Other.h -> <QtCore/QObject>",
                    "settings/Pages.h:1: a core file includes Qt: <QList>"));
}

TEST(Rules, AKindThatIncludesAnotherIsFound) {
    EXPECT_THAT(
        Findings({
            {L"las/LasCrs.cpp", "#include \"crs/CrsCache.h\"\n#include \"raster/RasterUnit.h\"\n"},
            {L"photo/page/AddPhotoFilesPP.cpp", "#include \"photo/Photo.h\"\n#include \"las/LasCrs.h\"\n"},
            {L"host/inspect/Report.cpp", "#include \"las/LasCrs.h\"\n"},
        }),
        ElementsAre("las/LasCrs.cpp:2: a kind of data includes another: raster/RasterUnit.h",
                    "photo/page/AddPhotoFilesPP.cpp:2: a kind of data includes another: las/LasCrs.h"));
}

TEST(Rules, AHostThatIncludesWhatIsNotPublicIsFound) {
    EXPECT_THAT(
        Findings({
            {L"host/app/Window.cpp",
             "#include \"orvexcommon/Exports.h\"\n#include \"support/Text.h\"\n#include \"raster/Bands.h\"\n"
             "#include \"settings/Store.h\"\n"},
            {L"host/dem/Dem.cpp", "#include \"raster/Bands.h\"\n#include \"dialog/Units.h\"\n"},
            {L"host/inspect/Report.cpp", "#include \"las/LasFile.h\"\n#include \"settings/Store.h\"\n"},
            {L"host/objects/Objects.cpp", "#include \"settings/Store.h\"\n#include \"entry/Module.h\"\n"},
        }),
        ElementsAre("host/app/Window.cpp:3: the host includes what is not public: raster/Bands.h",
                    "host/app/Window.cpp:4: the host includes what is not public: settings/Store.h",
                    "host/dem/Dem.cpp:2: the host includes what is not public: dialog/Units.h",
                    "host/inspect/Report.cpp:2: the host includes what is not public: settings/Store.h",
                    "host/objects/Objects.cpp:2: the host includes what is not public: entry/Module.h"));
}

TEST(Rules, WindowsOutsideTheSeamsIsFound) {
    EXPECT_THAT(Findings({
                    {L"dialog/Pages.cpp", "/* a\n comment */\n#ifdef _WIN32\n#include <Windows.h>\n#endif\n"},
                    {L"las/LasFile.h", "int x = L'\"'; // \"\n#if defined(WIN32)\n"},
                    {L"host/app/Help.cpp", "#include <shlobj_core.h>\n"},
                }),
                ElementsAre("dialog/Pages.cpp:3: _WIN32 outside the platform seams",
                            "dialog/Pages.cpp:4: <Windows.h> outside the platform seams",
                            "host/app/Help.cpp:1: <shlobj_core.h> outside the platform seams",
                            "las/LasFile.h:2: WIN32 outside the platform seams"));
}

TEST(Rules, SettingsAndTextsPastTheirSeamsAreFound) {
    EXPECT_THAT(Findings({
                    {L"dialog/Pages.cpp",
                     "auto a = R\"(\n\" QSettings)\";\nQSettings settings;\nauto b = LSwchar(1);\n"},
                    {L"support/Names.cpp", "auto c = ::LSIDwchar(2);\nint MyLSwchar(int);\n"},
                    {L"las/LasFile.cpp",
                     "auto d = Text(text::kLasTab);\nauto e = Text(58_lsid);\nStringId f{};\n"
                     "auto g = Text(StringId{13558});\nauto h = StringId{caption7};\n"},
                }),
                ElementsAre("dialog/Pages.cpp:3: QSettings cannot keep the types of option items",
                            "dialog/Pages.cpp:4: texts are fetched through Text(text::k...)",
                            "las/LasFile.cpp:2: a text is named by number instead of text::k...",
                            "las/LasFile.cpp:4: a text is named by number instead of text::k...",
                            "support/Names.cpp:1: texts are fetched through Text(text::k...)"));
}

TEST(Rules, WrongLetterCaseIsFound) {
    EXPECT_THAT(
        Findings({
            {L"las/LASFile.h", ""},
            {L"las/LasFile.cpp",
             "#include \"las/LasFile.h\"\n#include \"LASFILE.h\"\n#include \"gone/Other.h\"\n"},
            {L"include/orvexcommon/Exports.h", ""},
            {L"dialog/lower.cpp", "#include \"OrvexCommon/exports.h\"\n"},
            {L"dialog/Twin.png", ""},
            {L"dialog/twin.png", ""},
            {L"Docs/readme.txt", ""},
        }),
        ElementsAre("Docs/readme.txt:0: a folder name has upper-case letters",
                    "dialog/lower.cpp:0: the name of a C++ file is not PascalCase",
                    "dialog/lower.cpp:1: \"OrvexCommon/exports.h\" is spelled include/orvexcommon/Exports.h",
                    "dialog/twin.png:0: differs from dialog/Twin.png in letter case only",
                    "las/LasFile.cpp:0: header and source are spelled differently: las/LASFile",
                    "las/LasFile.cpp:1: \"las/LasFile.h\" is spelled las/LASFile.h",
                    "las/LasFile.cpp:2: \"LASFILE.h\" is spelled las/LASFile.h"));
}

}  // namespace
}  // namespace orvex::rules
