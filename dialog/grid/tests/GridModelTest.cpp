#include "dialog/grid/GridModel.h"

#include <gmock/gmock.h>

#include <QAbstractItemModelTester>
#include <algorithm>
#include <cmath>
#include <functional>
#include <random>
#include <stdexcept>

#include "dialog/grid/GridColours.h"
#include "dialog/grid/tests/SampleModel.h"
#include "support/Format.h"
#include "support/QtText.h"

namespace orvex::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using Names = std::vector<std::wstring>;
constexpr auto kUp = Qt::AscendingOrder;
constexpr auto kDown = Qt::DescendingOrder;

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
        {"digits by value, case ignored, letters beyond ASCII",
         kName,
         {{L"tile10", {}}, {L"Tile9", {}}, {L"TILE1", {}}, {L"\u00e4b", {}}, {L"\u00c4a", {}}},
         {L"TILE1", L"Tile9", L"tile10", L"\u00c4a", L"\u00e4b"},
         {L"\u00e4b", L"\u00c4a", L"tile10", L"Tile9", L"TILE1"}},
        {"beginnings in common, letters beyond one byte",
         kName,
         {{L"tile_\u0101a", {}},
          {L"tile_\u0100b", {}},
          {L"tile_\u00ffc", {}},
          {L"tile_", {}},
          {L"tile_12345678b", {}},
          {L"tile_12345678a", {}},
          {L"", {}}},
         {L"tile_", L"tile_12345678a", L"tile_12345678b", L"tile_\u0101a", L"tile_\u0100b", L"tile_\u00ffc",
          L""},
         {L"tile_\u00ffc", L"tile_\u0100b", L"tile_\u0101a", L"tile_12345678b", L"tile_12345678a", L"tile_",
          L""}},
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
        model.Append(c.records);
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
        const QAbstractItemModelTester tester(&batched,
                                              QAbstractItemModelTester::FailureReportingMode::Fatal);
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
        batched.Clear();
        EXPECT_EQ(batched.rowCount(), 0);
        EXPECT_EQ(batched.RowOfRecord(0), -1);
    }
}

TEST(GridModelTest, ChangedCellsMoveOnlyWhenTheOrderDemandsIt) {
    SampleModel model;
    model.AddNames({L"b", L"a", L"c"});
    model.sort(kName, kUp);
    int moves = 0;
    QObject::connect(&model, &QAbstractItemModel::layoutChanged, [&moves] { ++moves; });
    model.Replace(0, {L"bb", 1.0});
    EXPECT_EQ(moves, 0);
    model.Replace(0, {L"d", 1.0});
    EXPECT_EQ(moves, 1);
    EXPECT_THAT(model.Names(), ElementsAre(L"a", L"c", L"d"));
    // A value that became equal goes where the order of adding puts it.
    model.Replace(1, {L"d", 1.0});
    EXPECT_THAT(model.RecordOfRow(1), 0U);
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
    model.Append({{L"a", 1.25}, {L"b", kNaN}, {L"c", {}}, {L"d", std::numeric_limits<double>::infinity()}});
    EXPECT_EQ(footer(), L"4 / 1.25");
    model.Append({{L"e", 1e15}, {L"f", 0.5}});
    EXPECT_EQ(footer(), FormatText(L"6 / %'.2f", {1e15 + 1.75}));
    model.Remove({4});
    EXPECT_EQ(footer(), L"5 / 1.75");
    model.Replace(0, {L"a", 2.0});
    EXPECT_EQ(footer(), L"5 / 2.50");
    model.Clear();
    EXPECT_EQ(footer(), L"0 / 0.00");
    EXPECT_EQ(announced, 5);
    EXPECT_FALSE(model.FooterText(kSummary).has_value());
}

// Whatever happens while a filter is on, the rows are those of a sorted model that the filter keeps.
TEST(GridModelTest, TheFilterHoldsThroughEveryChange) {
    SampleModel model;
    SampleModel whole;
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    std::mt19937 random(11);
    std::wstring wanted;
    const auto both = [&](const std::function<void(SampleModel&)>& act) { act(model), act(whole); };
    const auto filter = [&](const std::wstring& part) {
        wanted = part;
        model.SetFilter(part.empty() ? std::function<bool(std::size_t)>() : [&](std::size_t record) {
            return model.Rows()[record].name.find(wanted) != std::wstring::npos;
        });
    };
    const auto expectFiltered = [&](const char* when) {
        SCOPED_TRACE(when);
        Names names = whole.Names();
        std::erase_if(names, [&](const std::wstring& name) { return name.find(wanted) == name.npos; });
        EXPECT_THAT(model.Names(), ElementsAreArray(names));
        EXPECT_THAT(model.RecordsInOrder(), ElementsAreArray(whole.RecordsInOrder()));
        const std::wstring count = std::to_wstring(names.size());
        const std::wstring all = std::to_wstring(whole.Count());
        EXPECT_EQ(model.FooterText(kName),
                  wanted.empty() ? count : FormatText(Text(text::kFooterShownOf), {count, all}));
        EXPECT_EQ(model.FooterText(kSize), FormatText(L"%.2f", {static_cast<double>(names.size())}));
        for (std::size_t record = 0; record < model.Count(); ++record) {
            const int row = model.RowOfRecord(record);
            EXPECT_TRUE(row < 0 || model.RecordOfRow(row) == record);
        }
    };
    const auto add = [&](std::size_t count) {
        Names names;
        for (std::size_t i = 0; i < count; ++i) {
            names.push_back((random() % 2 ? L"File" : L"tile") + std::to_wstring(random() % 60));
        }
        both([&](SampleModel& m) { m.AddNames(names); });
    };
    filter(L"3");
    expectFiltered("empty");
    add(200);
    expectFiltered("added");
    both([](SampleModel& m) { m.sort(kName, kDown); });
    expectFiltered("sorted");
    add(30);
    expectFiltered("added while sorted");
    filter(L"tile");
    expectFiltered("many scattered rows hidden and shown");
    std::vector<std::size_t> gone;
    for (std::size_t record = 1; record < 220; record += 3) {
        gone.push_back(record);
    }
    both([&](SampleModel& m) { m.Remove(gone); });
    expectFiltered("shown and hidden records removed");
    both([](SampleModel& m) { m.Replace(3, {L"tile0", 1.0}), m.Replace(4, {L"other", 1.0}); });
    expectFiltered("records come and go as they change");
    filter(L"no such name");
    expectFiltered("nothing left");
    both([](SampleModel& m) { m.Remove({0, 2, 4}); });
    expectFiltered("hidden records removed");
    filter(L"");
    expectFiltered("no filter");
    filter(L"9");
    both([](SampleModel& m) { m.Clear(); });
    expectFiltered("cleared");
    add(20);
    expectFiltered("added again");
    EXPECT_THROW(model.SetFilter([](std::size_t) -> bool { throw std::runtime_error("stop"); }),
                 std::runtime_error);
    expectFiltered("a filter that cannot be applied changes nothing");
}

