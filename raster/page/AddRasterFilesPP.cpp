#include "raster/page/AddRasterFilesPP.h"

#include "dialog/page/OptionForm.h"

namespace orvex {
namespace {

constexpr int kOptionsGroup = 440;

constexpr OptionGroup kGroups[] = {{.id = kOptionsGroup, .caption = 41003_lsid, .takesRoom = true}};

constexpr OptionRow kRows[] = {
    {.control = OptionControl::CheckBox,
     .id = 441,
     .group = kOptionsGroup,
     .line = 1,
     .caption = 13658_lsid,
     .tooltip = 41329_lsid,
     .member = &AddFilesParams::rasterAppend,
     .storage = opt2AddRasterAppend,
     .fallback = {1},
     .changesLayers = true},
    {.control = OptionControl::CheckBox,
     .id = 442,
     .group = kOptionsGroup,
     .line = 2,
     .caption = 41330_lsid,
     .tooltip = 13583_lsid,
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
    page.listCaption = 41320_lsid;
    page.gridId = 439;
    page.emptyText = 41322_lsid;
    page.addFiles = {431, 13462_lsid, 41324_lsid};
    page.addFolder = {432, 13463_lsid, 41326_lsid};
    page.remove.id = 433;
    page.clear.id = 434;
    page.detailColumns.id = 435;
    page.selectAll.id = 436;
    page.refresh.id = 437;
    page.help.id = 438;
    page.helpTopic = HelpTopic::RasterFiles;
    page.splitterName = "rasterSplitter";
    page.paneStateName = L"AddRasterFilesDetails";
    page.detailsTabs = {{"rasterOverview", 40631_lsid, Html},
                        {"rasterCrs", 40632_lsid, Html},
                        {"rasterBands", 41288_lsid, Html}};
    page.options = {kGroups, kRows};
    page.pickTitle = 13643_lsid;
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
    ForEachDescribed([&record = Params()](const RasterRow& row) {
        record.rasterFiles[FolderOf(row.path)].push_back(FileNameOf(row.path));
        record.rasterFileDetails[row.path] = row.file.get();
        record.rasterFileLayers[row.path] = row.place.layer;
    });
    return true;
}

void AddRasterFilesPP::HandOver() noexcept {
    EditModel().Change([](std::vector<RasterRow>& rows) {
        for (RasterRow& row : rows) {
            static_cast<void>(row.file.release());
        }
    });
}

}  // namespace orvex
