#include "dialog/page/RowFinder.h"

#include <QItemSelectionModel>
#include <QTableView>
#include <algorithm>
#include <memory>

#include "dialog/grid/GridFilter.h"
#include "dialog/grid/GridView.h"
#include "dialog/page/FilterLine.h"
#include "dialog/page/ListModel.h"
#include "dialog/page/ListStatus.h"
#include "support/HandlerGuard.h"
#include "support/QtText.h"
#include "support/Text.h"

namespace orvex {
namespace {

// A longer list is counted and filtered once the user or the reading pauses.
constexpr std::size_t kLongList = 5000;
constexpr int kPauseMs = 150;

}  // namespace

RowFinder::RowFinder(GridView& grid, UserPrompts& prompts, const std::vector<QIcon>& images)
    : QObject(&grid),
      grid_(grid),
      prompts_(prompts),
      line_(new FilterLine(images)),
      status_(new ListStatus(images)) {
    for (QTimer* timer : {&countLater_, &filterLater_}) {
        timer->setSingleShot(true);
        timer->setInterval(kPauseMs);
    }
    readAhead_.setSingleShot(true);
}

void RowFinder::Start(ListRows& rows, const QString& emptyText) {
    rows_ = &rows;
    emptyText_ = emptyText;
    connect(rows_, &GridModel::RecordsChanged, this,
            Guarded(prompts_, L"OnRecords", [this] { OnRecords(); }));
    connect(&countLater_, &QTimer::timeout, this, Guarded(prompts_, L"CountRows", [this] { Count(); }));
    connect(&filterLater_, &QTimer::timeout, this, Guarded(prompts_, L"FilterRows", [this] { Filter(); }));
    connect(&readAhead_, &QTimer::timeout, this, Guarded(prompts_, L"ReadAhead", [this] {
        if (rows_->PrepareSearch(grid_.ShownColumns())) {
            readAhead_.start();
        }
    }));
    connect(line_, &FilterLine::EditingStarted, &readAhead_, qOverload<>(&QTimer::start));
    ConnectLine();
    ConnectStatus();
    OnRecords();
}

void RowFinder::ConnectLine() {
    connect(line_, &FilterLine::Changed, this, Guarded(prompts_, L"FilterRows", [this] {
                if (IsLong()) {
                    filterLater_.start();
                } else {
                    Filter();
                }
            }));
    connect(line_, &FilterLine::MenuAboutToShow, this, Guarded(prompts_, L"CountRows", [this] {
                line_->ShowCounts(PropertyCounts(*rows_), rows_->Count());
            }));
    connect(line_, &FilterLine::LeaveRequested, this,
            Guarded(prompts_, L"OnLeaveFilter", [this] { GoToList(); }));
}

void RowFinder::ConnectStatus() {
    connect(status_, &ListStatus::SelectRequested, this,
            Guarded(prompts_, L"OnSelectCounted", [this](RowProperty property) {
                Select(RecordsWith(*rows_, property));
                grid_.setFocus();
            }));
    connect(status_, &ListStatus::RemoveRequested, this,
            Guarded(prompts_, L"OnRemoveCounted",
                    [this](RowProperty property) { emit RemoveRequested(RecordsWith(*rows_, property)); }));
}

void RowFinder::Detach() {
    rows_->disconnect(this);
    line_->disconnect(this);
    status_->disconnect(this);
    countLater_.stop();
    filterLater_.stop();
    readAhead_.stop();
    rows_ = nullptr;
}

bool RowFinder::IsLong() const {
    return rows_->Count() > kLongList;
}

void RowFinder::OnRecords() {
    const bool hasRows = rows_->Count() > 0;
    if (!hasRows) {
        line_->Clear();  // files added later would be missed
    }
    line_->setEnabled(hasRows);
    if (line_->IsInUse()) {
        readAhead_.start();
    }
    grid_.SetEmptyText(hasRows ? ToQString(Text(text::kFilterNothing)) : emptyText_);
    if (!IsLong()) {
        Count();
    } else if (!countLater_.isActive()) {
        countLater_.start();
    }
}

void RowFinder::Count() {
    status_->ShowCounts(PropertyCounts(*rows_));
    // Another CRS may be that of most rows now.
    if (line_->Property() == RowProperty::OtherCrs && MostFrequentCrs(*rows_) != mostFrequentCrs_) {
        filterLater_.start();
    }
}

void RowFinder::Filter() {
    filterLater_.stop();
    const auto words = std::make_shared<GridFilter>(line_->Words(), *rows_, grid_.ShownColumns());
    line_->ShowProblem(words->Problem());
    const std::optional<RowProperty> property = line_->Property();
    if (!property && words->IsEmpty()) {
        rows_->SetFilter({});
        return;
    }
    mostFrequentCrs_ = MostFrequentCrs(*rows_);
    rows_->SetFilter([rows = rows_, words, property, most = mostFrequentCrs_](std::size_t record) {
        return (!property || HasProperty(rows->Traits(record), *property, most)) && words->Keeps(record);
    });
}

void RowFinder::GoToList() {
    if (filterLater_.isActive()) {
        Filter();
    }
    grid_.setFocus();
    if (grid_.SelectedRows().empty() && rows_->rowCount() > 0) {
        Select(std::vector{rows_->RecordOfRow(0)});
    }
}

void RowFinder::Select(std::span<const std::size_t> records) {
    const auto rowOf = [this](std::size_t record) { return rows_->RowOfRecord(record); };
    if (std::ranges::any_of(records, [&](std::size_t record) { return rowOf(record) < 0; })) {
        line_->Clear();
        Filter();
    }
    std::vector<int> rows(records.size());
    std::ranges::transform(records, rows.begin(), rowOf);
    std::ranges::sort(rows);
    std::erase_if(rows, [](int row) { return row < 0; });
    grid_.SelectRows(rows);
    if (!rows.empty()) {
        const QModelIndex first = rows_->index(rows.front(), 0);
        grid_.Table()->selectionModel()->setCurrentIndex(first, QItemSelectionModel::NoUpdate);
        grid_.Table()->scrollTo(first);
    }
}

}  // namespace orvex
