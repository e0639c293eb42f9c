#include "raster/page/RasterPageStore.h"

#include <gmock/gmock.h>

#include <numeric>

#include "raster/page/DemPageStore.h"
#include "raster/testing/RasterListings.h"
#include "settings/OptionStore.h"
#include "settings/testing/FakeHostObjects.h"
#include "settings/testing/FakeRegistry.h"
#include "support/LDataError.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

std::vector<std::size_t> InOrder(const std::vector<RasterRow>& rows) {
    std::vector<std::size_t> order(rows.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    return order;
}

/// Two folders, one file that cannot be described.
class PageStores : public ::testing::Test {
  protected:
    PageStores() {
        for (const wchar_t* path : {L"/data/b.tif", L"/data/sub/c.tif", L"/data/a.tif"}) {
            rows.push_back(testing::ListedRow(testing::DescribedRaster(path, {}), L"Layer"));
        }
        rows.push_back(testing::ListedRow(testing::RefusedRaster(L"/data/broken.tif", L"Broken.")));
    }
    ~PageStores() override {
        for (const auto& [path, details] : handedOver) {
            delete details;
        }
    }

    void StoreRasters() { rasters.Store(rows, InOrder(rows), rasterOptions, OptionStore(registry)); }
    DemStoreOutcome StoreDems(const wchar_t* thinning) {
        return dems.Store(rows, InOrder(rows), demOptions, thinning, host);
    }

    testing::FakeRegistry registry;
    testing::FakeHostObjects host;
    AddFilesParams params;
    std::vector<RasterRow> rows;
    RasterPageOptions rasterOptions{.append = true, .pyramid = true, .detailColumns = true};
    DemPageOptions demOptions;
    RasterPageStore rasters{params};
    DemPageStore dems{params};
    std::map<std::wstring, RasterFileInfo*> handedOver;
};

TEST_F(PageStores, RastersAreGroupedByFolderWithTheirDetails) {
    StoreRasters();
    EXPECT_THAT(params.rasterFiles, SizeIs(2));
    EXPECT_THAT(params.rasterFiles[L"/data"], ElementsAre(L"b.tif", L"a.tif"));
    EXPECT_THAT(params.rasterFiles[L"/data/sub"], ElementsAre(L"c.tif"));
    EXPECT_THAT(params.rasterFileDetails, SizeIs(3));
    EXPECT_EQ(params.rasterFileDetails[L"/data/b.tif"], rows[0].inspection.details.get());
    EXPECT_EQ(params.rasterFileLayers[L"/data/a.tif"], L"Layer");
    EXPECT_TRUE(params.rasterAppend && params.rasterPyramid);
    EXPECT_EQ(ReadRasterPageOptions(OptionStore(registry)), rasterOptions);
}

TEST_F(PageStores, WithoutRowsTheRasterOptionsAreStoredAllTheSame) {
    rows.clear();
    StoreRasters();
    EXPECT_TRUE(params.rasterAppend && params.rasterPyramid);
    EXPECT_THAT(params.rasterFiles, IsEmpty());
    EXPECT_EQ(ReadRasterPageOptions(OptionStore(registry)), rasterOptions);
}

TEST_F(PageStores, WithdrawnRastersBelongToTheRowsAgain) {
    params.rasterFiles[L"/host"] = {L"own.tif"};
    StoreRasters();
    StoreRasters();  // a second OK after a later page has refused
    EXPECT_THAT(params.rasterFiles[L"/data"], ElementsAre(L"b.tif", L"a.tif")) << "listed once";
    rasters.Withdraw();
    EXPECT_THAT(params.rasterFiles,
                ElementsAre(std::pair(std::wstring(L"/host"), std::vector<std::wstring>{L"own.tif"})));
    EXPECT_THAT(params.rasterFileDetails, IsEmpty());
    EXPECT_FALSE(params.rasterAppend || params.rasterPyramid);
    rasters.HandOver(rows);
    EXPECT_NE(rows[0].inspection.details, nullptr);
}

TEST_F(PageStores, DetailsOutliveTheirRowsWhenTheHostHasThem) {
    StoreRasters();
    rasters.HandOver(rows);
    EXPECT_EQ(rows[0].inspection.details, nullptr);
    rasters.Withdraw();
    rows.clear();
    handedOver = params.rasterFileDetails;
    ASSERT_THAT(handedOver, SizeIs(3));
    const RasterFileInfo& file = *handedOver.at(L"/data/sub/c.tif");
    EXPECT_EQ(file.FileName(), L"/data/sub/c.tif");
    EXPECT_EQ(file.Properties().width, 600);
    EXPECT_FALSE(file.IsBigTiff());
}

TEST_F(PageStores, DemFilesAndOptionsReachTheRecordAndTheSettings) {
    demOptions.readWrite = false;
    demOptions.lasVersion = 3;
    demOptions.pointFormat = 2;
    demOptions.lasFolder = L"<ORVEX_PROJECT_PATH>\\Out";
    params.demExtraValues = {1, 2, 3, 4, 5};
    EXPECT_EQ(StoreDems(L"300"), DemStoreOutcome::Stored);
    EXPECT_THAT(params.demFiles[L"/data"], ElementsAre(L"b.tif", L"a.tif"));
    EXPECT_THAT(params.demFileLayers, SizeIs(3));
    EXPECT_FALSE(params.demOpenReadWrite);
    EXPECT_TRUE(params.demAppend && params.demPyramid && params.demIgnoreCrs);
    EXPECT_EQ(params.demLasVersion, 3);
    EXPECT_EQ(params.demPointFormat, 2);
    EXPECT_EQ(params.demThinning, 256);
    EXPECT_EQ(params.demLasFolder, L"<ORVEX_PROJECT_PATH>\\Out") << "the token is the host's to resolve";
    EXPECT_THAT(params.demExtraValues, ElementsAre(0, 0, 0, 0, 0));
    EXPECT_EQ((host.settings[{L"AddFilesDlg", L"DEMThinningFactor"}]), SettingValue(std::int16_t{256}));
}

TEST_F(PageStores, ARefusedThinningLeavesTheRecordAsTheHostGaveIt) {
    params.demLasFolder = L"host's";
    ASSERT_EQ(StoreDems(L"16"), DemStoreOutcome::Stored);
    demOptions.append = false;
    EXPECT_EQ(StoreDems(L"1"), DemStoreOutcome::ThinningRefused);
    EXPECT_THAT(params.demFiles, IsEmpty());
    EXPECT_EQ(params.demLasFolder, L"host's");
    EXPECT_FALSE(dems.IsStored());
    EXPECT_EQ((host.settings[{L"AddFilesDlg", L"DEMAppendToLayers"}]), SettingValue(std::int16_t{0}))
        << "what was checked before is saved";
    EXPECT_EQ((host.settings[{L"AddFilesDlg", L"DEMThinningFactor"}]), SettingValue(std::int16_t{16}));
}

TEST_F(PageStores, ADemPageWithoutRowsSavesNothing) {
    rows.clear();
    host.createSettingsResult = kHostFail;
    EXPECT_EQ(StoreDems(L"1"), DemStoreOutcome::Stored);
    EXPECT_FALSE(params.demAppend);
    EXPECT_EQ(params.demThinning, 0);
    EXPECT_THAT(host.settings, IsEmpty());
}

TEST_F(PageStores, WithoutASettingsObjectTheDemPageCannotStore) {
    host.createSettingsResult = kHostFail;
    try {
        StoreDems(L"16");
        FAIL();
    } catch (const LDataError& error) {
        EXPECT_EQ(error.Text(), L"Failed to create OrvexSystemSettings object");
    }
    EXPECT_THAT(params.demFiles, IsEmpty());
}

TEST_F(PageStores, FilesWithoutACrsOfTheirOwnShareOneLayer) {
    rows[0] = testing::ListedRow(testing::DescribedRaster(L"/data/b.tif", testing::ProjectedWkt()));
    const std::map<std::wstring, std::wstring> existing{
        {L"dem las layer_1", FromUtf8(testing::ProjectedWkt())}, {L"Local", L""}};
    const auto assign = [&](const LayerRules& rules, LayerCrs crs) {
        AssignLayers(rows, existing, rules, crs, L"DEM LAS Layer_");
        return std::vector<std::wstring>{rows[0].place.layer, rows[1].place.layer, rows[3].place.layer};
    };
    EXPECT_THAT(assign({.append = true}, LayerCrs::OfTheFile),
                ElementsAre(L"dem las layer_1", L"Local", L""));
    EXPECT_THAT(assign({.append = true}, LayerCrs::None), ElementsAre(L"Local", L"Local", L""));
    EXPECT_THAT(assign({.append = false}, LayerCrs::OfTheFile),
                ElementsAre(L"DEM LAS Layer_2", L"DEM LAS Layer_3", L""));
    EXPECT_THAT(assign({.append = false}, LayerCrs::None),
                ElementsAre(L"DEM LAS Layer_2", L"DEM LAS Layer_2", L""));
    EXPECT_FALSE(rows[0].place.exists);
}

}  // namespace
}  // namespace orvex
