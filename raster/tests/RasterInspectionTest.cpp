#include "raster/RasterInspection.h"

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
#include "support/Text.h"

namespace orvex {
namespace {

using ::testing::Contains;
using testing::GeoTiff;
using ::testing::IsEmpty;
using testing::TemporaryFolder;

std::vector<std::wstring> Texts(const RasterInspection& inspection) {
    std::vector<std::wstring> texts;
    std::ranges::transform(inspection.findings, std::back_inserter(texts), &Finding::text);
    return texts;
}

/// A host's object that answers as the test wants.
class AnsweringObject : public OrvexRasterInformation {
  public:
    AnsweringObject(std::int32_t result, RasterProperties properties, std::wstring reason)
        : result_(result), properties_(std::move(properties)), reason_(std::move(reason)) {}

    std::int32_t Describe(const std::wstring&, RasterProperties& properties, std::wstring& reason) override {
        reason = reason_;
        if (result_ >= kHostOk) {
            properties = properties_;
        }
        return result_;
    }

  private:
    const std::int32_t result_;
    const RasterProperties properties_;
    const std::wstring reason_;
};

RasterInformationMaker Answering(std::int32_t result, const RasterProperties& properties,
                                 const std::wstring& reason = {}) {
    return [=](std::int32_t& made) {
        made = kHostOk;
        return std::make_unique<AnsweringObject>(result, properties, reason);
    };
}

TEST(RasterInspection, AFileWithoutAnythingOdd) {
    const TemporaryFolder folder;
    const std::wstring path = GeoTiff().Write(folder, L"a.tif");
    const RasterInspection inspection = InspectRasterFile(path, RasterUse::Image);
    EXPECT_TRUE(inspection.loadable);
    EXPECT_EQ(inspection.path, path);
    EXPECT_EQ(inspection.summary, Text(text::kInspectionOk));
    EXPECT_THAT(inspection.findings, IsEmpty());
    EXPECT_EQ(inspection.unit, L"Meters");
    EXPECT_EQ(inspection.crs->name, L"WGS 84 / UTM zone 33N");
    EXPECT_FALSE(inspection.bigTiff);
    EXPECT_EQ(inspection.fileSize, FileSizeOf(path));
    EXPECT_GT(inspection.modifiedMs, 1'700'000'000'000);
}

TEST(RasterInspection, ABigTiffInEitherByteOrder) {
    const TemporaryFolder folder;
    GeoTiff tiff;
    for (const char* order : {"ENDIANNESS=LITTLE", "ENDIANNESS=BIG"}) {
        tiff.options = {"BIGTIFF=YES", order};
        EXPECT_TRUE(InspectRasterFile(tiff.Write(folder, L"a.tif"), RasterUse::Image).bigTiff) << order;
    }
}

TEST(RasterInspection, UnitsAsTheyAreShown) {
    const std::map<std::wstring, std::wstring> cases{{L"metre", L"Meters"},
                                                     {L"METER", L"Meters"},
                                                     {L"Kilometre", L"Meters"},
                                                     {L"US survey foot", L"US survey foot"},
                                                     {L"unknown", Text(text::kUnknown)},
                                                     {L"(unknown)", Text(text::kUnknown)},
                                                     {L"Unknown", L"Unknown"},
                                                     {L"", L""}};
    for (const auto& [reported, shown] : cases) {
        EXPECT_EQ(RasterUnitText(reported), shown);
    }
}

TEST(RasterInspection, TheHostsObjectIsAskedFirst) {
    const TemporaryFolder folder;
    const std::wstring path = GeoTiff().Write(folder, L"a.tif");
    RasterProperties told;
    told.width = 7;
    told.height = 8;
    told.pixelWidth = told.pixelHeight = 2;
    told.linearUnit = L"foot";
    told.projectionCode = 4711;
    told.bands = 5;

    const RasterInspection brief = InspectRasterFile(path, RasterUse::Image, Answering(kHostOk, told));
    EXPECT_EQ(brief.properties.width, 7);
    EXPECT_EQ(brief.properties.projectionCode, 4711);
    EXPECT_EQ(brief.unit, L"foot");
    EXPECT_EQ(brief.properties.wkt, "") << "the object's word holds for what every object says";
    EXPECT_TRUE(brief.properties.hasDetails);
    EXPECT_EQ(brief.properties.driver, L"GTiff") << "what it leaves out is read";

    told.hasDetails = true;
    told.driver = L"Own";
    const RasterInspection whole = InspectRasterFile(path, RasterUse::Image, Answering(kHostOk, told));
    EXPECT_EQ(whole.properties.driver, L"Own");

    told.hasDetails = false;
    const std::wstring own = folder.Write(L"a.own", "a format that only the host knows");
    EXPECT_TRUE(InspectRasterFile(own, RasterUse::Image, Answering(kHostOk, told)).loadable);
}

TEST(RasterInspection, AnObjectThatFailsGivesTheRow) {
    const TemporaryFolder folder;
    const std::wstring path = GeoTiff().Write(folder, L"a.tif");
    const auto refused = InspectRasterFile(path, RasterUse::Image, Answering(kHostFail, {}, L"Not today."));
    EXPECT_FALSE(refused.loadable);
    EXPECT_EQ(refused.summary, Text(text::kRasterCannotBeRead) + L" Not today.");
    EXPECT_EQ(refused.properties.width, 0);
    const auto silent = InspectRasterFile(path, RasterUse::Image, Answering(kHostFail, {}));
    EXPECT_EQ(silent.summary,
              Text(text::kRasterCannotBeRead) + L" " + Text(text::kRasterDamagedOrUnsupported));
    const auto without = InspectRasterFile(path, RasterUse::Image, Answering(kHostOk, {}));
    EXPECT_FALSE(without.loadable) << "an image without a size";

    const RasterInformationMaker none = [](std::int32_t& result) {
        result = kHostClassNotRegistered;
        return nullptr;
    };
    EXPECT_TRUE(InspectRasterFile(path, RasterUse::Image, none).loadable) << "a host without the class";
}

/// A host's object that throws.
class ThrowingObject final : public OrvexRasterInformation {
  public:
    std::int32_t Describe(const std::wstring&, RasterProperties&, std::wstring&) override {
        throw std::runtime_error("no such driver");
    }
};

TEST(RasterInspection, AnExceptionOfTheHostsIsToldFromAFileThatIsNoRaster) {
    const TemporaryFolder folder;
    const std::wstring path = GeoTiff().Write(folder, L"a.tif");
    const RasterInformationMaker makers[] = {[](std::int32_t&) { return std::make_unique<ThrowingObject>(); },
                                             [](std::int32_t&) -> std::unique_ptr<OrvexRasterInformation> {
                                                 throw std::runtime_error("no such driver");
                                             }};
    for (const RasterInformationMaker& maker : makers) {
        const auto thrown = InspectRasterFile(path, RasterUse::Image, maker);
        EXPECT_TRUE(thrown.threw);
        EXPECT_FALSE(thrown.loadable);
        EXPECT_EQ(thrown.summary, Text(text::kRasterCannotBeRead) + L" no such driver");
        EXPECT_GT(thrown.fileSize, 0U) << "what was found out before stays";
    }
    EXPECT_FALSE(InspectRasterFile(path, RasterUse::Image, Answering(kHostFail, {}, L"No.")).threw);
    EXPECT_FALSE(InspectRasterFile(folder.Write(L"b.tif", "no raster"), RasterUse::Image).threw);
}

TEST(RasterInspection, WhatIsNoFileHasItsReason) {
    const TemporaryFolder folder;
    EXPECT_EQ(InspectRasterFile(folder.Name(L"absent.tif"), RasterUse::Image).summary,
              Text(text::kRasterCannotBeRead) + L" " + Text(text::kRasterFileMissing));
    EXPECT_EQ(InspectRasterFile(FromPath(folder.Path()), RasterUse::Image).summary,
              Text(text::kRasterCannotBeRead) + L" " + Text(text::kRasterIsFolder));
    for (const wchar_t* address : {L"http://127.0.0.1:9/a.tif", L"/vsicurl/http://127.0.0.1:9/a.tif",
                                   L"WMS:http://127.0.0.1:9/", L"<VRTDataset/>", L""}) {
        EXPECT_EQ(InspectRasterFile(address, RasterUse::Image).summary,
                  Text(text::kRasterCannotBeRead) + L" " + Text(text::kRasterFileMissing))
            << ToUtf8(address);
    }
}

TEST(RasterInspection, AMosaicIsDescribedWithoutItsParts) {
    const TemporaryFolder folder;
    const std::wstring path = folder.Write(L"a.vrt", R"(<VRTDataset rasterXSize="9000" rasterYSize="9000">
<GeoTransform>10,1,0,20,0,-1</GeoTransform><VRTRasterBand dataType="Byte" band="1"><SimpleSource>
<SourceFilename relativeToVRT="0">/vsicurl/http://127.0.0.1:9/a.tif</SourceFilename></SimpleSource>
<SimpleSource><SourceFilename relativeToVRT="0">http://127.0.0.1:9/a.tif</SourceFilename></SimpleSource>
</VRTRasterBand></VRTDataset>)");
    const RasterInspection inspection = InspectRasterFile(path, RasterUse::Image);
    EXPECT_TRUE(inspection.loadable);
    EXPECT_EQ(inspection.properties.width, 9000);
    EXPECT_THAT(inspection.properties.warnings, IsEmpty()) << "opening a part would fail with a warning";
}

TEST(RasterInspection, OdditiesOfAnImage) {
    const TemporaryFolder folder;
    GeoTiff plain;
    plain.transform.reset();
    plain.crs = "";
    const auto bare = InspectRasterFile(plain.Write(folder, L"a.tif"), RasterUse::Image);
    EXPECT_EQ(bare.summary, Text(text::kRasterNoGeoreference));
    EXPECT_THAT(Texts(bare), Contains(Text(text::kFileWithoutCrs)));
    EXPECT_TRUE(bare.loadable);

    GeoTiff rotated;
    rotated.transform = {{0, 1, 1, 0, 1, -1}};
    const auto turned = InspectRasterFile(rotated.Write(folder, L"b.tif"), RasterUse::Image);
    EXPECT_EQ(turned.summary, Text(text::kInspectionOk)) << "a note is nothing odd";
    EXPECT_THAT(Texts(turned), Contains(Text(text::kRasterRotated)));

    GeoTiff large;
    large.width = large.height = 8192;
    large.options = {"SPARSE_OK=TRUE"};
    EXPECT_EQ(InspectRasterFile(large.Write(folder, L"c.tif"), RasterUse::Image).findings.size(), 1U);
}

TEST(RasterInspection, OdditiesOfADem) {
    const TemporaryFolder folder;
    GeoTiff heights;
    heights.type = GDT_Float32;
    heights.crs = "EPSG:32633+5773";
    heights.change = [](GDALDatasetH dataset) {
        GDALSetRasterNoDataValue(GDALGetRasterBand(dataset, 1), -9999);
    };
    EXPECT_THAT(Texts(InspectRasterFile(heights.Write(folder, L"a.tif"), RasterUse::Dem)), IsEmpty());

    GeoTiff photo;
    photo.bands = 3;
    photo.options = {"PHOTOMETRIC=RGB"};
    const std::wstring path = photo.Write(folder, L"b.tif");
    const auto texts = Texts(InspectRasterFile(path, RasterUse::Dem));
    EXPECT_THAT(texts, Contains(Text(text::kDemColors)));
    EXPECT_THAT(texts, Contains(Text(text::kDemNoVerticalCrs)));
    EXPECT_THAT(Texts(InspectRasterFile(path, RasterUse::Image)), IsEmpty());

    GeoTiff waves;
    waves.type = GDT_CFloat64;
    const auto complex = InspectRasterFile(waves.Write(folder, L"c.tif"), RasterUse::Dem);
    EXPECT_EQ(complex.summary, Text(text::kDemComplexNumbers));
    EXPECT_EQ(complex.findings.front().severity, FindingSeverity::Error);

    GeoTiff holes;
    holes.type = GDT_Float64;
    EXPECT_THAT(Texts(InspectRasterFile(holes.Write(folder, L"d.tif"), RasterUse::Dem)),
                Contains(Text(text::kDemNoNoDataValue)));
}

TEST(RasterInspection, ATransparencyMask) {
    const TemporaryFolder folder;
    for (const auto format : {testing::TiffBytes::Format::Classic, testing::TiffBytes::Format::Big}) {
        for (const auto order : {testing::TiffBytes::Order::Little, testing::TiffBytes::Order::Big}) {
            const auto mask =
                testing::TiffBytes(format, order).Image(8, 1, 8, 1).Tag(258, 3, {1}).Tag(262, 3, {4});
            const auto inspection = InspectRasterFile(folder.Write(L"a.tif", mask.Build()), RasterUse::Image);
            EXPECT_EQ(inspection.properties.rasterKind, 4);
            EXPECT_EQ(inspection.properties.colorModel, 0);
        }
    }
}

}  // namespace
}  // namespace orvex
