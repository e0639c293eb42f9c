// The raster page and the DEM page as file pages.
#include "dialog/testing/PageContract.h"
#include "raster/page/AddDEMFilesPP.h"
#include "raster/page/AddRasterFilesPP.h"
#include "raster/testing/GeoTiff.h"

namespace orvex {
namespace {

using namespace std::string_literals;
using testing::FilePage;
using testing::PageContract;

SettingValue Int16(int value) {
    return static_cast<std::int16_t>(value);
}

/// `first`: id of the page's first control; both have the same ones above the options.
PageContract SharedContract(int first) {
    PageContract page{};
    page.addFiles = first + 1;
    page.addFolder = first + 2;
    page.remove = first + 3;
    page.clear = first + 4;
    page.detailColumns = first + 5;
    page.selectAll = first + 6;
    page.refresh = first + 7;
    page.help = first + 8;
    page.grid = first + 9;
    page.nothingSelected = text::kDetailsNoSelection;
    page.startsInInitialFolder = true;
    page.nothingFound = text::kRasterFolderEmpty;
    page.nothingFoundIcon = PromptIcon::Error;
    page.ignored = text::kOthersLeftOut;
    page.reading = text::kRasterReadingProgress;
    page.writeGood = [](const testing::TemporaryFolder& folder, const std::wstring& name) {
        std::filesystem::create_directories(ToPath(folder.Name(name)).parent_path());
        return testing::GeoTiff().Write(folder, name + L".tif");
    };
    page.writeBad = [](const testing::TemporaryFolder& folder, const std::wstring& name) {
        return folder.Write(name + L".tif", "no raster");
    };
    page.extension = L".tif";
    page.otherKind = L".las";
    page.detailColumn = "folder";
    page.passesBadFiles = true;
    return page;
}

PageContract RasterContract() {
    using P = AddFilesParams;
    PageContract page = SharedContract(430);
    page.name = "Raster";
    page.make = testing::MakePage<AddRasterFilesPP>;
    page.helpTopic = HelpTopic::RasterFiles;
    page.emptyText = text::kRasterEmptyGrid;
    page.overview = "rasterOverview";
    page.paneState = L"AddRasterFilesDetails";
    page.pickTitle = text::kRasterPickerTitle;
    page.tooManyFiles =
        L"There are too many selected files for the allocated buffer. Select fewer files, then add more "
        L"files to the layer using the Raster Files tab.";
    page.folderQuestion = L"Would you like to add raster files from all subfolders as well?";
    page.onlyWhenNamed = L".sid";
    page.detailColumnsOn = {L"optAddRasterDetailCols", "\1"s, 0, {}};
    page.files = &P::rasterFiles;
    page.existingFiles = &P::existingRasterFiles;
    page.detailsPerFile = 1;
    page.options = {
        {L"optAddRasterAppend", "\0"s, 441, "off", &P::rasterAppend, L"0"},
        {L"optAddRasterPyramid", "\0"s, 442, "off", &P::rasterPyramid, L"0"},
    };
    page.replaced = {
        {L"optAddRasterAppend", {}, 441, "on", &P::rasterAppend, L"1"},
        {L"optAddRasterPyramid", {}, 442, "on", &P::rasterPyramid, L"1"},
    };
    return page;
}

std::vector<testing::OptionCase> DemOptions() {
    using P = AddFilesParams;
    return {
        {L"DEMAppendToLayers", Int16(0), 464, "off", &P::demAppend, L"0"},
        {L"DEMAppendToLayers", Int16(-1), 464, "on", &P::demAppend, L"1"},
        {L"DEMIgnoreCRS", Int16(0), 465, "off", &P::demIgnoreCrs, L"0"},
        {L"DEMAutoPyramid", Int16(0), 466, "off", &P::demPyramid, L"0"},
        {L"DEMOpenReadWriteSetting", Int16(0), 461, "on", &P::demOpenReadWrite, L"0"},
        {L"DEMLASFolder", SettingValue(L"<ORVEX_PROJECT_PATH>\\Out"s), 469, "<ORVEX_PROJECT_PATH>\\Out",
         &P::demLasFolder, L"<ORVEX_PROJECT_PATH>\\Out"},
        {L"DEMThinningFactor", Int16(99), 477, "99", &P::demThinning, L"99"},
        {L"", {}, 473, "1.2", &P::demLasVersion, L"3"},
        {L"", {}, 475, "8", &P::demPointFormat, L"8"},
    };
}

std::vector<testing::OptionCase> ReplacedDemOptions() {
    using P = AddFilesParams;
    return {
        {L"DEMAppendToLayers", {}, 464, "on", &P::demAppend, L"1"},
        {L"DEMAppendToLayers", SettingValue(std::int32_t{-1}), 464, "off", &P::demAppend, L"0"},
        {L"DEMIgnoreCRS", {}, 465, "on", &P::demIgnoreCrs, L"1"},
        {L"DEMAutoPyramid", {}, 466, "on", &P::demPyramid, L"1"},
        {L"DEMOpenReadWriteSetting", {}, 462, "on", &P::demOpenReadWrite, L"1"},
        {L"DEMOpenReadWriteSetting", Int16(1), 461, "on", &P::demOpenReadWrite, L"0"},
        {L"DEMLASFolder",
         {},
         469,
         "<ORVEX_PROJECT_PATH>\\DEM Import",
         &P::demLasFolder,
         L"<ORVEX_PROJECT_PATH>\\DEM Import"},
        {L"DEMLASFolder", SettingValue(L""s), 469, "", &P::demLasFolder, L""},  // an empty text is a text
        {L"DEMThinningFactor", {}, 477, "16", &P::demThinning, L"16"},
        {L"DEMThinningFactor", SettingValue(L"32"s), 477, "32", &P::demThinning, L"32"},
        {L"DEMThinningFactor", SettingValue(std::int32_t{8}), 477, "8", &P::demThinning, L"8"},
        {L"DEMThinningFactor", SettingValue(4.0), 477, "4", &P::demThinning, L"4"},
        {L"DEMThinningFactor", Int16(1), 477, "2", &P::demThinning, L"2"},
        {L"DEMThinningFactor", Int16(300), 477, "256", &P::demThinning, L"256"},
        {L"DEMThinningFactor", SettingValue(L"x"s), 477, "16", &P::demThinning, L"16"},
        // Chosen anew each time.
        {L"DEMLASVersion", Int16(3), 473, "1.4", &P::demLasVersion, L"5"},
        {L"DEMPointFormat", Int16(3), 475, "0", &P::demPointFormat, L"0"},
    };
}

PageContract DemContract() {
    using P = AddFilesParams;
    PageContract page = SharedContract(450);
    page.name = "Dem";
    page.make = testing::MakePage<AddDEMFilesPP>;
    page.helpTopic = HelpTopic::DemFiles;
    page.emptyText = text::kDemEmptyGrid;
    page.overview = "demOverview";
    page.paneState = L"AddDEMFilesDetails";
    page.pickTitle = text::kDemPickerTitle;
    page.tooManyFiles = text::kDemTooManySelected;
    page.folderQuestion = text::kDemSubfoldersQuestion;
    page.onlyWhenNamed = L".asc";
    page.detailColumnsOn = {L"DEMShowAdvCols", Int16(-1), 0, {}};
    page.files = &P::demFiles;
    page.options = DemOptions();
    page.replaced = ReplacedDemOptions();
    page.thinning = 477;
    page.thinningMember = &P::demThinning;
    page.thinningTexts = {{"2", 2},     {"16", 16},         {"256", 256}, {"257", 256}, {"1000", 256},
                          {"0010", 10}, {"999999999", 256}, {"1", {}},    {"0", {}},    {"", {}}};
    return page;
}

INSTANTIATE_TEST_SUITE_P(RasterPages, FilePage, ::testing::Values(RasterContract(), DemContract()),
                         ::testing::PrintToStringParamName());

}  // namespace
}  // namespace orvex
