#include "tools/rules/Rules.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/testing/TemporaryFolder.h"

namespace orvex::rules {
namespace {

using ::testing::ElementsAre;

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

TEST(Rules, WhatBreaksThemIsFound) {
    EXPECT_THAT(
        Findings({
            {L"las/LasFile.cpp",
             "#include <string>\n#  include <QString>\n#include \"raster/RasterInfo.h\"\n"},
            {L"raster/RasterInfo.h", "#include \"dialog/Units.h\"\n"},
            {L"dialog/Units.h", "#include \"Other.h\"\n"},
            {L"dialog/Other.h", "#include \"dialog/Units.h\"\n#include <QtCore/QObject>\n"},
            {L"host/app/Window.cpp", "#include \"orvexcommon/Exports.h\"\n#include \"crs/Crs.h\"\n"},
            {L"host/app/Report.cpp", "#include \"report/FileReport.h\"\n"},
            {L"report/FileReport.h", "#include \"dialog/Other.h\"\n"},
            {L"host/inspect/Report.cpp", "#include \"crs/Crs.h\"\n#include \"settings/Store.h\"\n"},
            {L"host/objects/Objects.cpp", "#include \"settings/Store.h\"\n#include \"entry/Module.h\"\n"},
            {L"dialog/Seam.cpp", "/* a\n comment */\n#ifdef _WIN32\n#include <Windows.h>\n#endif\n"},
            {L"dialog/Texts.cpp",
             "auto a = R\"(\n\" QSettings)\";\nQSettings settings;\nauto b = ::LSwchar(1);\nint "
             "MyLSwchar(int);\n"
             "auto d = Text(text::kTab);\nauto e = Text(58_lsid);\nauto g = Text(StringId{13558});\n"},
        }),
        ElementsAre("dialog/Seam.cpp:3: _WIN32 outside the platform seams",
                    "dialog/Seam.cpp:4: <Windows.h> outside the platform seams",
                    "dialog/Texts.cpp:3: QSettings cannot keep the types of option items",
                    "dialog/Texts.cpp:4: texts are fetched through Text(text::k...)",
                    "dialog/Texts.cpp:7: a text is named by number instead of text::k...",
                    "dialog/Texts.cpp:8: a text is named by number instead of text::k...",
                    "host/app/Report.cpp:1: the host includes what is not public: report/FileReport.h",
                    "host/app/Window.cpp:2: the host includes what is not public: crs/Crs.h",
                    "host/inspect/Report.cpp:2: the host includes what is not public: settings/Store.h",
                    "host/objects/Objects.cpp:2: the host includes what is not public: entry/Module.h",
                    "las/LasFile.cpp:2: a core file includes Qt: <QString>",
                    "las/LasFile.cpp:3: a core file includes Qt: raster/RasterInfo.h -> dialog/Units.h -> "
                    "dialog/Other.h -> <QtCore/QObject>",
                    "las/LasFile.cpp:3: a kind of data includes another: raster/RasterInfo.h",
                    "raster/RasterInfo.h:1: a core file includes Qt: dialog/Units.h -> dialog/Other.h -> "
                    "<QtCore/QObject>",
                    "report/FileReport.h:1: a core file includes Qt: dialog/Other.h -> <QtCore/QObject>"));
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
