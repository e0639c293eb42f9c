#include "dialog/grid/GridView.h"

#include <gmock/gmock.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>
#include <QWheelEvent>
#include <functional>

#include "dialog/grid/GridFooter.h"
#include "dialog/grid/tests/SampleModel.h"
#include "support/QtText.h"
#include "support/testing/Scripted.h"

namespace orvex::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class GridViewTest : public ::testing::Test {
  protected:
    void SetUp() override {
        view_.SetModel(&model_);
        view_.resize(500, 240);
        view_.show();
        view_.activateWindow();
        Settle();
    }

    static void Settle() { QCoreApplication::processEvents(); }

    void AddMany(int count) {
        std::vector<SampleRecord> records;
        records.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            records.push_back({L"f" + std::to_wstring(i), static_cast<double>(count - i)});
        }
        model_.Append(records);
        Settle();
    }
    static void ClickHeader(QTableView* table, int column) {
        const QHeaderView* header = table->horizontalHeader();
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                          QPoint(header->sectionViewportPosition(column) + 12, header->height() / 2));
    }
    static void ClickRow(QTableView* table, int row, Qt::KeyboardModifiers keys = {}) {
        QTest::mouseClick(table->viewport(), Qt::LeftButton, keys,
                          QPoint(4, table->rowViewportPosition(row) + 4));
    }

    SampleModel model_;
    ScriptedPrompts prompts_;
    GridView view_{prompts_};
};

TEST_F(GridViewTest, AFailureIsToldAndTheListStays) {
    struct Case {
        const wchar_t* handler;  ///< empty: a cell stays empty, without a word
        std::function<void()> act;
    };
    const auto trigger = [&](const char* name) { view_.findChild<QAction*>(name)->trigger(); };
    const QHeaderView* header = view_.Table()->horizontalHeader();
    const Case cases[] = {
        {L"OnCopy", [&] { trigger("copy"); }},
        {L"OnCopy", [&] { trigger("copyRows"); }},
        {L"OnFitColumns", [&] { trigger("fitColumns"); }},
        {L"OnFitColumn",
         [&] {
             const int end = header->sectionViewportPosition(kSize) + header->sectionSize(kSize) - 1;
             QTest::mouseMove(header->viewport(), QPoint(end, 4));
             QTest::mouseDClick(header->viewport(), Qt::LeftButton, {}, QPoint(end, 4));
         }},
        {L"OnSort", [&] { ClickHeader(view_.Table(), kSize); }},
        {L"OnSearch", [&] { view_.Table()->keyboardSearch("b"); }},
        {L"", [&] { view_.grab(); }},
        {L"", [&] { view_.resize(view_.width() + 20, view_.height()); }},
    };
    model_.Append({{L"b", 3.0}, {L"c", 1.0}, {L"a", 2.0}});
    Settle();
    view_.SelectAll();
    for (const Case& c : cases) {
        prompts_.shown.clear();
        model_.fails = true;
        EXPECT_NO_THROW(c.act()) << ToUtf8(c.handler);
        Settle();
        model_.fails = false;
        ASSERT_EQ(prompts_.shown.empty(), *c.handler == 0) << ToUtf8(c.handler);
        if (*c.handler != 0) {
            EXPECT_TRUE(prompts_.shown[0].text.starts_with(L"An exception occurred in " +
                                                           std::wstring(c.handler) + L"()"));
        }
        EXPECT_THAT(model_.Names(), ElementsAre(L"b", L"c", L"a"));
    }
    ClickHeader(view_.Table(), kSize);
    EXPECT_THAT(model_.Names(), ElementsAre(L"c", L"a", L"b")) << "it goes on afterwards";
    model_.fails = true;
    EXPECT_THROW(model_.Append({{L"d", 0.0}}), std::bad_alloc);
    model_.fails = false;
    model_.Append({{L"e", 5.0}});
    EXPECT_THAT(model_.Names(), ElementsAre(L"c", L"a", L"b", L"d", L"e"));
    EXPECT_EQ(model_.SortColumn(), -1);
    ClickHeader(view_.Table(), kSize);
    EXPECT_THAT(model_.Names(), ElementsAre(L"d", L"c", L"a", L"b", L"e"));
}

