#pragma once
#include "dialog/page/FileRowsModel.h"
#include "las/LasRow.h"

namespace orvex {

/// The rows of the LAS page.
class AddLASFilesModel final : public FileRowsModel<LasRow> {
    Q_OBJECT

  public:
    explicit AddLASFilesModel(QObject* parent = nullptr);

  protected:
    GridCell Cell(std::size_t record, int column) const override;
    const wchar_t* NumberFormat(std::size_t record, int column) const override;
    int Icon(std::size_t record, int column) const override;
    std::wstring Tooltip(std::size_t record, int column) const override;
};

}  // namespace orvex
