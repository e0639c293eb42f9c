#pragma once
#include <functional>
#include <map>
#include <unordered_set>
#include <vector>

#include "dialog/grid/GridModel.h"
#include "las/LasLayers.h"
#include "las/LasRow.h"

namespace orvex {

/// The rows of the LAS page. A record is a LasRow; its index is the order of adding.
class AddLASFilesModel final : public GridModel {
    Q_OBJECT

  public:
    explicit AddLASFilesModel(QObject* parent = nullptr);

    const std::vector<LasRow>& Rows() const { return rows_; }
    /// PathKey of every listed file.
    std::unordered_set<std::wstring> PathKeys() const;

    void Append(std::vector<LasInspection> batch);
    /// Removes records by index, in any order, and frees their files.
    void Remove(std::vector<std::size_t> records);
    void Clear();

    /// Changes rows without adding or removing any; tells the views even when `change` throws.
    void Change(const std::function<void(std::vector<LasRow>&)>& change);

  protected:
    std::size_t RecordCount() const override { return rows_.size(); }
    GridCell Cell(std::size_t record, int column) const override;
    const wchar_t* NumberFormat(std::size_t record, int column) const override;
    int Icon(std::size_t record, int column) const override;
    std::wstring Tooltip(std::size_t record, int column) const override;

  private:
    std::vector<LasRow> rows_;
};

}  // namespace orvex
