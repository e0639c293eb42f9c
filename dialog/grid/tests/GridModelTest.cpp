#include "dialog/grid/GridModel.h"

#include <gmock/gmock.h>

#include <QAbstractItemModelTester>
#include <QItemSelectionModel>
#include <algorithm>
#include <random>

#include "dialog/grid/GridText.h"
#include "dialog/grid/tests/SampleModel.h"
#include "support/QtText.h"

namespace orvex::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using Names = std::vector<std::wstring>;
constexpr auto kUp = Qt::AscendingOrder;
constexpr auto kDown = Qt::DescendingOrder;
using Tester = QAbstractItemModelTester;
constexpr auto kFail = Tester::FailureReportingMode::Fatal;

TEST(GridModelTest, StaysConsistentThroughEveryChange) {
    SampleModel model;
    const Tester tester(&model, kFail);
    for (const int column : {-1, +kName, +kSize}) {
        model.sort(column, kDown);
        model.Add({});
        model.AddNames({L"c", L"a", L"b"});
        model.AddNames({L"e", L"d"});
        model.Remove({1, 3});
        model.Change(0, {L"z", 5.0});
        EXPECT_EQ(model.rowCount(), 3);
        for (int row = 0; row < model.rowCount(); ++row) {
            EXPECT_EQ(model.RowOfRecord(model.RecordOfRow(row)), row);
        }
        EXPECT_EQ(model.RowOfRecord(3), -1);
        model.Remove({0, 1, 2});
        model.Clear();
        EXPECT_EQ(model.rowCount(), 0);
        model.AddNames({L"x"});
        model.Clear();
    }
}

// What a name that is no UTF-8 holds.
TEST(GridModelTest, LoneSurrogatesStayAsTheyAre) {
    const std::wstring name = L"tile" + FromUtf8("\xE9") + L".las";
    SampleModel model;
    model.AddNames({name});
    EXPECT_EQ(ToWide(model.data(model.index(0, kName), Qt::DisplayRole).toString()), name);
    EXPECT_EQ(model.FindRow(kName, name, 0), 0);
}

struct SortCase {
    const char* what;
    int column;
    std::vector<SampleRecord> records;
    Names ascending;
    Names descending;
};

