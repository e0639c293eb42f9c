#pragma once
#include "dialog/page/FileListPage.h"
#include "raster/RasterRow.h"

namespace orvex {

/// The part of the description that the raster page and the DEM page share.
FileListPageDescription DescribeRasters();

/// A page of raster files. The first one in a process sets GDAL up; without GDAL files are listed all the
/// same.
class RasterListPage : public TypedFileListPage<RasterRow> {
    Q_OBJECT

  protected:
    RasterListPage(const PageContext& context, const FileListPageDescription& description, RasterUse use,
                   QWidget* parent);

    DetailsContent Details(std::span<const std::size_t> records) const override;
    AddingSummary AddRows(AddingRequest request, const std::function<void()>& appended) override;
    Rereading RereadRows() override;
    void RowsRead(std::size_t first) override;
    std::vector<std::function<void()>> LateWork() const override;

    /// Writes every row's file into the record, in the order that the grid shows them, and the layers of
    /// those that could be described.
    void StoreFiles(FilesByFolder& files, std::map<std::wstring, std::wstring>& layers) const;

  private:
    const RasterUse use_;
    bool hasReportedException_ = false;  ///< in this run
};

}  // namespace orvex
