#include "raster/RasterRow.h"

#include <gdal.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <stdexcept>

#include "orvexcommon/HostInterfaces.h"
#include "raster/Georeference.h"
#include "raster/testing/GeoTiff.h"
#include "raster/testing/TiffBytes.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/Text.h"

namespace orvex {
namespace {

using testing::GeoTiff;
using testing::TemporaryFolder;

std::vector<std::wstring> Texts(const RasterRow& row) {
    std::vector<std::wstring> texts;
    std::ranges::transform(row.findings, std::back_inserter(texts), &Finding::text);
    return texts;
}

std::wstring Refusal(const std::wstring& reason) {
    return Text(text::kRasterCannotBeRead) + L" " + reason;
}

using Answer = std::function<std::int32_t(RasterProperties& properties, std::wstring& reason)>;

/// A host's object that answers as the test wants.
class ScriptedObject final : public OrvexRasterInformation {
  public:
    explicit ScriptedObject(Answer answer) : answer_(std::move(answer)) {}
    std::int32_t Describe(const std::wstring&, RasterProperties& properties, std::wstring& reason) override {
        return answer_(properties, reason);
    }

  private:
    const Answer answer_;
};

RasterInformationMaker Answering(const Answer& answer) {
    return [=](std::int32_t&) { return std::make_unique<ScriptedObject>(answer); };
}
RasterInformationMaker Telling(const RasterProperties& told) {
    return Answering([=](RasterProperties& properties, std::wstring&) {
        properties = told;
        return kHostOk;
    });
}
RasterInformationMaker Refusing(const std::wstring& cause) {
    return Answering([=](RasterProperties&, std::wstring& reason) {
        reason = cause;
        return kHostFail;
    });
}

RasterRow Inspect(const std::wstring& path, const RasterInformationMaker& maker = {}) {
    return InspectRasterFile(path, RasterUse::Image, maker);
}

TEST(RasterRow, FactsBesidesThoseOfTheImage) {
    const TemporaryFolder folder;
    const std::wstring path = GeoTiff().Write(folder, L"a.tif");
    const RasterRow row = Inspect(path);
    EXPECT_EQ(row.unit, L"Meters");
    EXPECT_EQ(row.crs->name, L"WGS 84 / UTM zone 33N");
    EXPECT_EQ(row.fileSize, FileSizeOf(path));
    EXPECT_GT(row.modifiedMs, 1'700'000'000'000);
    EXPECT_FALSE(row.file->IsBigTiff());
    for (const char* order : {"ENDIANNESS=LITTLE", "ENDIANNESS=BIG"}) {
        const GeoTiff big{.options = {"BIGTIFF=YES", order}};
        EXPECT_TRUE(Inspect(big.Write(folder, L"b.tif")).file->IsBigTiff()) << order;
    }
}

TEST(RasterRow, UnitsAsTheyAreShown) {
    const std::map<std::wstring, std::wstring> cases{{L"metre", L"Meters"},
                                                     {L"US survey foot", L"US survey foot"},
                                                     {L"unknown", Text(text::kUnknown)},
                                                     {L"Unknown", L"Unknown"},
                                                     {L"", L""}};
    for (const auto& [reported, shown] : cases) {
        EXPECT_EQ(RasterUnitText(reported), shown);
    }
}

TEST(RasterRow, TheHostsObjectIsAskedFirst) {
    const TemporaryFolder folder;
    const std::wstring path = GeoTiff().Write(folder, L"a.tif");
    RasterProperties told;
    told.width = 7;
    told.height = 8;
    told.pixelWidth = told.pixelHeight = 2;
    told.linearUnit = L"foot";
    told.projectionCode = 4711;
    told.bands = 5;

    const RasterRow brief = Inspect(path, Telling(told));
    EXPECT_EQ(brief.Properties().width, 7);
    EXPECT_EQ(brief.Properties().projectionCode, 4711);
    EXPECT_EQ(brief.unit, L"foot");
    EXPECT_EQ(*brief.Properties().wkt, "") << "the object's word holds for what every object says";
    EXPECT_TRUE(brief.Properties().hasDetails);
    EXPECT_EQ(brief.Properties().driver, L"GTiff") << "what it leaves out is read";

    const std::wstring own = folder.Write(L"a.own", "a format that only the host knows");
    EXPECT_TRUE(Inspect(own, Telling(told)).loadable);
    told.hasDetails = true;
    told.driver = L"Own";
    EXPECT_EQ(Inspect(path, Telling(told)).Properties().driver, L"Own");
}

TEST(RasterRow, AnObjectThatFailsGivesTheReason) {
    const TemporaryFolder folder;
    const std::wstring path = GeoTiff().Write(folder, L"a.tif");
    const struct {
        RasterInformationMaker maker;
        std::wstring summary;
        bool threw = false;
    } cases[] = {
        {Refusing(L"Not today."), Refusal(L"Not today.")},
        {Refusing(L""), Refusal(Text(text::kRasterDamagedOrUnsupported))},
        {Telling({}), Refusal(Text(text::kRasterNoImage))},  // an image without a size
        {Answering(
             [](RasterProperties&, std::wstring&) -> std::int32_t { throw std::runtime_error("broken"); }),
         Refusal(L"broken"), true},
        {[](std::int32_t&) -> std::unique_ptr<OrvexRasterInformation> { throw std::runtime_error("no"); },
         Refusal(L"no"), true},
    };
    for (const auto& c : cases) {
        const RasterRow row = Inspect(path, c.maker);
        EXPECT_FALSE(row.loadable);
        EXPECT_FALSE(row.IsDescribed());
        EXPECT_EQ(row.summary, c.summary);
        EXPECT_EQ(row.threw, c.threw) << ToUtf8(c.summary);
        EXPECT_GT(row.fileSize, 0U) << "what was found out before stays";
    }
    const RasterInformationMaker none = [](std::int32_t& result) {
        result = kHostClassNotRegistered;
        return nullptr;
    };
    EXPECT_TRUE(Inspect(path, none).loadable) << "a host without the class";
}

TEST(RasterRow, APathThatIsNoFileHasItsReason) {
    const TemporaryFolder folder;
    const RasterRow directory = Inspect(FromPath(folder.Path()));
    EXPECT_EQ(directory.summary, Refusal(Text(text::kRasterIsFolder)));
    EXPECT_FALSE(directory.threw);
    for (const std::wstring& path :
         {folder.Name(L"absent.tif"), std::wstring(L"http://127.0.0.1:9/a.tif"),
          std::wstring(L"/vsicurl/http://127.0.0.1:9/a.tif"), std::wstring(L"WMS:http://127.0.0.1:9/"),
          std::wstring(L"<VRTDataset/>"), std::wstring()}) {
        EXPECT_EQ(Inspect(path).summary, Refusal(Text(text::kFileMissing))) << ToUtf8(path);
    }
}

TEST(RasterRow, AMosaicIsDescribedWithoutItsParts) {
    const TemporaryFolder folder;
    const std::wstring path = folder.Write(L"a.vrt", R"(<VRTDataset rasterXSize="9000" rasterYSize="9000">
<GeoTransform>10,1,0,20,0,-1</GeoTransform><VRTRasterBand dataType="Byte" band="1"><SimpleSource>
<SourceFilename relativeToVRT="0">/vsicurl/http://127.0.0.1:9/a.tif</SourceFilename></SimpleSource>
<SimpleSource><SourceFilename relativeToVRT="0">http://127.0.0.1:9/a.tif</SourceFilename></SimpleSource>
</VRTRasterBand></VRTDataset>)");
    const RasterRow row = Inspect(path);
    ASSERT_TRUE(row.loadable);
    EXPECT_EQ(row.Properties().width, 9000);
    ASSERT_EQ(row.Properties().warnings.size(), 1U) << "opening a part would fail with another";
    EXPECT_THAT(ToUtf8(row.Properties().warnings.front()),
                ::testing::HasSubstr("(/vsicurl/http://127.0.0.1:9/a.tif)"));
}

TEST(RasterRow, OdditiesOfImagesAndDems) {
    using enum FindingSeverity;
    const TemporaryFolder folder;
    const GeoTiff photo{.bands = 3, .options = {"PHOTOMETRIC=RGB"}};
    const GeoTiff heights{.type = GDT_Float32, .crs = "EPSG:32633+5773", .change = [](GDALDatasetH dataset) {
                              GDALSetRasterNoDataValue(GDALGetRasterBand(dataset, 1), -9999);
                          }};
    const auto outside = [](StringId guess) {
        return FormatText(Text(text::kExtentOutsideCrs), {Text(guess)});
    };
    const struct {
        RasterUse use;
        GeoTiff tiff;
        std::vector<std::wstring> findings;
        FindingSeverity worst = Note;
    } cases[] = {
        {RasterUse::Image,
         {.crs = "", .transform = {}},
         {Text(text::kRasterNoGeoreference), Text(text::kFileWithoutCrs)},
         Warning},
        {RasterUse::Image, {.transform = {{500000, 1, 1, 5300000, 1, -1}}}, {Text(text::kRasterRotated)}},
        {RasterUse::Image,
         {.crs = "", .transform = {{0, 1, 1, 0, 1, -1}}},
         {Text(text::kFileWithoutCrs), Text(text::kRasterRotated)}},
        {RasterUse::Image,
         {.transform = {{13, 0.1, 0, 51, 0, -0.1}}},
         {outside(text::kExtentInDegrees)},
         Warning},
        {RasterUse::Dem,
         {.type = GDT_Int16, .crs = "", .transform = {{-235'434'519, 1, 0, 51, 0, -1}}},
         {FormatText(Text(text::kExtentImpossible), {L"X"}), Text(text::kFileWithoutCrs)},
         Warning},
        {RasterUse::Image,
         {.width = 8192, .height = 8192, .options = {"SPARSE_OK=TRUE"}},
         {FormatText(Text(text::kRasterNoOverviews), {8192, 8192})}},
        {RasterUse::Image, photo, {}},
        {RasterUse::Dem, heights, {}},
        {RasterUse::Dem,
         photo,
         {FormatText(Text(text::kDemSeveralBands), {3}), Text(text::kDemColors),
          Text(text::kDemNoVerticalCrs)},
         Warning},
        {RasterUse::Dem,
         {.type = GDT_CFloat64},
         {Text(text::kDemComplexNumbers), Text(text::kDemNoVerticalCrs)},
         Error},
        {RasterUse::Dem,
         {.type = GDT_Float64},
         {Text(text::kDemNoNoDataValue), Text(text::kDemNoVerticalCrs)}},
    };
    for (const auto& c : cases) {
        const RasterRow row = InspectRasterFile(c.tiff.Write(folder, L"a.tif"), c.use);
        EXPECT_TRUE(row.loadable);
        EXPECT_EQ(Texts(row), c.findings);
        EXPECT_EQ(row.summary, c.findings.empty() ? L"OK" : c.findings.front());
        const LoadFlag flag = c.findings.empty() ? LoadFlag::Good
                              : c.worst == Note  ? LoadFlag::Noted
                                                 : LoadFlag::Findings;
        EXPECT_EQ(LoadFlagOf(row), flag);
        EXPECT_EQ(row.findings.empty() ? Note : row.findings.front().severity, c.worst);
    }
}

TEST(RasterRow, ATransparencyMask) {
    const TemporaryFolder folder;
    for (const auto format : {testing::TiffBytes::Format::Classic, testing::TiffBytes::Format::Big}) {
        for (const auto order : {testing::TiffBytes::Order::Little, testing::TiffBytes::Order::Big}) {
            const auto mask =
                testing::TiffBytes(format, order).Image(8, 1, 8, 1).Tag(258, 3, {1}).Tag(262, 3, {4});
            const RasterRow row = Inspect(folder.Write(L"a.tif", mask.Build()));
            EXPECT_EQ(row.Properties().rasterKind, 4);
            EXPECT_EQ(row.Properties().colorModel, 0);
        }
    }
}

}  // namespace
}  // namespace orvex