TEST_F(GridViewTest, HeaderClicksGoUpDownAndBack) {
    model_.Append({{L"b", 3.0}, {L"c", 1.0}, {L"a", 2.0}});
    Settle();
    const auto indicator = [](QTableView* table) {
        return table->horizontalHeader()->sortIndicatorSection();
    };
    ClickHeader(view_.FrozenTable(), kName);
    EXPECT_THAT(model_.Names(), ElementsAre(L"a", L"b", L"c"));
    EXPECT_TRUE(view_.FrozenTable()->horizontalHeader()->isSortIndicatorShown());
    EXPECT_EQ(indicator(view_.FrozenTable()), kName);
    ClickHeader(view_.Table(), kSize);
    EXPECT_THAT(model_.Names(), ElementsAre(L"c", L"a", L"b"));
    EXPECT_EQ(indicator(view_.FrozenTable()), -1);
    EXPECT_EQ(indicator(view_.Table()), kSize);
    ClickHeader(view_.Table(), kSize);
    EXPECT_THAT(model_.Names(), ElementsAre(L"b", L"a", L"c"));
    EXPECT_EQ(view_.Table()->horizontalHeader()->sortIndicatorOrder(), Qt::DescendingOrder);
    ClickHeader(view_.Table(), kSize);
    EXPECT_THAT(model_.Names(), ElementsAre(L"b", L"c", L"a"));
    EXPECT_EQ(indicator(view_.Table()), -1);
    EXPECT_THAT(view_.SelectedRows(), IsEmpty()) << "a header selects nothing";
}

TEST_F(GridViewTest, FrozenColumnsStayWhileTheOthersScroll) {
    AddMany(50);
    QTableView* frozen = view_.FrozenTable();
    QTableView* table = view_.Table();
    const QRect place = frozen->geometry();
    EXPECT_EQ(frozen->width(), view_.ColumnWidth(kFlag) + view_.ColumnWidth(kName));
    const QRect name = view_.Footer()->CellRect(kName);
    const QRect modified = view_.Footer()->CellRect(kModified);
    EXPECT_EQ(view_.Footer()->CellRect(kSize).left(), table->x() - view_.Footer()->x());

    table->horizontalScrollBar()->setValue(37);
    table->verticalScrollBar()->setValue(133);
    EXPECT_EQ(frozen->geometry(), place);
    EXPECT_EQ(view_.Footer()->CellRect(kName), name);
    EXPECT_EQ(view_.Footer()->CellRect(kModified).left(), modified.left() - 37);
    EXPECT_EQ(frozen->rowViewportPosition(9), table->rowViewportPosition(9));
    frozen->verticalScrollBar()->setValue(12);
    EXPECT_EQ(table->verticalScrollBar()->value(), 12);
    table->verticalScrollBar()->setValue(table->verticalScrollBar()->maximum());
    EXPECT_EQ(frozen->rowViewportPosition(49), table->rowViewportPosition(49));
}

