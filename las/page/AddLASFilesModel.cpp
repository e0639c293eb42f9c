#include "las/page/AddLASFilesModel.h"

#include "las/LasCells.h"

namespace orvex {

AddLASFilesModel::AddLASFilesModel(QObject* parent) : FileRowsModel(LasColumns(), parent) {}

GridCell AddLASFilesModel::Cell(std::size_t record, int column) const {
    return LasCell(Rows()[record], static_cast<LasColumn>(column));
}

const wchar_t* AddLASFilesModel::NumberFormat(std::size_t record, int column) const {
    const wchar_t* format = LasNumberFormat(Rows()[record], static_cast<LasColumn>(column));
    return format != nullptr ? format : GridModel::NumberFormat(record, column);
}

int AddLASFilesModel::Icon(std::size_t record, int column) const {
    return column == IndexOf(LasColumn::LoadFlag) ? LoadFlagImage(LoadFlagOf(Rows()[record])) : -1;
}

std::wstring AddLASFilesModel::Tooltip(std::size_t record, int column) const {
    const LasRow& row = Rows()[record];
    switch (static_cast<LasColumn>(column)) {
        case LasColumn::LoadFlag:
        case LasColumn::State:
        case LasColumn::FindingCount:
            return FindingsText(row);
        case LasColumn::FileName:
        case LasColumn::Folder:
            return row.inspection.path;
        default:
            return CellText(record, column);
    }
}

}  // namespace orvex