TEST(GridModelTest, RecordsGetOtherPlacesInTheOrderOfAdding) {
    SampleModel model;
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    model.AddNames({L"b", L"c", L"a", L"B"});
    const QPersistentModelIndex c = model.index(1, kName);
    model.sort(kName, kUp);
    model.SetFilter([&](std::size_t record) { return model.Rows()[record].name != L"a"; });
    model.Permute({3, 1, 2, 0});  // b and B change places
    EXPECT_THAT(model.Names(), ElementsAre(L"B", L"b", L"c")) << "equal names in the order of adding";
    EXPECT_EQ(c.row(), 2);
    model.Permute({0, 3, 1, 2});
    model.SetFilter({});
    model.sort(-1);
    EXPECT_THAT(model.Names(), ElementsAre(L"B", L"a", L"b", L"c"));
    EXPECT_EQ(c.row(), 3);
}

TEST(ListModelTest, CellsLookAsTheColumnAndTheRowSay) {
    SampleModel model;
    model.Append({{L"part", 2.0}, {L"whole", 3.0, {}, false}});
    const auto at = [&model](int row, int column, int role) { return model.index(row, column).data(role); };
    EXPECT_EQ(at(0, kSize, Qt::DisplayRole).toString(), QString("2.00"));
    EXPECT_EQ(at(1, kSize, Qt::DisplayRole).toString(), QString("3"));
    EXPECT_EQ(at(1, kSize, Qt::ToolTipRole).toString(), QString("3"));
    EXPECT_EQ(at(1, kName, Qt::ToolTipRole).toString(), QString("/data/whole"));
    EXPECT_EQ(at(1, kName, GridModel::kIconRole).toInt(), -1);
    EXPECT_EQ(at(1, kFlag, GridModel::kIconRole).toInt(), 1);
    model.Remove({1, 0, 1});
    EXPECT_EQ(model.Count(), 0U) << "in any order, and twice";
}

/// Contrast of two colours as in WCAG 2: 1 to 21.
double Contrast(const QColor& a, const QColor& b) {
    const auto luminance = [](const QColor& colour) {
        const auto part = [](double value) {
            return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) + 0.0722 * part(colour.blueF());
    };
    const double lighter = std::max(luminance(a), luminance(b));
    const double darker = std::min(luminance(a), luminance(b));
    return (lighter + 0.05) / (darker + 0.05);
}

TEST(ListModelTest, ACellsColourCanBeReadInEveryPalette) {
    SampleModel model;
    model.Append({{L"good", 1.0}, {L"bad", 1.0, {}, false}});
    const QColor green = model.index(0, kMore).data(Qt::ForegroundRole).value<QColor>();
    EXPECT_EQ(green, QColor(0, 0x80, 0));
    EXPECT_FALSE(model.index(1, kMore).data(Qt::ForegroundRole).isValid());
    EXPECT_FALSE(model.index(0, kName).data(Qt::ForegroundRole).isValid());
    const QPalette light(QColor(240, 240, 240), Qt::white);
    EXPECT_EQ(ReadableOn(light, green), green);
    QPalette dark = light;
    dark.setColor(QPalette::Base, QColor(45, 45, 45));
    dark.setColor(QPalette::WindowText, Qt::white);
    EXPECT_GT(Contrast(ReadableOn(dark, green), dark.color(QPalette::Base)), 4.5);
}

TEST(ListModelTest, AChangeThatThrowsIsToldAllTheSame) {
    SampleModel model;
    model.AddNames({L"a"});
    int told = 0;
    QObject::connect(&model, &GridModel::RecordsChanged, [&told] { ++told; });
    EXPECT_THROW(model.Change([](auto&) { throw std::runtime_error("stop"); }), std::runtime_error);
    EXPECT_EQ(told, 1);
}

}  // namespace
}  // namespace orvex::testing
