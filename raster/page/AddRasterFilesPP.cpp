#include "raster/page/AddRasterFilesPP.h"

#include "dialog/page/OptionForm.h"
#include "support/DataKinds.h"

namespace orvex {
namespace {

constexpr int kOptionsGroup = 440;

constexpr OptionGroup kGroups[] = {{.id = kOptionsGroup, .caption = text::kOptions, .takesRoom = true}};

constexpr OptionRow kRows[] = {
    {.control = OptionControl::CheckBox,
     .id = 441,
     .group = kOptionsGroup,
     .line = 1,
     .caption = text::kAppendToCompatibleLayers,
     .tooltip = text::kRasterAppendTooltip,
     .member = &AddFilesParams::rasterAppend,
     .storage = opt2AddRasterAppend,
     .fallback = {1},
     .changesLayers = true},
    {.control = OptionControl::CheckBox,
     .id = 442,
     .group = kOptionsGroup,
     .line = 2,
     .caption = text::kRasterBuildPyramids,
     .tooltip = text::kRasterPyramidsTooltip,
     .member = &AddFilesParams::rasterPyramid,
     .storage = opt2AddRasterPyramid,
     .fallback = {1}},
    {.control = OptionControl::DetailColumns,
     .member = &OptionValues::detailColumns,
     .storage = opt2AddRasterDetailCols},
};

FileListPageDescription Describe() {
    using enum DetailsTab::Kind;
    FileListPageDescription page = DescribeRasters();
    page.listCaptionId = 430;
    page.listCaption = text::kRasterSelectedFiles;
    page.gridId = 439;
    page.emptyText = text::kRasterEmptyGrid;
    page.addFiles = {431, text::kAddFiles, text::kRasterAddTooltip};
    page.addFolder = {432, text::kAddFolder, text::kRasterAddFolderTooltip};
    page.remove.id = 433;
    page.clear.id = 434;
    page.detailColumns.id = 435;
    page.selectAll.id = 436;
    page.refresh.id = 437;
    page.help.id = 438;
    page.helpTopic = HelpTopic::RasterFiles;
    page.splitterName = "rasterSplitter";
    page.paneStateName = L"AddRasterFilesDetails";
    page.columnStateName = L"AddRasterFilesColumns";
    page.kind = DataKindName(DataKind::Raster);
    page.folderName = L"AddRasterFilesFolder";
    page.detailsTabs = {{"rasterOverview", text::kDetailsOverviewTab, Html},
                        {"rasterCrs", text::kDetailsCrsTab, Html},
                        {"rasterBands", text::kRasterBandsTab, Html}};
    page.options = {kGroups, kRows};
    page.existingFiles = &AddFilesParams::existingRasterFiles;
    page.pickTitle = text::kRasterPickerTitle;
    page.tooManyFiles =
        L"There are too many selected files for the allocated buffer. Select fewer files, then "
        L"add more files to the layer using the Raster Files tab.";
    page.folderQuestion = L"Would you like to add raster files from all subfolders as well?";
    return page;
}

/// Everything about the page but its columns.
const FileListPageDescription& RasterPage() {
    static const FileListPageDescription page = Describe();
    return page;
}

}  // namespace

AddRasterFilesPP::AddRasterFilesPP(const PageContext& context, QWidget* parent)
    : RasterListPage(context, RasterPage(), RasterUse::Image, parent) {
    Start(EditModel());
}

void AddRasterFilesPP::RowsChanged() {
    EditModel().Change([this](std::vector<RasterRow>& rows) {
        AssignLayers(rows, Params().existingRasterLayers, {.append = Chosen().rasterAppend}, false,
                     L"Raster Layer_");
    });
}

bool AddRasterFilesPP::Store() {
    if (!SaveOptions()) {
        return false;
    }
    WriteOptions();
    AddFilesParams& record = Params();
    StoreFiles(record.rasterFiles, record.rasterFileLayers);
    for (const RasterRow& row : Model().Rows()) {
        if (row.IsDescribed()) {
            record.rasterFileDetails[row.path] = row.file.get();
        }
    }
    return true;
}

void AddRasterFilesPP::HandOver() noexcept {
    EditModel().Change([this](std::vector<RasterRow>& rows) {
        for (RasterRow& row : rows) {
            ReleaseIfIn(Params().rasterFileDetails, row);
        }
    });
}

}  // namespace orvex