TEST_F(GridViewTest, SelectionSpansThePanesAndStaysWithItsRecords) {
    AddMany(12);
    QSignalSpy selected(&view_, &GridView::SelectionChanged);
    QSignalSpy current(&view_, &GridView::CurrentRowChanged);
    ClickRow(view_.FrozenTable(), 2);
    ClickRow(view_.Table(), 4, Qt::ShiftModifier);
    EXPECT_THAT(view_.SelectedRows(), ElementsAre(2, 3, 4));
    ClickRow(view_.FrozenTable(), 6, Qt::ControlModifier);
    EXPECT_THAT(view_.SelectedRows(), ElementsAre(2, 3, 4, 6));
    EXPECT_EQ(view_.CurrentRow(), 6);
    EXPECT_EQ(selected.count(), 3);
    EXPECT_EQ(current.count(), 3);

    model_.sort(kSize);
    EXPECT_THAT(view_.SelectedRows(), ElementsAre(5, 7, 8, 9));
    model_.AddNames({L"new", L"newer"});
    EXPECT_THAT(view_.SelectedRows(), ElementsAre(7, 9, 10, 11));
    EXPECT_EQ(view_.CurrentRow(), 7);
    model_.Remove({0, 1, 3});
    model_.sort(-1);
    EXPECT_THAT(view_.SelectedRows(), ElementsAre(0, 1, 3));
    AddMany(500);
    std::vector<std::size_t> odd;
    for (std::size_t record = 11; record < 500; record += 2) {
        odd.push_back(record);
    }
    model_.Remove(odd);
    EXPECT_THAT(view_.SelectedRows(), ElementsAre(0, 1, 3)) << "many scattered rows went";
    view_.SelectRows({1, 2, 5});
    EXPECT_THAT(view_.SelectedRows(), ElementsAre(1, 2, 5));
    model_.Clear();
    EXPECT_THAT(view_.SelectedRows(), IsEmpty());
    EXPECT_EQ(view_.CurrentRow(), -1);
}

TEST_F(GridViewTest, SelectionAndCurrentRowStayWithTheRecordsThatAFilterShows) {
    AddMany(1000);
    const auto keep = [this](std::size_t step) {
        model_.SetFilter([step](std::size_t record) { return record % step == 0; });
        Settle();
    };
    view_.SelectAll();
    keep(2);
    EXPECT_EQ(view_.SelectedRows().size(), 500U);
    model_.SetFilter({});
    EXPECT_EQ(view_.SelectedRows().size(), 500U) << "hidden rows are not selected when they come back";
    ClickRow(view_.Table(), 4);
    ClickRow(view_.Table(), 6, Qt::ControlModifier);
    keep(3);
    EXPECT_THAT(view_.SelectedRows(), ElementsAre(2));
    EXPECT_EQ(view_.CurrentRow(), 2);
    view_.Table()->verticalScrollBar()->setValue(2000);
    model_.SetFilter({});
    EXPECT_THAT(view_.SelectedRows(), ElementsAre(6));
    EXPECT_EQ(view_.CurrentRow(), 6);
    EXPECT_GE(view_.Table()->rowViewportPosition(6), 0) << "the current row is in sight";
    view_.Table()->verticalScrollBar()->setValue(2000);
    keep(4);
    EXPECT_EQ(view_.CurrentRow(), -1) << "its record is hidden";
    EXPECT_EQ(view_.Table()->verticalScrollBar()->value(), 0) << "what was found begins at the top";
}