TEST(GridModelTest, SortsByTypedValue) {
    const std::int64_t day = 86'400'000;
    const SortCase cases[] = {
        {"digits by value, case ignored",
         kName,
         {{L"tile10", {}}, {L"Tile9", {}}, {L"tile9b", {}}, {L"TILE1", {}}, {L"tile-2", {}}},
         {L"tile-2", L"TILE1", L"Tile9", L"tile9b", L"tile10"},
         {L"tile10", L"tile9b", L"Tile9", L"TILE1", L"tile-2"}},
        {"numbers longer than any integer, leading zeros, letters beyond ASCII",
         kName,
         {{L"x100000000000000000000000", {}},
          {L"x99999999999999999999999", {}},
          {L"x007", {}},
          {L"x8", {}},
          {L"\u00e4b", {}},
          {L"\u00c4a", {}}},
         {L"x007", L"x8", L"x99999999999999999999999", L"x100000000000000000000000", L"\u00c4a", L"\u00e4b"},
         {L"\u00e4b", L"\u00c4a", L"x100000000000000000000000", L"x99999999999999999999999", L"x8", L"x007"}},
        {"equal texts keep the order of adding both ways",
         kSummary,
         {{L"b", 2.0}, {L"B", 1.0}, {L"a", 0.0}, {L"b", 3.0}},
         {L"a", L"b", L"B", L"b"},
         {L"b", L"B", L"b", L"a"}},
        {"empty texts last both ways",
         kName,
         {{L"", {}}, {L"b", {}}, {L"a", {}}},
         {L"a", L"b", L""},
         {L"b", L"a", L""}},
        {"numbers by value, texts after them, nothing and NaN last both ways",
         kSize,
         {{L"nan", kNaN},
          {L"ten", 10.0},
          {L"text", std::wstring(L"5")},
          {L"nine", 9.0},
          {L"none", {}},
          {L"minus", -1e300},
          {L"nine again", 9.0}},
         {L"minus", L"nine", L"nine again", L"ten", L"text", L"nan", L"none"},
         {L"text", L"ten", L"nine", L"nine again", L"minus", L"nan", L"none"}},
        {"dates by time",
         kModified,
         {{L"late", {}, 20'000 * day}, {L"none", {}}, {L"early", {}, -day}, {L"mid", {}, 9 * day}},
         {L"early", L"mid", L"late", L"none"},
         {L"late", L"mid", L"early", L"none"}},
    };
    for (const SortCase& c : cases) {
        SCOPED_TRACE(c.what);
        SampleModel model;
        model.Add(c.records);
        const Names added = model.Names();
        model.sort(c.column, kUp);
        EXPECT_THAT(model.Names(), ElementsAreArray(c.ascending));
        model.sort(c.column, kDown);
        EXPECT_THAT(model.Names(), ElementsAreArray(c.descending));
        model.sort(-1);
        EXPECT_THAT(model.Names(), ElementsAreArray(added));
    }
}

// Whatever the batches, the rows are those of sorting everything at once.
TEST(GridModelTest, BatchesAreMergedIntoTheSortOrder) {
    std::mt19937 random(7);
    for (const auto order : {kUp, kDown}) {
        SampleModel batched;
        SampleModel whole;
        batched.sort(kName, order);
        for (std::size_t size : {3U, 1U, 40U, 2U, 100U}) {
            Names batch;
            for (std::size_t i = 0; i < size; ++i) {
                batch.push_back((random() % 2 ? L"File" : L"file") + std::to_wstring(random() % 30));
            }
            batched.AddNames(batch);
            whole.AddNames(batch);
        }
        std::vector<std::size_t> gone;
        for (std::size_t record = 0; record < 146; record += 3) {
            gone.push_back(record);
        }
        batched.Remove(gone);
        whole.Remove(gone);
        batched.AddNames({L"FILE3", L"zz", L"aa"});
        whole.AddNames({L"FILE3", L"zz", L"aa"});
        whole.sort(kName, order);
        EXPECT_THAT(batched.Names(), ElementsAreArray(whole.Names()));
    }
}

TEST(GridModelTest, ChangedCellsMoveOnlyWhenTheOrderDemandsIt) {
    SampleModel model;
    model.AddNames({L"b", L"a", L"c"});
    model.sort(kName, kUp);
    int moves = 0;
    QObject::connect(&model, &QAbstractItemModel::layoutChanged, [&moves] { ++moves; });
    model.Change(0, {L"bb", 1.0});
    EXPECT_EQ(moves, 0);
    model.Change(0, {L"d", 1.0});
    EXPECT_EQ(moves, 1);
    EXPECT_THAT(model.Names(), ElementsAre(L"a", L"c", L"d"));
    // A value that became equal goes where the order of adding puts it.
    model.Change(1, {L"d", 1.0});
    EXPECT_THAT(model.RecordOfRow(1), 0U);
}

Names SelectedNames(const SampleModel& model, const QItemSelectionModel& selection) {
    Names names;
    for (const QModelIndex& index : selection.selectedRows(kName)) {
        names.push_back(model.CellText(model.RecordOfRow(index.row()), kName));
    }
    std::sort(names.begin(), names.end());
    return names;
}

TEST(GridModelTest, SelectionAndCurrentRowStayWithTheirRecords) {
    SampleModel model;
    const Tester tester(&model, kFail);
    QItemSelectionModel selection(&model);
    const auto rows = QItemSelectionModel::Select | QItemSelectionModel::Rows;
    model.AddNames({L"m", L"c", L"x", L"a"});
    selection.setCurrentIndex(model.index(1, kName), rows);
    selection.select(model.index(2, 0), rows);
    const auto check = [&](const char* what) {
        SCOPED_TRACE(what);
        EXPECT_THAT(SelectedNames(model, selection), ElementsAre(L"c", L"x"));
        EXPECT_EQ(selection.currentIndex().data().toString(), QString("c"));
    };
    model.sort(kName, kUp);
    check("sorted up");
    model.AddNames({L"b", L"d", L"z"});
    check("batch merged");
    model.sort(kName, kDown);
    check("sorted down");
    model.Remove({0, 3, 5});
    check("others removed");
    model.sort(-1);
    check("order of adding");

    Names many;
    for (int i = 0; i < 500; ++i) {
        many.push_back(L"n" + std::to_wstring(i));
    }
    model.AddNames(many);
    std::vector<std::size_t> odd;
    for (std::size_t record = 5; record < 500; record += 2) {
        odd.push_back(record);
    }
    model.Remove(odd);
    check("many scattered rows removed");
    EXPECT_EQ(model.rowCount(), 504 - static_cast<int>(odd.size()));
}

// Rows go one range at a time; meanwhile the rows that stay must read as before.
TEST(GridModelTest, RowsReadRightWhileOthersGo) {
    SampleModel model;
    model.AddNames({L"a", L"b", L"c", L"d", L"e"});
    model.sort(kName, kDown);
    std::vector<Names> seen;
    QObject::connect(&model, &QAbstractItemModel::rowsRemoved, [&] {
        Names names;
        for (int row = 0; row < model.rowCount(); ++row) {
            const std::size_t record = model.RecordOfRow(row);
            names.push_back(model.CellText(record, kName));
            EXPECT_EQ(model.RowOfRecord(record), row);
        }
        seen.push_back(names);
    });
    model.Remove({1, 3});
    EXPECT_THAT(seen, ElementsAre(Names{L"e", L"d", L"c", L"a"}, Names{L"e", L"c", L"a"}));
}

TEST(GridModelTest, FooterFollowsEachBatchOnce) {
    SampleModel model;
    int announced = 0;
    QObject::connect(&model, &GridModel::RecordsChanged, [&announced] { ++announced; });
    const auto footer = [&model] {
        return model.FooterText(kName).value() + L" / " + model.FooterText(kSize).value();
    };
    EXPECT_EQ(footer(), L"0 / 0.00");
    model.Add({{L"a", 1.25}, {L"b", kNaN}, {L"c", {}}, {L"d", std::numeric_limits<double>::infinity()}});
    EXPECT_EQ(footer(), L"4 / 1.25");
    model.Add({{L"e", 1e15}, {L"f", 0.5}});
    EXPECT_EQ(footer(), L"6 / 1000000000000001.75");
    model.Remove({4});
    EXPECT_EQ(footer(), L"5 / 1.75");
    model.Change(0, {L"a", 2.0});
    EXPECT_EQ(footer(), L"5 / 2.50");
    model.Clear();
    EXPECT_EQ(footer(), L"0 / 0.00");
    EXPECT_EQ(announced, 5);
    EXPECT_FALSE(model.FooterText(kSummary).has_value());
}

TEST(GridModelTest, CellsAnswerTheirRoles) {
    SampleModel model;
    model.Add({{L"a", 1234567.891, std::int64_t{1'600'000'000'000}, false}, {L"b", kNaN}});
    const auto at = [&model](int row, int column, int role) { return model.index(row, column).data(role); };
    EXPECT_EQ(at(0, kSize, Qt::DisplayRole).toString(), QString("1234567.89"));
    EXPECT_EQ(at(0, kSize, GridModel::kSortRole).toDouble(), 1234567.891);
    EXPECT_EQ(at(0, kSize, Qt::TextAlignmentRole).toInt(), int(Qt::AlignRight | Qt::AlignVCenter));
    EXPECT_EQ(at(0, kMore, Qt::TextAlignmentRole).toInt(), int(Qt::AlignCenter));
    EXPECT_EQ(at(0, kName, Qt::TextAlignmentRole).toInt(), int(Qt::AlignLeft | Qt::AlignVCenter));
    EXPECT_EQ(at(0, kModified, Qt::DisplayRole).toString(), QString("2020-09-13"));
    EXPECT_EQ(at(1, kModified, Qt::DisplayRole).toString(), QString());
    EXPECT_EQ(at(1, kSize, Qt::DisplayRole).toString(), QString());
    EXPECT_EQ(at(0, kFlag, GridModel::kIconRole).toInt(), 1);
    EXPECT_TRUE(at(0, kFlag, Qt::DisplayRole).toString().isEmpty());
    EXPECT_EQ(at(0, kFlag, Qt::AccessibleTextRole).toString(), QString("false"));
}

TEST(GridModelTest, FindsRowsByTheirBeginning) {
    SampleModel model;
    model.AddNames({L"beta", L"Alpha", L"alps", L"gamma"});
    model.sort(kName, kUp);
    EXPECT_EQ(model.FindRow(kName, L"al", 0), 0);
    EXPECT_EQ(model.FindRow(kName, L"AL", 1), 1);
    EXPECT_EQ(model.FindRow(kName, L"al", 2), 0);
    EXPECT_EQ(model.FindRow(kName, L"x", 0), -1);
    model.Clear();
    EXPECT_EQ(model.FindRow(kName, L"a", 0), -1);
}

TEST(GridTextTest, RowsBecomeTabSeparatedLines) {
    SampleModel model;
    model.Add({{L"a", 1.0}, {L"b", 2.5}});
    model.sort(kName, kDown);
    EXPECT_EQ(TabSeparated(model, {0, 1}, {kFlag, kSummary, kSize}, false),
              L"true\tSummary of b second line of it\t2.50\n"
              L"true\tSummary of a second line of it\t1.00\n");
    const std::wstring headers = TabSeparated(model, {}, {kFlag, kName, kSize}, true);
    EXPECT_EQ(headers,
              L"\t" + Text(text::kGridCopyWithoutHeaders) + L"\t" + Text(text::kGridSelectAll) + L"\n");
    EXPECT_EQ(OnOneLine(L"\n a \r\n\t b\n"), L"a b");
}

}  // namespace
}  // namespace orvex::testing
