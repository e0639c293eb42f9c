#include "las/page/AddLASFilesModel.h"

#include <gmock/gmock.h>

#include <QAbstractItemModelTester>

#include "las/LasColumns.h"
#include "las/testing/LasBuilder.h"
#include "support/QtText.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class LasModel : public ::testing::Test {
  protected:
    LasInspection Read(const std::wstring& name, std::size_t points = 4) const {
        return InspectLasFile(folder.Write(name, testing::LasBuilder(12, 1).AddPoints(points).Build()));
    }
    void Add(std::initializer_list<const wchar_t*> names) {
        std::vector<LasInspection> batch;
        std::size_t points = 1;
        for (const wchar_t* name : names) {
            batch.push_back(Read(name, points++));
        }
        model.Append(std::move(batch));
    }
    std::vector<std::wstring> Shown(LasColumn column = LasColumn::FileName) const {
        std::vector<std::wstring> texts;
        for (int row = 0; row < model.rowCount(); ++row) {
            texts.push_back(ToWide(model.index(row, IndexOf(column)).data().toString()));
        }
        return texts;
    }

    testing::TemporaryFolder folder;
    AddLASFilesModel model;
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

TEST_F(LasModel, StaysConsistentThroughInsertsRemovalsSortingAndClearing) {
    model.Clear();
    Add({L"tile10.las", L"tile2.las", L"other.las"});
    Add({});
    Add({L"last.las"});
    model.sort(IndexOf(LasColumn::FileName), Qt::AscendingOrder);
    EXPECT_THAT(Shown(), ElementsAre(L"last.las", L"other.las", L"tile2.las", L"tile10.las"));
    model.sort(IndexOf(LasColumn::Points), Qt::DescendingOrder);
    EXPECT_THAT(Shown(LasColumn::Points), ElementsAre(L"3", L"2", L"1", L"1"));
    model.Remove({3, 1, 3});
    model.sort(-1, Qt::AscendingOrder);
    EXPECT_THAT(Shown(), ElementsAre(L"tile10.las", L"other.las"));
    EXPECT_EQ(model.PathKeys().size(), 2U);
    model.Remove({});
    model.Remove({0, 1});
    EXPECT_EQ(model.rowCount(), 0);
    Add({L"again.las"});
    model.Clear();
    model.Clear();
    EXPECT_THAT(model.PathKeys(), IsEmpty());
}

TEST_F(LasModel, ChangesAreToldOnceEvenWhenTheyThrow) {
    Add({L"a.las", L"b.las"});
    int told = 0;
    QObject::connect(&model, &GridModel::RecordsChanged, [&] { ++told; });
    model.Change([](std::vector<LasRow>& rows) { rows[1].layer = L"Roads"; });
    EXPECT_THAT(Shown(LasColumn::Layer), ElementsAre(L"", L"Roads"));
    EXPECT_THROW(model.Change([](std::vector<LasRow>&) { throw std::runtime_error("stop"); }),
                 std::runtime_error);
    EXPECT_EQ(told, 2);
}

TEST_F(LasModel, FooterCountsFilesAndSumsSizesAndPoints) {
    Add({L"a.las", L"b.las", L"c.las"});
    EXPECT_EQ(model.FooterText(IndexOf(LasColumn::Points)), L"6");
    EXPECT_TRUE(model.FooterText(IndexOf(LasColumn::Size)).has_value());
    EXPECT_TRUE(model.FooterText(IndexOf(LasColumn::FileName)).has_value());
    EXPECT_FALSE(model.FooterText(IndexOf(LasColumn::MinimumX)).has_value());
    model.Remove({1});
    EXPECT_EQ(model.FooterText(IndexOf(LasColumn::Points)), L"4");
}

TEST_F(LasModel, TheLoadFlagIsAPictureAndTheStateExplainsItself) {
    Add({L"a.las"});
    std::vector<LasInspection> bad;
    bad.push_back(InspectLasFile(folder.Write(L"bad.las", "nothing")));
    model.Append(std::move(bad));
    const auto flag = [&](int row) { return model.index(row, IndexOf(LasColumn::LoadFlag)); };
    EXPECT_EQ(flag(1).data(GridModel::kIconRole).toInt(), 6);
    EXPECT_TRUE(flag(1).data().toString().isEmpty());
    EXPECT_EQ(ToWide(flag(1).data(Qt::ToolTipRole).toString()), FindingsText(model.Rows()[1]));
    EXPECT_EQ(model.index(0, IndexOf(LasColumn::FileName)).data(GridModel::kIconRole).toInt(), -1);
}

}  // namespace
}  // namespace orvex