TEST_F(GridViewTest, KeysWorkOnRows) {
    model_.AddNames({L"beta", L"alpha", L"alps", L"gamma"});
    Settle();
    QTableView* table = view_.Table();
    table->setFocus();
    QTest::keyClicks(table, "AL");
    EXPECT_EQ(view_.CurrentRow(), 1);
    QTest::keyClicks(table, "ps");
    EXPECT_EQ(view_.CurrentRow(), 2);
    QTest::keyClick(table, Qt::Key_Home);
    EXPECT_EQ(view_.CurrentRow(), 0);
    QTest::keyClick(table, Qt::Key_End, Qt::ShiftModifier);
    EXPECT_THAT(view_.SelectedRows(), ElementsAre(0, 1, 2, 3));
    QTest::keyClick(table, Qt::Key_Right);
    EXPECT_EQ(view_.CurrentRow(), 3);
    EXPECT_GT(table->horizontalScrollBar()->value(), 0);

    QSignalSpy remove(&view_, &GridView::RemoveRequested);
    view_.ClearSelection();
    QTest::keyClick(table, Qt::Key_Delete);
    EXPECT_EQ(remove.count(), 0);
    QTest::keyClick(table, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(view_.SelectedRows().size(), 4U);
    QTest::keyClick(table, Qt::Key_Delete);
    EXPECT_EQ(remove.count(), 1);
}

TEST_F(GridViewTest, CopiesWhatIsShownOfTheSelectedRows) {
    model_.Append({{L"a", 1.0}, {L"b", 2.0}, {L"c", 3.0, {}, false}});
    view_.ShowDetailColumns(false);
    Settle();
    view_.SelectRows({0, 2});
    view_.Table()->setFocus();
    QTest::keyClick(view_.Table(), Qt::Key_C, Qt::ControlModifier);
    const std::wstring rows =
        L"OK\ta\t1.00\tSummary of a second line of it\t/data/a\n"
        L"Error\tc\t3.00\tSummary of c second line of it\t/data/c\n";
    const std::wstring headers = Text(text::kGridStatusHeading) + L"\t" +
                                 Text(text::kGridCopyWithoutHeaders) + L"\t" + Text(text::kGridSelectAll) +
                                 L"\t" + Text(text::kGridAccessibleName) + L"\t" + Text(text::kGridCopy) +
                                 L"\n";
    EXPECT_EQ(ToWide(QApplication::clipboard()->text()), headers + rows);
    view_.findChild<QAction*>("copyRows")->trigger();
    EXPECT_EQ(ToWide(QApplication::clipboard()->text()), rows);

    QApplication::clipboard()->setText("kept");
    view_.ClearSelection();
    view_.CopySelection();
    EXPECT_EQ(QApplication::clipboard()->text(), QString("kept"));
}

TEST_F(GridViewTest, FittingKeepsTheLimits) {
    model_.AddNames({L"a", L"a name so long that its column must become wider than it was"});
    view_.Table()->setColumnWidth(kSize, 500);
    view_.FitColumns();
    EXPECT_EQ(view_.ColumnWidth(kSize), 500) << "the user has set it";
    view_.findChild<QAction*>("fitColumns")->trigger();
    EXPECT_EQ(view_.ColumnWidth(kFlag), 20) << "cannot be resized";
    EXPECT_EQ(view_.ColumnWidth(kPath), 0) << "hidden";
    EXPECT_GT(view_.ColumnWidth(kName), 300);
    EXPECT_LT(view_.ColumnWidth(kSize), 300) << "narrowed";
    EXPECT_GE(view_.ColumnWidth(kModified), 130) << "least width";
    EXPECT_EQ(view_.ColumnWidth(kSummary), 400) << "widest fit";

    view_.Table()->setColumnWidth(kSummary, 500);
    EXPECT_EQ(view_.ColumnWidth(kSummary), 500) << "the user may go beyond";
    view_.Table()->setColumnWidth(kModified, 40);
    EXPECT_EQ(view_.ColumnWidth(kModified), 130) << "but not below the least width";
    model_.Append({{L"b", 1e17}});
    view_.FitColumn(kSize);
    const QString sum = ToQString(*model_.FooterText(kSize));
    EXPECT_GE(view_.ColumnWidth(kSize), view_.fontMetrics().horizontalAdvance(sum));
    EXPECT_LE(view_.FrozenTable()->width(), view_.width() * 6 / 10) << "room is left to scroll in";
    AddMany(100'000);
    model_.cellsAsked = 0;
    view_.FitColumns();
    EXPECT_LE(model_.cellsAsked, 300U * 8U) << "whatever the number of rows";
}

TEST_F(GridViewTest, AMessageIsNotCutOffBecauseOtherRowsWereMeasured) {
    view_.ShowDetailColumns(false);
    model_.AddNames({L"a"});
    view_.FitColumns();
    constexpr int kWidest = 400;  // of the column, which letters of some systems come to
    const auto room = [this](const std::wstring& name) {
        return std::min(kWidest - 1, view_.fontMetrics().horizontalAdvance(
                                         ToQString(L"Summary of " + name + L" second line of it")));
    };
    AddMany(1000);
    view_.FitColumns();
    const std::wstring long_ = L"ten more x";
    ASSERT_LE(view_.ColumnWidth(kSummary), room(long_) + 1);
    model_.AddNames({long_});
    EXPECT_GT(view_.ColumnWidth(kSummary), room(long_)) << "it arrived later, out of sight";
    view_.FitColumns();
    EXPECT_GT(view_.ColumnWidth(kSummary), room(long_)) << "it is none of the rows that are measured";
    model_.SetFilter([](std::size_t record) { return record == 0; });
    model_.Replace(500, {std::wstring(100, L'W'), 1.0});
    EXPECT_EQ(view_.ColumnWidth(kSummary), kWidest) << "it was read again";

    view_.resize(1000, 240);
    Settle();
    const QTableView* table = view_.Table();
    EXPECT_EQ(table->horizontalHeader()->length(), table->viewport()->width()) << "it has the spare width";
    view_.ShowDetailColumns(true);
    Settle();
    EXPECT_EQ(
        view_.ColumnWidth(kSummary),
        std::max(kWidest, table->viewport()->width() - table->horizontalHeader()->sectionPosition(kSummary)))
        << "a long message has what is in sight, beyond its column's widest fit";
    view_.resize(500, 240);
    Settle();
    EXPECT_EQ(view_.ColumnWidth(kSummary), 400);
    view_.Table()->setColumnWidth(kSummary, 70);
    view_.resize(1800, 240);
    view_.ShowDetailColumns(false);
    Settle();
    EXPECT_EQ(view_.ColumnWidth(kSummary), 70) << "unless the user has set another";
}

TEST_F(GridViewTest, TheMessageCoversTheWholeEmptyTable) {
    view_.SetEmptyText("Nothing");
    const auto* message = view_.findChild<QLabel*>();
    for (const int width : {2000, 20, 2000}) {  // with and without a scroll bar
        for (const int column : {kSize, kModified, kSummary, kMore}) {
            view_.Table()->setColumnWidth(column, width);
        }
        Settle();
        Settle();  // the scroll bar has come or gone
        EXPECT_EQ(message->geometry().bottom() + 1, view_.Footer()->y()) << width;
    }
}

TEST_F(GridViewTest, ColumnsAreTheUsersChoice) {
    AddMany(3);
    const auto press = [this](const char* name) {
        const QMenu* menu = view_.HeaderMenu();
        for (QAction* action : menu->actions()) {
            if (action->objectName() == name && action->isEnabled()) {
                action->trigger();
                return true;
            }
        }
        return false;
    };
    EXPECT_FALSE(press("path")) << "never shown";
    EXPECT_FALSE(press("name")) << "frozen";
    EXPECT_TRUE(press("more"));
    EXPECT_TRUE(press("size"));
    EXPECT_THAT(view_.ShownColumns(), ElementsAre(kFlag, kName, kModified, kSummary));
    view_.ShowDetailColumns(false);
    EXPECT_THAT(view_.ShownColumns(), ElementsAre(kFlag, kName, kSummary));
    EXPECT_TRUE(press("modified"));
    EXPECT_TRUE(press("more"));
    view_.ShowDetailColumns(true);
    EXPECT_THAT(view_.ShownColumns(), ElementsAre(kFlag, kName, kModified, kSummary, kMore));
    view_.Table()->setColumnWidth(kModified, 333);
    view_.FrozenTable()->setColumnWidth(kName, 77);
    model_.sort(kName, Qt::DescendingOrder);
    const std::string state = view_.SaveState();

    GridView other(prompts_);
    other.SetModel(&model_);
    const std::string first = other.SaveState();
    for (const char* damaged :
         {"", "columns", "columns 2\n", "columns 1\nwidth name", "columns 1\nwidth name 1e3\n",
          "columns 1\nwidth name -5\n", "columns 1\nshown size no\nwidth length 40\n",
          "columns 1\nshown path yes\n", "columns 1\nshown size\n", "columns 1\nsort size\n",
          "columns 1\nshown size no no\n", "columns 1\nwidth name 99999999999\n"}) {
        other.RestoreState(damaged);
        EXPECT_EQ(other.SaveState(), first) << damaged;
    }
    model_.sort(-1);
    other.RestoreState(state);
    EXPECT_EQ(other.SaveState(), state);
    EXPECT_THAT(other.ShownColumns(), ElementsAre(kFlag, kName, kModified, kSummary, kMore));
    EXPECT_EQ(other.ColumnWidth(kModified), 333);
    EXPECT_EQ(other.ColumnWidth(kName), 77);
    EXPECT_EQ(model_.SortColumn(), kName);
    EXPECT_EQ(model_.SortOrder(), Qt::DescendingOrder);

    EXPECT_TRUE(press("fit"));
    EXPECT_NE(view_.ColumnWidth(kModified), 333);
    EXPECT_TRUE(press("reset"));
    EXPECT_THAT(view_.ShownColumns(), ElementsAre(kFlag, kName, kSize, kModified, kSummary, kMore));
    EXPECT_EQ(prompts_.shown.size(), 0U);
}

TEST_F(GridViewTest, WhatFollowsARemovedRowIsSelected) {
    struct Case {
        std::vector<int> rows;
        std::wstring next;  ///< empty: nothing is left
    };
    const Case cases[] = {{{1}, L"c"}, {{0, 2}, L"d"}, {{3}, L"c"}, {{2, 3}, L"b"}, {{0, 1, 2, 3}, L""}};
    for (const Case& c : cases) {
        model_.Clear();
        model_.AddNames({L"d", L"b", L"a", L"c"});
        model_.sort(kName);
        view_.SelectRows(c.rows);
        view_.RemoveSelection([this](const auto& records) { model_.Remove(records); });
        const std::vector<int> selected = view_.SelectedRows();
        ASSERT_EQ(selected.size(), c.next.empty() ? 0U : 1U);
        EXPECT_EQ(view_.CurrentRow(), c.next.empty() ? -1 : selected[0]);
        EXPECT_TRUE(c.next.empty() || model_.Names()[static_cast<std::size_t>(selected[0])] == c.next);
    }
}

TEST_F(GridViewTest, ReturnAndADoubleClickActivateARow) {
    AddMany(3);
    QSignalSpy activated(&view_, &GridView::ActivateRequested);
    QTableView* table = view_.Table();
    table->setFocus();
    ClickRow(table, 1);
    const std::pair<int, Qt::KeyboardModifiers> keys[] = {
        {Qt::Key_Return, {}}, {Qt::Key_Enter, Qt::KeypadModifier}, {Qt::Key_Return, Qt::ControlModifier}};
    for (const auto& [key, modifiers] : keys) {
        QKeyEvent press(QEvent::KeyPress, key, modifiers);
        QCoreApplication::sendEvent(table, &press);
        EXPECT_EQ(press.isAccepted(), modifiers != Qt::ControlModifier);
    }
    EXPECT_EQ(activated.count(), 2);
    ClickRow(view_.FrozenTable(), 2);
    QTest::mouseDClick(view_.FrozenTable()->viewport(), Qt::LeftButton, {},
                       QPoint(4, table->rowViewportPosition(2) + 4));
    EXPECT_EQ(activated.count(), 3);
}

TEST_F(GridViewTest, TheWheelWithShiftScrollsSideways) {
    AddMany(50);
    for (const QTableView* pane : {view_.FrozenTable(), view_.Table()}) {
        view_.Table()->horizontalScrollBar()->setValue(0);
        QWheelEvent wheel({5, 5}, pane->viewport()->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, {},
                          Qt::ShiftModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(pane->viewport(), &wheel);
        EXPECT_GT(view_.Table()->horizontalScrollBar()->value(), 0);
        EXPECT_EQ(view_.Table()->verticalScrollBar()->value(), 0);
    }
}

}  // namespace
}  // namespace orvex::testing
