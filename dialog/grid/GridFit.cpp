#include "dialog/grid/GridFit.h"

#include <QFontMetrics>
#include <algorithm>

#include "dialog/grid/GridDelegate.h"
#include "dialog/grid/GridModel.h"
#include "dialog/grid/GridTable.h"
#include "dialog/grid/GridText.h"
#include "support/QtText.h"

namespace orvex {
namespace {

constexpr int kWidest = 1000;
constexpr std::size_t kLongestMeasured = 400;  // characters; more are wider than the widest column

int TextWidth(const std::wstring& text, const QFontMetrics& font) {
    return font.horizontalAdvance(ToQString(OnOneLine(text.substr(0, kLongestMeasured))));
}

}  // namespace

CellRoom RoomOf(const GridTable& pane) {
    const int margin = GridDelegate::TextMargin(pane.style());
    return {.margins = 2 * margin + 2, .icon = pane.iconSize().width() + 2 * margin};
}

int CellWidth(const std::wstring& text, const QFontMetrics& font, const CellRoom& room) {
    return TextWidth(text, font) + room.margins;
}

int FittedWidth(const GridModel& model, int column, const std::vector<int>& rows, int headerWidth,
                const QFontMetrics& font, const CellRoom& room) {
    const GridColumn& description = model.Columns()[static_cast<std::size_t>(column)];
    const int widest = description.maximumWidth > 0 ? description.maximumWidth : kWidest;
    int width = headerWidth;
    if (const auto footer = model.FooterText(column)) {
        width = std::max(width, CellWidth(*footer, font, room));
    }
    for (const int row : rows) {
        if (width >= widest) {
            break;
        }
        const QModelIndex index = model.index(row, column);
        const bool hasIcon = model.data(index, GridModel::kIconRole).toInt() >= 0;
        const std::wstring text = description.kind == CellKind::Flag
                                      ? std::wstring()
                                      : model.CellText(model.RecordOfRow(row), column);
        width = std::max(width, CellWidth(text, font, room) + (hasIcon ? room.icon : 0));
    }
    return std::max(std::min(width, widest), description.minimumWidth);
}

std::vector<int> SpreadRows(int rowCount, int first, int last, int most) {
    std::vector<int> rows;
    if (rowCount <= 0) {
        return rows;
    }
    for (int row = std::max(first, 0); row <= std::min(last, rowCount - 1); ++row) {
        rows.push_back(row);
    }
    const int samples = std::min(most, rowCount);
    for (int i = 0; i < samples; ++i) {
        const auto row = static_cast<std::int64_t>(i) * rowCount / samples;
        rows.push_back(static_cast<int>(row));
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

}  // namespace orvex
