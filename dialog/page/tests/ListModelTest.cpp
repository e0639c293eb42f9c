#include "dialog/page/ListModel.h"

#include <gmock/gmock.h>

#include <QAbstractItemModelTester>
#include <memory>

#include "support/QtText.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct Row {
    std::unique_ptr<std::wstring> name;
    double size = 0;
};

constexpr Column<Row> kColumns[] = {
    {{.name = "name", .footer = FooterKind::Count},
     [](const Row& row) { return GridCell(*row.name); },
     {.tooltip = [](const Row& row) { return L"/d/" + *row.name; },
      .icon = [](const Row& row) { return static_cast<int>(row.size); }}},
    {{.name = "size", .kind = CellKind::Number, .format = L"%.0f", .footer = FooterKind::Sum},
     [](const Row& row) { return GridCell(row.size); },
     {.format = [](const Row& row) { return row.size < 2 ? L"%.2f" : nullptr; }}},
};

class ListModelTest : public ::testing::Test {
  protected:
    void Add(std::initializer_list<const wchar_t*> names) {
        std::vector<Row> batch;
        for (const wchar_t* name : names) {
            batch.push_back({std::make_unique<std::wstring>(name), static_cast<double>(batch.size() + 1)});
        }
        model.Append(std::move(batch));
    }
    std::vector<std::wstring> Shown(int column) const {
        std::vector<std::wstring> texts;
        for (int row = 0; row < model.rowCount(); ++row) {
            texts.push_back(ToWide(model.index(row, column).data().toString()));
        }
        return texts;
    }

    ListModel<Row> model{kColumns};
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(ListModelTest, StaysConsistentThroughInsertsRemovalsSortingAndClearing) {
    model.Clear();
    Add({L"tile10", L"tile2", L"other"});
    Add({});
    Add({L"last"});
    model.sort(0, Qt::AscendingOrder);
    EXPECT_THAT(Shown(0), ElementsAre(L"last", L"other", L"tile2", L"tile10"));
    model.sort(1, Qt::DescendingOrder);
    EXPECT_THAT(Shown(1), ElementsAre(L"3", L"2", L"1.00", L"1.00"));
    model.Remove({3, 1, 3});
    model.sort(-1, Qt::AscendingOrder);
    EXPECT_THAT(Shown(0), ElementsAre(L"tile10", L"other"));
    model.Remove({});
    model.Remove({0, 1});
    EXPECT_THAT(model.Rows(), IsEmpty());
    Add({L"again"});
    model.Clear();
    model.Clear();
    EXPECT_EQ(model.Count(), 0U);
}

TEST_F(ListModelTest, ChangesAreReportedOnceEvenWhenTheyThrow) {
    Add({L"a", L"b"});
    int told = 0;
    QObject::connect(&model, &GridModel::RecordsChanged, [&] { ++told; });
    model.Change([](std::vector<Row>& rows) { *rows[1].name = L"c"; });
    EXPECT_THAT(Shown(0), ElementsAre(L"a", L"c"));
    EXPECT_THROW(model.Change([](std::vector<Row>&) { throw std::runtime_error("stop"); }),
                 std::runtime_error);
    EXPECT_EQ(told, 2);
}

TEST_F(ListModelTest, CellsLookAsTheColumnAndTheRowSay) {
    Add({L"a", L"b", L"c"});
    EXPECT_EQ(model.FooterText(1), L"6");
    EXPECT_TRUE(model.FooterText(0).has_value());
    const QModelIndex name = model.index(2, 0);
    EXPECT_EQ(name.data(GridModel::kIconRole).toInt(), 3);
    EXPECT_EQ(name.data(Qt::ToolTipRole).toString(), QStringLiteral("/d/c"));
    EXPECT_EQ(model.index(2, 1).data(GridModel::kIconRole).toInt(), -1);
    EXPECT_EQ(model.index(2, 1).data(Qt::ToolTipRole).toString(), QStringLiteral("3"));
    model.Remove({1});
    EXPECT_EQ(model.FooterText(1), L"4");
}

}  // namespace
}  // namespace orvex
