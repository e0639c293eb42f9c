#include "raster/page/RasterPageTasks.h"

#include <utility>

#include "raster/RasterListing.h"
#include "raster/page/RasterPageControls.h"
#include "support/DataKinds.h"
#include "support/Text.h"

namespace orvex {

namespace {

// What the system's dialog takes of a title.
constexpr std::size_t kLongestTitle = 255;

OpenFilesRequest PickerRequest(StringId title, const std::wstring& initialFolder) {
    OpenFilesRequest request;
    request.title = Text(title).substr(0, kLongestTitle);
    request.initialFolder = initialFolder;
    request.filters = PickerFilters(DataKind::Raster);
    return request;
}

/// What both pages have in common.
FileListPageDescription DescribeCommonly() {
    FileListPageDescription page;
    page.fitsColumns = false;  // their widths are given
    page.pickFailed = {};
    page.folderExtensions = ScanExtensions(DataKind::Raster);
    page.extensions = NamedExtensions(DataKind::Raster);
    page.scanTexts.nothingFound = text::kRasterFolderEmpty;
    page.scanTexts.nothingFoundIcon = PromptIcon::Error;
    page.nothingSelected = text::kDetailsNoSelection;
    return page;
}

FileListPageDescription DescribeRasterPage(const AddFilesParams& params) {
    using enum DetailsTab::Kind;
    FileListPageDescription page = DescribeCommonly();
    page.controls = RasterListControls();
    page.splitterName = "rasterSplitter";
    page.paneStateName = L"AddRasterFilesDetails";
    page.helpTopic = HelpTopic::RasterFiles;
    page.filesCaption = text::kRasterSelectedFiles;
    page.emptyText = text::kRasterEmptyGrid;
    page.addFiles = {text::kAddFiles, text::kRasterAddTooltip};
    page.addFolder = {text::kAddFolder, text::kRasterAddFolderTooltip};
    page.openFiles = [&params] { return PickerRequest(text::kRasterPickerTitle, params.initialFolder); };
    page.tooManyFiles = {
        {},
        L"There are too many selected files for the allocated buffer. Select fewer files, then "
        L"add more files to the layer using the Raster Files tab."};
    page.folderQuestion = {{}, L"Would you like to add raster files from all subfolders as well?"};
    page.detailsTabs = {{"rasterOverview", text::kDetailsOverviewTab, Html},
                        {"rasterCrs", text::kDetailsCrsTab, Html},
                        {"rasterBands", text::kRasterBandsTab, Html}};
    return page;
}

FileListPageDescription DescribeDemPage(const AddFilesParams& params) {
    using enum DetailsTab::Kind;
    FileListPageDescription page = DescribeCommonly();
    page.controls = DemListControls();
    page.splitterName = "demSplitter";
    page.paneStateName = L"AddDEMFilesDetails";
    page.helpTopic = HelpTopic::DemFiles;
    page.filesCaption = text::kDemSelectedFiles;
    page.emptyText = text::kDemEmptyGrid;
    page.addFiles = {text::kAddFiles, text::kDemAddTooltip};
    page.addFolder = {text::kAddFolder, text::kDemAddFolderTooltip};
    page.openFiles = [&params] { return PickerRequest(text::kDemPickerTitle, params.initialFolder); };
    page.tooManyFiles = {text::kDemTooManySelected};
    page.folderQuestion = {text::kDemSubfoldersQuestion};
    page.extensions = NamedExtensions(DataKind::Dem);
    page.detailsTabs = {{"demOverview", text::kDetailsOverviewTab, Html},
                        {"demCrs", text::kDetailsCrsTab, Html},
                        {"demBands", text::kRasterBandsTab, Html}};
    return page;
}

FileAdder<ListedRaster> MakeReader(AddingDescription description, RasterUse use,
                                   RasterInformationMaker maker) {
    const auto read = [use, maker = std::move(maker)](const std::wstring& path) {
        return ListRaster(InspectRasterFile(path, use, maker));
    };
    return {std::move(description), read, FailedRaster};
}

}  // namespace

FileListPageDescription DescribeRasterListPage(RasterUse use, const AddFilesParams& params) {
    return use == RasterUse::Dem ? DescribeDemPage(params) : DescribeRasterPage(params);
}

FileAdder<ListedRaster> MakeRasterAdder(RasterUse use, RasterInformationMaker maker) {
    AddingDescription description;
    description.progressText = text::kRasterReadingProgress;
    return MakeReader(std::move(description), use, std::move(maker));
}

FileAdder<ListedRaster> MakeRasterRefresher(RasterUse use, RasterInformationMaker maker) {
    AddingDescription description;
    description.progressText = text::kRefreshProgress;
    return MakeReader(std::move(description), use, std::move(maker));
}

}  // namespace orvex
