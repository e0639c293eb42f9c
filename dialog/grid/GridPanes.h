#pragma once
#include <vector>

#include "dialog/grid/GridTable.h"

namespace orvex {

class GridModel;
class UserPrompts;

/// The frozen and the scrolling table of a grid: distributes the columns among them and keeps their vertical
/// position, selection and sort indicator in step. The tables are owned by their parent.
class GridPanes {
  public:
    GridPanes(GridDelegate& delegate, UserPrompts& prompts, QWidget* parent);

    GridTable& Frozen() const { return *frozen_; }
    GridTable& Scrolling() const { return *scrolling_; }
    std::vector<GridTable*> Both() const { return {frozen_, scrolling_}; }
    GridTable& PaneOf(int column) const;

    /// Null removes the model.
    void SetModel(GridModel* model);
    /// By column.
    void ShowColumns(const std::vector<bool>& shown);
    /// From left to right.
    std::vector<int> ShownColumns() const;
    bool IsShown(int column) const;

    void ShowSort(int column, Qt::SortOrder order) const;
    void UpdateRow(int row) const;

  private:
    void JoinVertically();

    GridModel* model_ = nullptr;
    GridTable* frozen_;
    GridTable* scrolling_;
};

}  // namespace orvex
