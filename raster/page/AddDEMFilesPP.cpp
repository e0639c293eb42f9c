#include "raster/page/AddDEMFilesPP.h"

#include <algorithm>
#include <array>
#include <optional>

#include "dialog/page/OptionForm.h"
#include "support/DataKinds.h"
#include "support/LasFormat.h"
#include "support/ProjectPath.h"

namespace orvex {
namespace {

constexpr int kOpenGroup = 460;
constexpr int kOptionsGroup = 463;
constexpr int kConversionGroup = 467;
constexpr int kFolder = 469;
constexpr int kBrowse = 470;
constexpr int kInsertToken = 471;

constexpr OptionGroup kGroups[] = {
    {.id = kOpenGroup, .caption = 13467_lsid},
    {.id = kOptionsGroup, .caption = 41003_lsid},
    {.id = kConversionGroup, .caption = 41339_lsid, .takesRoom = true, .alignsCaptions = true},
};

constexpr OptionChoice kOpenModes[] = {{0, 13469_lsid, 41337_lsid, 461}, {1, 13470_lsid, 41338_lsid, 462}};

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
     .caption = 41331_lsid,
     .tooltip = 41332_lsid,
     .member = &AddFilesParams::demAppend,
     .storage = L"DEMAppendToLayers",
     .fallback = {1},
     .changesLayers = true},
    {.control = OptionControl::CheckBox,
     .id = 465,
     .group = kOptionsGroup,
     .line = 2,
     .caption = 41333_lsid,
     .tooltip = 41334_lsid,
     .member = &AddFilesParams::demIgnoreCrs,
     .storage = L"DEMIgnoreCRS",
     .fallback = {1},
     .changesLayers = true},
    {.control = OptionControl::CheckBox,
     .id = 466,
     .group = kOptionsGroup,
     .line = 3,
     .caption = 41335_lsid,
     .tooltip = 41336_lsid,
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
     .caption = 41340_lsid,
     .captionId = 468,
     .tooltip = 41341_lsid,
     .member = &AddFilesParams::demLasFolder,
     .storage = L"DEMLASFolder",
     .fallback = {0, L"<ORVEX_PROJECT_PATH>\\DEM Import"}},
    {.control = OptionControl::Button,
     .id = kBrowse,
     .group = kConversionGroup,
     .line = 2,
     .caption = 41342_lsid,
     .tooltip = 41343_lsid},
    {.control = OptionControl::Button,
     .id = kInsertToken,
     .group = kConversionGroup,
     .line = 2,
     .caption = 3259_lsid,
     .tooltip = 3210_lsid},
    {.control = OptionControl::List,
     .id = 473,
     .group = kConversionGroup,
     .line = 3,
     .caption = 41344_lsid,
     .captionId = 472,
     .tooltip = 41345_lsid,
     .member = &AddFilesParams::demLasVersion,
     .fallback = {las::kLas14},
     .choices = kVersions},
    {.control = OptionControl::List,
     .id = 475,
     .group = kConversionGroup,
     .line = 3,
     .caption = L"PDRF:",
     .captionId = 474,
     .tooltip = 41346_lsid,
     .member = &AddFilesParams::demPointFormat,
     .choicesFor = PointFormats},
    {.control = OptionControl::Number,
     .id = 477,
     .group = kConversionGroup,
     .line = 3,
     .caption = 13472_lsid,
     .captionId = 476,
     .tooltip = 41347_lsid,
     .member = &AddFilesParams::demThinning,
     .storage = L"DEMThinningFactor",
     .fallback = {kDefaultThinning},
     .minimum = kMinimumThinning,
     .maximum = kMaximumThinning,
     .digits = 9,
     .mask = 3228_lsid},
};

FileListPageDescription Describe() {
    using enum DetailsTab::Kind;
    FileListPageDescription page = DescribeRasters();
    page.listCaptionId = 450;
    page.listCaption = 41321_lsid;
    page.gridId = 459;
    page.emptyText = 41323_lsid;
    page.addFiles = {451, 13462_lsid, 41325_lsid};
    page.addFolder = {452, 13463_lsid, 41327_lsid};
    page.remove.id = 453;
    page.clear.id = 454;
    page.detailColumns.id = 455;
    page.selectAll.id = 456;
    page.refresh.id = 457;
    page.help.id = 458;
    page.helpTopic = HelpTopic::DemFiles;
    page.splitterName = "demSplitter";
    page.paneStateName = L"AddDEMFilesDetails";
    page.detailsTabs = {
        {"demOverview", 40631_lsid, Html}, {"demCrs", 40632_lsid, Html}, {"demBands", 41288_lsid, Html}};
    page.options = {kGroups, kRows};
    page.pickTitle = 3239_lsid;
    page.tooManyFiles = 3240_lsid;
    page.folderQuestion = 3241_lsid;
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
    OnClick(kBrowse, L"OnBrowseFolder", [this] { OnBrowseFolder(); });
    OnClick(kInsertToken, L"OnInsertProjectPath", [this] { OnInsertProjectPath(); });
}

// The converted files are LAS files, so it is the LAS layers that they can be appended to.
void AddDEMFilesPP::RowsChanged() {
    EditModel().Change([this](std::vector<RasterRow>& rows) {
        AssignLayers(rows, Params().existingLasLayers, {.append = Chosen().demAppend}, Chosen().demIgnoreCrs,
                     L"DEM LAS Layer_");
    });
}

void AddDEMFilesPP::OnBrowseFolder() {
    if (const std::optional<std::wstring> folder = Services().pickers.PickFolder(Text(3203_lsid))) {
        Form().TypeText(kFolder, WithTrailingSeparator(*folder));
    }
}

void AddDEMFilesPP::OnInsertProjectPath() {
    try {
        Form().TypeText(kFolder, InsertProjectPathToken(Chosen().demLasFolder));
    } catch (...) {
        ShowMessage(Text(3242_lsid), 3243_lsid, PromptIcon::Error);
    }
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
    ForEachDescribed([&record](const RasterRow& row) {
        record.demFiles[FolderOf(row.path)].push_back(FileNameOf(row.path));
        record.demFileLayers[row.path] = row.place.layer;
    });
    return true;
}

}  // namespace orvex
