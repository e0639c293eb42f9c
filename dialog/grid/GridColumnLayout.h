#pragma once
#include <map>
#include <set>
#include <string>
#include <vector>

#include "dialog/grid/GridColumnChoice.h"

class QMenu;

namespace orvex {

class GridModel;
class GridPanes;

/// Decides which columns of a grid are shown and how wide they are.
///
/// A column is shown if it is basic, or if the detail columns are shown; the user's own choice for a column
/// goes before that and holds until the user takes it back, so that showing and hiding the detail columns
/// changes only the others. Frozen columns are always shown. Widths that the user has set by dragging stay
/// through every fit until Refit or Reset.
class GridColumnLayout {
  public:
    explicit GridColumnLayout(GridPanes& panes) : panes_(panes) {}

    /// Null removes the model. Forgets all choices.
    void SetModel(GridModel* model);

    void ShowDetails(bool show);
    bool DetailsShown() const { return details_; }
    bool IsShown(int column) const;
    bool CanHide(int column) const;
    /// The user's own choice.
    void Show(int column, bool show);

    /// Fits the shown columns of which the user has not set the width. Without rows, columns with a given
    /// width have that.
    void Fit();
    /// Fits one column, whoever has set its width.
    void Fit(int column);
    /// Fits all shown columns and forgets the widths that the user has set.
    void Refit();
    /// Forgets all choices of the user but the sort order.
    void Reset();
    /// Gives columns that take it the width that the others leave free in the viewport; for a longer message,
    /// all that is in sight beside the columns before them.
    void ShareSpare();
    /// Records have been added, removed or changed: messages that are new are measured.
    void MeasureMessages();
    /// The cells of all records have changed.
    void ForgetMessages() { measured_ = 0; }
    /// A header has reported a column's width.
    void WidthChanged(int column, int width);

    /// As GridColumnChoice, with the sort order.
    std::string State() const;
    void Restore(const std::string& state);

  private:
    /// Widths that are set while one exists are not the user's.
    class Arranging;
    /// The messages of a column.
    struct Messages {
        int width = 0;                ///< that the longest needs
        std::set<std::wstring> seen;  ///< measured already
    };

    const GridColumn& ColumnAt(int column) const;
    void Measure(int column, Messages& messages);
    int LeastWidth(int column) const;
    void SetWidth(int column, int width);
    void ApplyShown();
    std::vector<int> RowsToMeasure() const;

    GridPanes& panes_;
    GridModel* model_ = nullptr;
    bool details_ = true;
    bool arranging_ = false;
    GridColumnChoice choice_;
    std::map<int, Messages> messages_;  ///< of the columns that take spare width
    std::map<int, int> fitted_;         ///< their widths without spare
    std::size_t measured_ = 0;          ///< records whose messages are measured
};

}  // namespace orvex
