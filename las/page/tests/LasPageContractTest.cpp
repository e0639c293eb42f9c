#include "dialog/testing/PageContract.h"
#include "las/page/AddLASFilesPP.h"
#include "las/testing/LasBuilder.h"

namespace orvex {
namespace {

using namespace std::string_literals;
using testing::FilePage;
using testing::PageContract;

std::vector<testing::OptionCase> LasOptions() {
    using P = AddFilesParams;
    return {
        {L"optAddLASOpenSetting", "\1\0\0\0"s, 260, "on", &P::lasOpenSetting, L"1"},
        {L"optAddLASLoadSetting", "\1\0\0\0"s, 263, "on", &P::lasLoadSetting, L"1"},
        {L"optAddLASAppend", "\0"s, 280, "off", &P::lasAppend, L"0"},
        {L"", {}, 281, "on", &P::lasIgnoreIncompatibleCrs, L"1"},
        {L"", {}, 283, "on", &P::lasLoadCorruptFiles, L"1"},
        {L"optAddLASThinning", "\x63\0\0\0"s, 267, "99", &P::lasThinning, L"99"},
        {L"optConvertExistingQVRToOrvexLAS", "\1"s, 284, "on", &P::convertExistingQvr, L"1"},
        {L"optPyramidType", "\0\0\0\0"s, 270, "on", &P::lasPyramidType, L"0"},
        {L"optPyramidType", "\2\0\0\0"s, 269, "on", &P::lasPyramidType, L"2"},
        {L"optOrvexLasBackupOption", "\0\0\0\0"s, 376, "on", &P::orvexLasBackupOption, L"0"},
        {L"optOrvexLasBackupOption", "\2\0\0\0"s, 378, "on", &P::orvexLasBackupOption, L"2"},
        {L"optReCreateOrvexLASOption", "\1"s, 417, "on", &P::reCreateOrvexLas, L"1"},
    };
}

std::vector<testing::OptionCase> ReplacedLasOptions() {
    using P = AddFilesParams;
    return {
        {L"optAddLASOpenSetting", {}, 259, "on", &P::lasOpenSetting, L"0"},
        {L"optAddLASAppend", {}, 280, "on", &P::lasAppend, L"1"},
        {L"optAddLASThinning", {}, 267, "16", &P::lasThinning, L"16"},
        {L"optAddLASThinning", "\x88\x13\0\0"s, 267, "256", &P::lasThinning, L"256"},
        {L"optAddLASThinning", "\xfd\xff\xff\xff"s, 267, "2", &P::lasThinning, L"2"},
        {L"optPyramidType", "\7\0\0\0"s, 268, "on", &P::lasPyramidType, L"1"},
        {L"optAddLASPyramid", {}, 268, "on", &P::lasPyramidType, L"1"},
        // The older on/off value decides while no type is stored.
        {L"optAddLASPyramid", "\0"s, 270, "on", &P::lasPyramidType, L"0"},
        {L"optOrvexLasBackupOption", "\xff\xff\xff\xff"s, 377, "on", &P::orvexLasBackupOption, L"1"},
    };
}

PageContract LasContract() {
    using P = AddFilesParams;
    PageContract page{};
    page.name = "Las";
    page.make = testing::MakePage<AddLASFilesPP>;
    page.grid = 251;
    page.addFiles = 253;
    page.addFolder = 252;
    page.remove = 254;
    page.clear = 255;
    page.detailColumns = 248;
    page.refresh = 249;
    page.help = 250;
    page.helpTopic = HelpTopic::LasFiles;
    page.helpExplainsControls = true;
    page.emptyText = text::kLasEmptyGrid;
    page.overview = "detailsOverview";
    page.nothingSelected = text::kLasDetailsNoSelection;
    page.paneState = L"AddLASFilesDetails";
    page.tooManyFiles = text::kLasTooManySelected;
    page.pickFailed = text::kPickerOutOfMemory;
    page.folderQuestion = text::kLasSubfoldersQuestion;
    page.nothingFound = text::kLasFolderEmpty;
    page.nothingFoundIcon = PromptIcon::Information;
    page.ignored = text::kLasOthersLeftOut;
    page.reading = text::kLasReadingProgress;
    page.writeGood = [](const testing::TemporaryFolder& folder, const std::wstring& name) {
        return folder.Write(name + L".las",
                            testing::LasBuilder(12, 1).AddPoints(9).ProjectedEpsg(25832).Build());
    };
    page.writeBad = [](const testing::TemporaryFolder& folder, const std::wstring& name) {
        return folder.Write(name + L".las", "no LAS file");
    };
    page.extension = L".las";
    page.otherKind = L".tif";
    page.asksAtTen = true;
    page.detailColumn = "software";
    page.detailColumnsOn = {L"optAddLASDetailCols", "\1"s, 0, {}};
    page.files = &P::lasFiles;
    page.existingFiles = &P::existingLasFiles;
    page.detailsPerFile = 1;
    page.options = LasOptions();
    page.replaced = ReplacedLasOptions();
    page.thinning = 267;
    page.thinningMember = &P::lasThinning;
    page.thinningTexts = {{"2", 2},      {"16", 16},          {" 8", 8},           {"+4", 4},
                          {"12abc", 12}, {"256", 256},        {"257", 256},        {"9999999999", 256},
                          {"1", {}},     {"00000000165", 16}, {"00000000002", {}}, {"0", {}},
                          {"", {}},      {"abc", {}},         {"-5", {}}};
    return page;
}

INSTANTIATE_TEST_SUITE_P(LasPage, FilePage, ::testing::Values(LasContract()),
                         ::testing::PrintToStringParamName());

}  // namespace
}  // namespace orvex
