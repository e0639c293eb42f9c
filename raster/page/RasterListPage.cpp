#include "raster/page/RasterListPage.h"

#include <algorithm>
#include <utility>

#include "crs/GdalSetup.h"
#include "raster/RasterColumns.h"
#include "raster/page/RasterDetails.h"
#include "support/DataKinds.h"

namespace orvex {
namespace {

FileReader<RasterRow> MakeReader(RasterUse use, RasterInformationMaker maker) {
    return {[use, maker = std::move(maker)](const std::wstring& path) {
                return InspectRasterFile(path, use, maker);
            },
            UnreadRasterFile};
}

}  // namespace

FileListPageDescription DescribeRasters() {
    FileListPageDescription page;
    page.startsInInitialFolder = true;
    page.filters = PickerFilters(DataKind::Raster);
    page.extensions = NamedExtensions(DataKind::Raster);
    page.folderExtensions = ScanExtensions(DataKind::Raster);
    page.scanTexts.nothingFound = text::kRasterFolderEmpty;
    page.scanTexts.nothingFoundIcon = PromptIcon::Error;
    page.adding.progressText = text::kRasterReadingProgress;
    return page;
}

RasterListPage::RasterListPage(const PageContext& context, const FileListPageDescription& description,
                               RasterUse use, QWidget* parent)
    : TypedFileListPage(context, description, RasterColumns(use),
                        MakeReader(use, context.services.hostObjects.RasterInformation()), parent),
      use_(use) {
    static GdalSetup setup;
    setup.Run();
}

DetailsContent RasterListPage::Details(std::span<const std::size_t> records) const {
    return RasterDetailsContent(Model().Rows(), records, use_, DetailsPane().CaptionColour());
}

AddingSummary RasterListPage::AddRows(AddingRequest request, const std::function<void()>& appended) {
    hasReportedException_ = false;
    return TypedFileListPage::AddRows(std::move(request), appended);
}

RasterListPage::Rereading RasterListPage::RereadRows() {
    hasReportedException_ = false;
    return TypedFileListPage::RereadRows();
}

/// Says so when reading a row ended with an exception; once a run, however many there are.
void RasterListPage::RowsRead(std::size_t first) {
    const auto& rows = Model().Rows();
    const bool threw = std::any_of(rows.begin() + static_cast<std::ptrdiff_t>(first), rows.end(),
                                   [](const RasterRow& row) { return row.threw; });
    if (threw && !std::exchange(hasReportedException_, true)) {
        ShowMessage(Text(text::kRasterPropertiesFailed), text::kRasterPropertiesFailed, PromptIcon::Error);
    }
}

std::vector<std::function<void()>> RasterListPage::LateWork() const {
    const bool isDem = use_ == RasterUse::Dem;
    return IdentificationWork(UnidentifiedCrss(Model().Rows()),
                              isDem ? Params().existingLasLayers : Params().existingRasterLayers);
}

void RasterListPage::StoreFiles(FilesByFolder& files, std::map<std::wstring, std::wstring>& layers) const {
    for (const std::size_t index : Model().RecordsInOrder()) {
        const RasterRow& row = Model().Rows()[index];
        files[FolderOf(row.path)].push_back(FileNameOf(row.path));
        if (row.IsDescribed()) {
            layers[row.path] = row.place.layer;
        }
    }
}

}  // namespace orvex
