#include "raster/page/RasterFilesModel.h"

#include "raster/RasterCells.h"

namespace orvex {

RasterFilesModel::RasterFilesModel(RasterUse use, QObject* parent)
    : FileRowsModel(RasterColumns(use), parent), use_(use) {}

GridCell RasterFilesModel::Cell(std::size_t record, int column) const {
    return RasterCell(Rows()[record], RasterColumnAt(use_, column), use_);
}

const wchar_t* RasterFilesModel::NumberFormat(std::size_t record, int column) const {
    const wchar_t* format = RasterNumberFormat(Rows()[record], RasterColumnAt(use_, column));
    return format != nullptr ? format : GridModel::NumberFormat(record, column);
}

int RasterFilesModel::Icon(std::size_t record, int column) const {
    const bool isFlag = RasterColumnAt(use_, column) == RasterColumn::LoadFlag;
    return isFlag ? LoadFlagImage(LoadFlagOf(Rows()[record])) : -1;
}

std::wstring RasterFilesModel::Tooltip(std::size_t record, int column) const {
    const RasterRow& row = Rows()[record];
    switch (RasterColumnAt(use_, column)) {
        case RasterColumn::LoadFlag:
        case RasterColumn::Summary:
            return FindingsText(row);
        case RasterColumn::FileName:
        case RasterColumn::Folder:
            return row.inspection.path;
        default:
            return CellText(record, column);
    }
}

}  // namespace orvex
