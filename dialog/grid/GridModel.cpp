#include "dialog/grid/GridModel.h"

#include <QDateTime>
#include <QLocale>
#include <algorithm>
#include <cmath>

#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Log.h"
#include "support/QtText.h"

namespace orvex {
namespace {

std::wstring DateText(std::int64_t time, const wchar_t* format) {
    const QDateTime local = QDateTime::fromMSecsSinceEpoch(time);
    const QString pattern = QString::fromWCharArray(format);
    return ToWide(pattern.isEmpty() ? QLocale().toString(local, QLocale::ShortFormat)
                                    : local.toString(pattern));
}

bool IsText(const GridColumn& column, HeaderAlign align) {
    return column.kind != CellKind::Number && column.align == align;
}

}  // namespace

GridModel::GridModel(std::vector<GridColumn> columns, QObject* parent)
    : QAbstractTableModel(parent),
      columns_(std::move(columns)),
      sums_(columns_.size(), 0.0),
      searchTexts_(columns_.size()) {}

int GridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(shown_.size());
}

int GridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(columns_.size());
}

// Views ask while they paint, where an exception would leave them, and the dialog, in the middle of it.
QVariant GridModel::data(const QModelIndex& index, int role) const {
    try {
        return RoleOf(index, role);
    } catch (...) {
        LogWarning(L"A cell cannot be shown: " + CurrentExceptionText());
        return {};
    }
}

QVariant GridModel::RoleOf(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid)) {
        return {};
    }
    const std::size_t record = RecordOfRow(index.row());
    const int column = index.column();
    switch (role) {
        case Qt::DisplayRole:
        case Qt::AccessibleTextRole:
        case kSortRole:
            return DisplayValue(record, column, role);
        case Qt::TextAlignmentRole:
            return Alignment(column, false);
        case Qt::ToolTipRole:
            return TooltipText(ToQString(Tooltip(record, column)));
        case Qt::ForegroundRole:
            if (const auto colour = TextColour(record, column)) {
                return *colour;
            }
            return {};
        case kIconRole:
            return Icon(record, column);
        default:
            return {};
    }
}

QVariant GridModel::DisplayValue(std::size_t record, int column, int role) const {
    const GridColumn& description = columns_[static_cast<std::size_t>(column)];
    if (role == Qt::DisplayRole && description.kind == CellKind::Flag) {
        return {};
    }
    if (role != kSortRole) {
        return ToQString(CellText(record, column));
    }
    const GridCell cell = Cell(record, column);
    if (const auto* number = std::get_if<double>(&cell)) {
        return *number;
    }
    if (const auto* time = std::get_if<std::int64_t>(&cell)) {
        return static_cast<qlonglong>(*time);
    }
    const auto* text = std::get_if<std::wstring>(&cell);
    return text ? QVariant(ToQString(*text)) : QVariant();
}

QVariant GridModel::Alignment(int column, bool header) const {
    const GridColumn& description = columns_[static_cast<std::size_t>(column)];
    if (description.kind == CellKind::Flag || IsText(description, HeaderAlign::Centre) ||
        (header && description.align == HeaderAlign::Centre)) {
        return static_cast<int>(Qt::AlignCenter);
    }
    const bool right =
        description.align == HeaderAlign::Right || (!header && description.kind == CellKind::Number);
    return static_cast<int>((right ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount()) {
        return {};
    }
    const GridColumn& column = columns_[static_cast<std::size_t>(section)];
    switch (role) {
        case Qt::DisplayRole:
            return ToQString(Text(column.caption));
        case Qt::AccessibleTextRole:
            return ToQString(column.caption.value || !column.tooltip.value ? Heading(section)
                                                                           : Text(column.tooltip));
        case Qt::ToolTipRole:
            return ToQString(Text(column.tooltip));
        case Qt::TextAlignmentRole:
            return Alignment(section, true);
        case kIconRole:
            return column.headerIcon;
        default:
            return {};
    }
}

std::wstring GridModel::CellText(std::size_t record, int column) const {
    const GridColumn& description = columns_[static_cast<std::size_t>(column)];
    if (description.kind == CellKind::Flag) {
        return FlagText(record, column);
    }
    const GridCell cell = Cell(record, column);
    if (const auto* time = std::get_if<std::int64_t>(&cell)) {
        return DateText(*time, description.format);
    }
    return FormatCell(cell, NumberFormat(record, column));
}

// Both numbers have to fit a column of short names.
std::wstring GridModel::CountText(const GridColumn& column) const {
    const std::wstring shown = GroupedNumber(shown_.size());
    if (keeps_) {
        return FormatText(Text(text::kFooterShownOf), {shown, GroupedNumber(recordCount_)});
    }
    return column.footerFormat.value != 0 ? FormatText(Text(column.footerFormat), {shown}) : shown;
}

std::optional<std::wstring> GridModel::FooterText(int column) const {
    const GridColumn& description = columns_[static_cast<std::size_t>(column)];
    switch (description.footer) {
        case FooterKind::Count:
            return CountText(description);
        case FooterKind::Sum:
            return FormatText(GroupedFormat(description.format), {sums_[static_cast<std::size_t>(column)]});
        case FooterKind::None:
            break;
    }
    return std::nullopt;
}

std::size_t GridModel::ReadSearchText(int column, std::size_t most) const {
    GridSearchText& texts = searchTexts_[static_cast<std::size_t>(column)];
    const std::size_t end = std::min(recordCount_, texts.Size() + std::min(most, recordCount_));
    const std::size_t first = texts.Size();
    for (std::size_t record = first; record < end; ++record) {
        texts.Append(CellText(record, column));
    }
    return end - first;
}

const GridSearchText& GridModel::SearchText(int column) const {
    ReadSearchText(column, recordCount_);
    return searchTexts_[static_cast<std::size_t>(column)];
}

bool GridModel::PrepareSearch(const std::vector<int>& columns, std::size_t most) const {
    for (const int column : columns) {
        most -= ReadSearchText(column, most);
        if (most == 0) {
            return true;
        }
    }
    return false;
}

int GridModel::FindRow(int column, std::wstring_view start, int from) const {
    const std::wstring wanted = ToUpper(start);
    const int count = rowCount();
    for (int step = 0; step < count; ++step) {
        const int row = (std::max(from, 0) + step) % count;
        const std::wstring text = CellText(RecordOfRow(row), column);
        if (ToUpper(std::wstring_view(text).substr(0, wanted.size())) == wanted) {
            return row;
        }
    }
    return -1;
}

GridCell GridModel::SortValue(std::size_t record, int column) const {
    return Cell(record, column);
}

const wchar_t* GridModel::NumberFormat(std::size_t, int column) const {
    const wchar_t* format = columns_[static_cast<std::size_t>(column)].format;
    return *format ? format : L"%g";
}

std::wstring GridModel::FlagText(std::size_t record, int column) const {
    const GridCell cell = Cell(record, column);
    const auto* number = std::get_if<double>(&cell);
    return number == nullptr ? FormatCell(cell, L"") : (*number != 0 ? L"true" : L"false");
}

std::wstring GridModel::Heading(int column) const {
    const GridColumn& description = columns_[static_cast<std::size_t>(column)];
    const bool isFlag = description.kind == CellKind::Flag && description.caption.value == 0;
    return Text(isFlag ? text::kGridStatusHeading : description.caption);
}

int GridModel::Icon(std::size_t, int) const {
    return -1;
}

std::wstring GridModel::Tooltip(std::size_t, int) const {
    return {};
}

std::optional<QColor> GridModel::TextColour(std::size_t, int) const {
    return std::nullopt;
}

}  // namespace orvex
