#include "raster/page/AddDEMFilesPP.h"

#include <algorithm>
#include <array>

#include "support/DataKinds.h"
#include "support/LasFormat.h"

namespace orvex {
namespace {

constexpr int kOpenGroup = 460;
constexpr int kOptionsGroup = 463;
constexpr int kConversionGroup = 467;
constexpr int kFolder = 469;
constexpr int kBrowse = 470;
constexpr int kInsertToken = 471;

constexpr OptionGroup kGroups[] = {
    {.id = kOpenGroup, .caption = text::kOpenSetting},
    {.id = kOptionsGroup, .caption = text::kOptions},
    {.id = kConversionGroup, .caption = text::kDemConversionGroup, .takesRoom = true, .alignsCaptions = true},
};

constexpr OptionChoice kOpenModes[] = {{0, text::kOpenReadOnly, text::kDemReadOnlyTooltip, 461},
                                       {1, text::kOpenReadWrite, text::kDemReadWriteTooltip, 462}};

/// The versions under their codes, which are also what the host is told.
constexpr auto kVersions = [] {
    std::array<OptionChoice, las::kVersions.size()> choices{};
    std::ranges::transform(las::kVersions, choices.begin(), [](const las::VersionFacts& version) {
        return OptionChoice{version.code, version.name};
    });
    return choices;
}();

constexpr OptionChoice kPointFormats[] = {{0, L"0"}, {1, L"1"}, {2, L"2"}, {3, L"3"}, {4, L"4"},
                                          {5, L"5"}, {6, L"6"}, {7, L"7"}, {8, L"8"}};

/// The point record formats that the chosen version has.
std::span<const OptionChoice> PointFormats(const AddFilesParams& chosen) {
    const las::VersionFacts* version = las::FindVersion(chosen.demLasVersion);
    const int last = version == nullptr ? 0 : version->lastDemFormat;
    return std::span(kPointFormats).first(static_cast<std::size_t>(last) + 1);
}

constexpr OptionRow kRows[] = {
    {.control = OptionControl::DetailColumns,
     .member = &OptionValues::detailColumns,
     .storage = L"DEMShowAdvCols",
     .fallback = {1}},
    {.control = OptionControl::CheckBox,
     .id = 464,
     .group = kOptionsGroup,
     .line = 1,
     .caption = text::kDemAppendToLayers,
     .tooltip = text::kDemAppendTooltip,
     .member = &AddFilesParams::demAppend,
     .storage = L"DEMAppendToLayers",
     .fallback = {1},
     .changesLayers = true},
    {.control = OptionControl::CheckBox,
     .id = 465,
     .group = kOptionsGroup,
     .line = 2,
     .caption = text::kDemIgnoreCrs,
     .tooltip = text::kDemIgnoreCrsTooltip,
     .member = &AddFilesParams::demIgnoreCrs,
     .storage = L"DEMIgnoreCRS",
     .fallback = {1},
     .changesLayers = true},
    {.control = OptionControl::CheckBox,
     .id = 466,
     .group = kOptionsGroup,
     .line = 3,
     .caption = text::kDemBuildPyramids,
     .tooltip = text::kDemBuildPyramidsTooltip,
     .member = &AddFilesParams::demPyramid,
     .storage = L"DEMAutoPyramid",
     .fallback = {1}},
    {.control = OptionControl::Radios,
     .group = kOpenGroup,
     .member = &AddFilesParams::demOpenReadWrite,
     .storage = L"DEMOpenReadWriteSetting",
     .fallback = {1},
     .choices = kOpenModes},
    {.control = OptionControl::Text,
     .id = kFolder,
     .group = kConversionGroup,
     .line = 1,
     .caption = text::kDemOutputFolder,
     .captionId = 468,
     .tooltip = text::kDemOutputFolderTooltip,
     .member = &AddFilesParams::demLasFolder,
     .storage = L"DEMLASFolder",
     .fallback = {0, L"<ORVEX_PROJECT_PATH>\\DEM Import"}},
    {.control = OptionControl::Button,
     .id = kBrowse,
     .group = kConversionGroup,
     .line = 2,
     .caption = text::kDemBrowse,
     .tooltip = text::kDemBrowseTooltip},
    {.control = OptionControl::Button,
     .id = kInsertToken,
     .group = kConversionGroup,
     .line = 2,
     .caption = text::kInsertProjectPath,
     .tooltip = text::kInsertProjectPathTooltip},
    {.control = OptionControl::List,
     .id = 473,
     .group = kConversionGroup,
     .line = 3,
     .caption = text::kDemLasVersion,
     .captionId = 472,
     .tooltip = text::kDemLasVersionTooltip,
     .member = &AddFilesParams::demLasVersion,
     .fallback = {las::kLas14},
     .choices = kVersions},
    {.control = OptionControl::List,
     .id = 475,
     .group = kConversionGroup,
     .line = 3,
     .caption = L"PDRF:",
     .captionId = 474,
     .tooltip = text::kDemPointFormatTooltip,
     .member = &AddFilesParams::demPointFormat,
     .choicesFor = PointFormats},
    {.control = OptionControl::Number,
     .id = 477,
     .group = kConversionGroup,
     .line = 3,
     .caption = text::kThinning,
     .captionId = 476,
     .tooltip = text::kDemThinningTooltip,
     .member = &AddFilesParams::demThinning,
     .storage = L"DEMThinningFactor",
     .fallback = {kDefaultThinning},
     .minimum = kMinimumThinning,
     .maximum = kMaximumThinning,
     .digits = 9,
     .mask = text::kDemThinningMask},
};

FileListPageDescription Describe() {
    using enum DetailsTab::Kind;
    FileListPageDescription page = DescribeRasters();
    page.listCaptionId = 450;
    page.listCaption = text::kDemSelectedFiles;
    page.gridId = 459;
    page.emptyText = text::kDemEmptyGrid;
    page.addFiles = {451, text::kAddFiles, text::kDemAddTooltip};
    page.addFolder = {452, text::kAddFolder, text::kDemAddFolderTooltip};
    page.remove.id = 453;
    page.clear.id = 454;
    page.detailColumns.id = 455;
    page.selectAll.id = 456;
    page.refresh.id = 457;
    page.help.id = 458;
    page.helpTopic = HelpTopic::DemFiles;
    page.splitterName = "demSplitter";
    page.paneStateName = L"AddDEMFilesDetails";
    page.columnStateName = L"AddDEMFilesColumns";
    page.kind = DataKindName(DataKind::Dem);
    page.folderName = L"AddDEMFilesFolder";
    page.detailsTabs = {{"demOverview", text::kDetailsOverviewTab, Html},
                        {"demCrs", text::kDetailsCrsTab, Html},
                        {"demBands", text::kRasterBandsTab, Html}};
    page.options = {kGroups, kRows};
    page.pickTitle = text::kDemPickerTitle;
    page.tooManyFiles = text::kDemTooManySelected;
    page.folderQuestion = text::kDemSubfoldersQuestion;
    page.extensions = NamedExtensions(DataKind::Dem);
    return page;
}

/// Everything about the page but its columns.
const FileListPageDescription& DemPage() {
    static const FileListPageDescription page = Describe();
    return page;
}

}  // namespace

AddDEMFilesPP::AddDEMFilesPP(const PageContext& context, QWidget* parent)
    : RasterListPage(context, DemPage(), RasterUse::Dem, parent) {
    Start(EditModel());
    ConnectFolder(
        {kFolder, kBrowse, kInsertToken, text::kDemOutputFolderTitle, &AddFilesParams::demLasFolder});
}

// The converted files are LAS files, so it is the LAS layers that they can be appended to.
void AddDEMFilesPP::RowsChanged() {
    EditModel().Change([this](std::vector<RasterRow>& rows) {
        AssignLayers(rows, Params().existingLasLayers, {.append = Chosen().demAppend}, Chosen().demIgnoreCrs,
                     L"DEM LAS Layer_");
    });
}

/// Without rows nothing is saved, and the record stays as the host gave it.
bool AddDEMFilesPP::Store() {
    if (Model().Count() == 0) {
        return true;
    }
    if (!SaveOptions()) {
        return false;
    }
    WriteOptions();
    AddFilesParams& record = Params();
    record.demExtraValues = {};
    StoreFiles(record.demFiles, record.demFileLayers);
    return true;
}

}  // namespace orvex
