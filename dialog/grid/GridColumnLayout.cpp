#include "dialog/grid/GridColumnLayout.h"

#include <algorithm>
#include <utility>

#include "dialog/grid/GridDelegate.h"
#include "dialog/grid/GridFit.h"
#include "dialog/grid/GridHeaderView.h"
#include "dialog/grid/GridModel.h"
#include "dialog/grid/GridPanes.h"

namespace orvex {
namespace {

constexpr int kFitSample = 200;                // rows measured beside those in sight
constexpr std::size_t kMostRemembered = 1000;  // messages; most rows say the same
constexpr int kWidestSpare = 1000;             // beyond, a line of text is hard to follow

}  // namespace

class GridColumnLayout::Arranging {
  public:
    explicit Arranging(GridColumnLayout& layout)
        : layout_(layout), before_(std::exchange(layout.arranging_, true)) {}
    ~Arranging() { layout_.arranging_ = before_; }
    Arranging(const Arranging&) = delete;
    Arranging& operator=(const Arranging&) = delete;

  private:
    GridColumnLayout& layout_;
    bool before_;
};

const GridColumn& GridColumnLayout::ColumnAt(int column) const {
    return model_->Columns()[static_cast<std::size_t>(column)];
}

void GridColumnLayout::SetModel(GridModel* model) {
    const Arranging arranging(*this);
    model_ = model;
    choice_ = {};
    messages_.clear();
    fitted_.clear();
    measured_ = 0;
    panes_.SetModel(model);
    if (model == nullptr) {
        return;
    }
    for (int column = 0; column < model->columnCount(); ++column) {
        if (ColumnAt(column).takesSpare) {
            messages_[column] = {};
        }
    }
    ApplyShown();
    MeasureMessages();
    for (const int column : panes_.ShownColumns()) {
        if (ColumnAt(column).width == 0) {
            Fit(column);
        }
    }
}

void GridColumnLayout::ApplyShown() {
    const Arranging arranging(*this);
    std::vector<bool> shown;
    for (const GridColumn& column : model_->Columns()) {
        const auto chosen = choice_.shown.find(column.name);
        const bool usual = column.basic || details_;
        shown.push_back(!column.hidden && (chosen == choice_.shown.end() ? usual : chosen->second));
    }
    panes_.ShowColumns(shown);
}

void GridColumnLayout::ShowDetails(bool show) {
    details_ = show;
    if (model_ != nullptr) {
        ApplyShown();
        ShareSpare();
    }
}

bool GridColumnLayout::IsShown(int column) const {
    return panes_.IsShown(column);
}

bool GridColumnLayout::CanHide(int column) const {
    return !ColumnAt(column).hidden && !ColumnAt(column).frozen &&
           (!panes_.IsShown(column) || panes_.ShownColumns().size() > 1);
}

void GridColumnLayout::Show(int column, bool show) {
    const GridColumn& description = ColumnAt(column);
    if (!CanHide(column)) {
        return;
    }
    if (show == (description.basic || details_)) {
        choice_.shown.erase(description.name);
    } else {
        choice_.shown[description.name] = show;
    }
    ApplyShown();
    if (show && !choice_.widths.contains(description.name)) {
        Fit(column);
    }
    ShareSpare();
}

std::vector<int> GridColumnLayout::RowsToMeasure() const {
    const GridTable& table = panes_.Scrolling();
    const int first = table.rowAt(0);
    const int last = table.rowAt(table.viewport()->height() - 1);
    return SpreadRows(model_->rowCount(), first, last < 0 ? first + kFitSample : last, kFitSample);
}

void GridColumnLayout::SetWidth(int column, int width) {
    const Arranging arranging(*this);
    panes_.PaneOf(column).setColumnWidth(column, width);
}

void GridColumnLayout::Fit(int column) {
    const GridColumn& description = ColumnAt(column);
    if (!panes_.IsShown(column) || !description.resizable) {
        return;
    }
    choice_.widths.erase(description.name);
    if (model_->Records() == 0 && description.width > 0) {
        SetWidth(column, std::max(description.width, description.minimumWidth));
    } else {
        const GridTable& pane = panes_.PaneOf(column);
        SetWidth(column, FittedWidth(*model_, column, RowsToMeasure(), pane.Header()->sectionSizeHint(column),
                                     pane.fontMetrics(), RoomOf(pane)));
    }
    if (description.takesSpare) {
        fitted_[column] = panes_.PaneOf(column).columnWidth(column);
        SetWidth(column, LeastWidth(column));
    }
}

void GridColumnLayout::Fit() {
    for (const int column : panes_.ShownColumns()) {
        if (!choice_.widths.contains(ColumnAt(column).name)) {
            Fit(column);
        }
    }
    ShareSpare();
}

void GridColumnLayout::Refit() {
    choice_.widths.clear();
    Fit();
}

void GridColumnLayout::Reset() {
    choice_ = {};
    ApplyShown();
    Fit();
}

int GridColumnLayout::LeastWidth(int column) const {
    const GridColumn& description = ColumnAt(column);
    const auto fitted = fitted_.find(column);
    const int own = fitted == fitted_.end() ? description.width : fitted->second;
    const int message = messages_.at(column).width;
    const int most = description.maximumWidth > 0 ? description.maximumWidth : message;
    return std::max(own, std::min(message, most));
}

void GridColumnLayout::ShareSpare() {
    for (const auto& [column, messages] : messages_) {
        if (!panes_.IsShown(column) || choice_.widths.contains(ColumnAt(column).name)) {
            continue;
        }
        const GridTable& pane = panes_.PaneOf(column);
        const int others = pane.Header()->length() - pane.columnWidth(column);
        const int room = pane.viewport()->width();
        const int inSight = std::min(room - pane.Header()->sectionPosition(column), messages.width);
        SetWidth(column,
                 std::max(std::min(std::max(room - others, inSight), kWidestSpare), LeastWidth(column)));
    }
}

void GridColumnLayout::Measure(int column, Messages& messages) {
    const QFontMetrics font = panes_.PaneOf(column).fontMetrics();
    const CellRoom room = RoomOf(panes_.PaneOf(column));
    for (std::size_t record = measured_; record < model_->Records(); ++record) {
        if (messages.width >= kWidestSpare) {
            return;
        }
        if (messages.seen.size() == kMostRemembered) {
            messages.seen.clear();
        }
        const auto [text, isNew] = messages.seen.insert(model_->CellText(record, column));
        const int widest = static_cast<int>(std::min<std::size_t>(text->size(), 400)) * font.maxWidth();
        if (isNew && widest + room.margins > messages.width) {
            messages.width = std::max(messages.width, CellWidth(*text, font, room));
        }
    }
}

void GridColumnLayout::MeasureMessages() {
    if (model_->Records() == 0 || measured_ == 0) {
        for (auto& [column, messages] : messages_) {
            messages = {};
        }
    }
    for (auto& [column, messages] : messages_) {
        Measure(column, messages);
    }
    measured_ = model_->Records();
    ShareSpare();
}

void GridColumnLayout::WidthChanged(int column, int width) {
    if (!arranging_ && model_ != nullptr && width > 0 && panes_.IsShown(column)) {
        choice_.widths[ColumnAt(column).name] = width;
    }
}

std::string GridColumnLayout::State() const {
    GridColumnChoice choice = choice_;
    choice.sortColumn.clear();
    if (model_ != nullptr && model_->SortColumn() >= 0) {
        choice.sortColumn = ColumnAt(model_->SortColumn()).name;
        choice.sortsDescending = model_->SortOrder() == Qt::DescendingOrder;
    }
    return choice.ToText();
}

void GridColumnLayout::Restore(const std::string& state) {
    auto choice = GridColumnChoice::FromText(state, model_->Columns());
    if (!choice) {
        return;
    }
    choice_ = std::move(*choice);
    ApplyShown();
    for (int column = 0; column < model_->columnCount(); ++column) {
        const auto width = choice_.widths.find(ColumnAt(column).name);
        if (width != choice_.widths.end() && ColumnAt(column).resizable) {
            SetWidth(column, width->second);
        }
    }
    ShareSpare();
    for (int column = 0; column < model_->columnCount(); ++column) {
        if (ColumnAt(column).name == choice_.sortColumn) {
            model_->sort(column, choice_.sortsDescending ? Qt::DescendingOrder : Qt::AscendingOrder);
        }
    }
}

}  // namespace orvex
