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
    page.scanTexts.nothingFound = 13644_lsid;
    page.scanTexts.nothingFoundIcon = PromptIcon::Error;
    page.nothingSelected = 41063_lsid;
    return page;
}

FileListPageDescription DescribeRasterPage(const AddFilesParams& params) {
    using enum DetailsTab::Kind;
    FileListPageDescription page = DescribeCommonly();
    page.controls = RasterListControls();
    page.splitterName = "rasterSplitter";
    page.paneStateName = L"AddRasterFilesDetails";
    page.helpTopic = HelpTopic::RasterFiles;
    page.filesCaption = 41320_lsid;
    page.emptyText = 41322_lsid;
    page.addFiles = {13462_lsid, 41324_lsid};
    page.addFolder = {13463_lsid, 41326_lsid};
    page.openFiles = [&params] { return PickerRequest(13643_lsid, params.initialFolder); };
    page.tooManyFiles = {
        {},
        L"There are too many selected files for the allocated buffer. Select fewer files, then "
        L"add more files to the layer using the Raster Files tab."};
    page.folderQuestion = {{}, L"Would you like to add raster files from all subfolders as well?"};
    page.detailsTabs = {{"rasterOverview", 40631_lsid, Html},
                        {"rasterCrs", 40632_lsid, Html},
                        {"rasterBands", 41288_lsid, Html}};
    return page;
}

FileListPageDescription DescribeDemPage(const AddFilesParams& params) {
    using enum DetailsTab::Kind;
    FileListPageDescription page = DescribeCommonly();
    page.controls = DemListControls();
    page.splitterName = "demSplitter";
    page.paneStateName = L"AddDEMFilesDetails";
    page.helpTopic = HelpTopic::DemFiles;
    page.filesCaption = 41321_lsid;
    page.emptyText = 41323_lsid;
    page.addFiles = {13462_lsid, 41325_lsid};
    page.addFolder = {13463_lsid, 41327_lsid};
    page.openFiles = [&params] { return PickerRequest(3239_lsid, params.initialFolder); };
    page.tooManyFiles = {3240_lsid};
    page.folderQuestion = {3241_lsid};
    page.extensions = NamedExtensions(DataKind::Dem);
    page.detailsTabs = {
        {"demOverview", 40631_lsid, Html}, {"demCrs", 40632_lsid, Html}, {"demBands", 41288_lsid, Html}};
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
    description.progressText = 13663_lsid;
    return MakeReader(std::move(description), use, std::move(maker));
}

FileAdder<ListedRaster> MakeRasterRefresher(RasterUse use, RasterInformationMaker maker) {
    AddingDescription description;
    description.progressText = 40676_lsid;
    return MakeReader(std::move(description), use, std::move(maker));
}

}  // namespace orvex
