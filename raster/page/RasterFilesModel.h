#pragma once
#include "dialog/page/FileRowsModel.h"
#include "raster/RasterInspection.h"
#include "raster/RasterRow.h"

namespace orvex {

/// The rows of the raster page or of the DEM page.
class RasterFilesModel : public FileRowsModel<RasterRow> {
    Q_OBJECT

  protected:
    explicit RasterFilesModel(RasterUse use, QObject* parent = nullptr);

    GridCell Cell(std::size_t record, int column) const override;
    const wchar_t* NumberFormat(std::size_t record, int column) const override;
    int Icon(std::size_t record, int column) const override;
    std::wstring Tooltip(std::size_t record, int column) const override;

  private:
    const RasterUse use_;
};

/// The model of one of the pages.
template <RasterUse Use>
class RasterFilesModelOf final : public RasterFilesModel {
  public:
    explicit RasterFilesModelOf(QObject* parent = nullptr) : RasterFilesModel(Use, parent) {}
};

}  // namespace orvex
