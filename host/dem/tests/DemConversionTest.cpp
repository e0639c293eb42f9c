// The LAS files that come out: their headers, CRS and points, as the component's own reader sees them.
#include "host/dem/DemConversion.h"

#include <gdal_priv.h>

#include <algorithm>
#include <cmath>

#include "host/dem/tests/DemFixture.h"
#include "las/LasRow.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/SpatialReference.h"
#include "support/Text.h"

namespace orvex {
namespace {

using testing::DemFixture;
using testing::DemSample;
using testing::Place;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

class DemConversionTest : public DemFixture {
  protected:
    void ExpectHeader(const LASFile& file, int versionMinor, int format) const {
        const LasHeader& header = file.Header();
        EXPECT_EQ(header.Version(), 10 + versionMinor);
        EXPECT_EQ(header.PointFormat(), format);
        EXPECT_EQ(header.PointCount(), 35U);
        EXPECT_EQ(header.LegacyPointCount(), format < 6 ? 35U : 0U);
        EXPECT_EQ(header.PointsOfReturn(1), 35U);
        EXPECT_EQ(header.PointsOfReturn(2), 0U);
        const bool hasTime = format != 0 && format != 2;
        EXPECT_EQ(header.HasStandardGpsTime(), hasTime && versionMinor >= 2);
        EXPECT_TRUE(!header.HasWktBit() || versionMinor == 4);
        EXPECT_TRUE(header.HasWktBit() || format < 6);
    }
};

/// What a record holds behind its place: the only return of its pulse, never classified, made without a
/// laser.
std::string RecordBehindPlace(int versionMinor, int format, std::size_t length) {
    std::string rest(length - 12, '\0');
    rest[2] = format < 6 ? 0x09 : 0x11;
    rest[3] = static_cast<char>(format >= 6 ? 0x01 : versionMinor > 0 ? 0x20 : 0);
    return rest;
}

struct CrsCase {
    const char* what;
    const char* crs;
    bool fitsGeoKeys;
};
const CrsCase kCrsCases[] = {
    {"projected", "EPSG:25832", true},
    {"feet", "EPSG:2263", true},
    {"geographic", "EPSG:4326", true},
    {"compound", "EPSG:25832+5783", true},
    {"local", R"(LOCAL_CS["Site grid",LOCAL_DATUM["Site",0],UNIT["metre",1],AXIS["X",EAST],AXIS["Y",NORTH]])",
     true},
    {"geographic with heights", "EPSG:4979", true},
    {"geographic and derived",
     R"wkt(GEOGCRS["turned",BASEGEOGCRS["WGS 84",DATUM["World Geodetic System 1984",)wkt"
     R"wkt(ELLIPSOID["WGS 84",6378137,298.257223563]]],DERIVINGCONVERSION["Turned pole",)wkt"
     R"wkt(METHOD["Turned pole of our own"],PARAMETER["Latitude of the pole",39.25,)wkt"
     R"wkt(ANGLEUNIT["degree",0.0174532925199433]]],CS[ellipsoidal,2],AXIS["latitude",north],)wkt"
     R"wkt(AXIS["longitude",east],ANGLEUNIT["degree",0.0174532925199433]])wkt",
     false},
    {"none", "", true},
};

TEST_F(DemConversionTest, EveryVersionAndFormatOpensWithoutFindings) {
    constexpr std::array<int, 5> lastFormats = {1, 1, 3, 5, 8};
    for (const CrsCase& crs : kCrsCases) {
        DemSample sample;
        sample.crs = crs.crs;
        if (std::string(crs.what).starts_with("geographic")) {
            sample.transform = {{7, 1e-4, 0, 51, 0, -1e-4}};
        } else if (crs.what == std::string("feet")) {
            sample.transform = {{1'000'000, 2, 0, 200'000, 0, -2}};
        }
        const std::wstring path = Write(sample);
        for (int minor = 0; minor <= 4; ++minor) {
            for (int format = 0; format <= lastFormats[static_cast<std::size_t>(minor)]; ++format) {
                SCOPED_TRACE(std::string(crs.what) + ", LAS 1." + std::to_string(minor) + ", format " +
                             std::to_string(format));
                options_.versionMinor = minor;
                options_.pointFormat = format;
                const DemConversionResult result = Convert(path);
                const LasRow found = InspectLasFile(result.lasPath);
                ASSERT_TRUE(found.loadable) << ToUtf8(found.summary);
                ExpectHeader(*found.file, minor, format);
                const bool hasCrs = *crs.crs != '\0' && (crs.fitsGeoKeys || minor == 4);
                EXPECT_EQ(found.file->HasProjectionRecords(), hasCrs);
                EXPECT_EQ(found.summary, Text(hasCrs ? text::kInspectionOk : text::kFileWithoutCrs));
                EXPECT_EQ(found.findings.size(), hasCrs ? 0U : 1U);
                EXPECT_EQ(result.warnings.size(), *crs.crs != '\0' && !hasCrs ? 1U : 0U);
                EXPECT_EQ(found.file->CrsWkt(), result.wkt);
                const std::string bytes = testing::ReadFile(result.lasPath);
                const std::size_t length = found.file->Header().PointRecordLength();
                EXPECT_EQ(bytes.substr(bytes.size() - length + 12), RecordBehindPlace(minor, format, length));
                if (minor == 0) {
                    EXPECT_EQ(bytes.substr(bytes.size() - length * 35 - 2, 2), "\xCC\xDD");
                    EXPECT_EQ(bytes.substr(227, 2), hasCrs ? "\xBB\xAA" : "\xCC\xDD");
                }
                if (hasCrs && crs.fitsGeoKeys) {
                    const GDALDatasetUniquePtr raster(GDALDataset::Open(ToUtf8(path).c_str()));
                    const std::string wkt = ExportWkt(*raster->GetSpatialRef(), "WKT2_2019");
                    EXPECT_EQ(OrvexUtilities::GetCompatibilityGroup(result.wkt),
                              OrvexUtilities::GetCompatibilityGroup(wkt));
                }
            }
        }
    }
}

TEST_F(DemConversionTest, PointsLieAtPixelCentres) {
    const struct {
        const char* what;
        std::array<double, 6> transform;
        const char* crs;
        const char* pixelIs;
    } cases[] = {
        {"metres", {500000, 2, 0, 5600000, 0, -2}, "EPSG:25832", "Area"},
        {"point", {500000, 2, 0, 5600000, 0, -2}, "EPSG:25832", "Point"},
        {"rotated", {500000, 1.5, 0.5, 5600000, 0.5, -1.5}, "EPSG:25832", "Area"},
        {"south up", {500000, 2, 0, 5600000, 0, 2}, "EPSG:25832", "Area"},
        {"degrees", {-179.5, 1.0 / 3600, 0, 51, 0, -1.0 / 3600}, "EPSG:4326", "Area"},
        {"whole earth", {-180, 360.0 / 7, 0, 90, 0, -36}, "EPSG:4326", "Area"},
        {"small pixels", {3, 0.0001, 0, 4, 0, -0.0001}, "EPSG:25832", "Area"},
        {"unknown unit", {7, 1e-4, 0, 51, 0, -1e-4}, "", "Area"},
        {"far away", {1e12, 1e6, 0, -1e12, 0, -1e6}, "EPSG:25832", "Area"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        DemSample sample;
        sample.transform = c.transform;
        sample.crs = c.crs;
        sample.metadata = {{"AREA_OR_POINT", c.pixelIs}};
        const DemConversionResult result = Convert(sample);
        const auto points = PointsOf(result.lasPath);
        ASSERT_EQ(points.size(), 35U);
        const auto file = LASFile::Open(result.lasPath, true, true);
        const LasHeader& header = file->Header();
        const auto& t = c.transform;
        std::array<double, 3> low = points.front();
        std::array<double, 3> high = low;
        for (std::size_t i = 0; i < points.size(); ++i) {
            const auto x = static_cast<int>(i % 7);
            const auto y = static_cast<int>(i / 7);
            const double column = x + 0.5;
            const double row = y + 0.5;
            const Place expected = {t[0] + column * t[1] + row * t[2], t[3] + column * t[4] + row * t[5],
                                    sample.value(x, y)};
            for (std::size_t axis = 0; axis < 3; ++axis) {
                EXPECT_NEAR(points[i][axis], expected[axis], 0.501 * header.Scale()[axis]) << i;
                low[axis] = std::min(low[axis], points[i][axis]);
                high[axis] = std::max(high[axis], points[i][axis]);
            }
        }
        // A pixel stays more than ten steps wide.
        EXPECT_LE(header.Scale()[0] * 10, std::hypot(t[1], t[4]));
        EXPECT_EQ(header.Minimum(), low);
        EXPECT_EQ(header.Maximum(), high);
        EXPECT_EQ(result.min, low);
        EXPECT_EQ(result.max, high);
        EXPECT_EQ(result.points, 35U);
    }
}

TEST_F(DemConversionTest, PixelsWithoutAHeightGiveNoPoint) {
    const auto skipsFirst = [](double none) {
        return [none](int column, int row) { return column + row == 0 ? none : 100.0 + column; };
    };
    DemSample plain;
    plain.value = skipsFirst(-9999);
    plain.noData = -9999;
    DemSample rounded = plain;
    rounded.value = skipsFirst(-9999.9);
    rounded.noData = -9999.9;  // no single-precision number
    DemSample nan = plain;
    nan.value = skipsFirst(kNaN);
    nan.noData = kNaN;
    DemSample unmarked = nan;
    unmarked.noData.reset();
    DemSample whole = plain;
    whole.type = GDT_Int16;
    DemSample large = plain;
    large.type = GDT_UInt32;
    large.value = skipsFirst(4294967295.0);
    large.noData = 4294967295.0;
    DemSample masked;
    masked.hidesFirstPixel = true;
    DemSample scaled = whole;  // "no data" is said of the numbers that the file holds
    scaled.scale = 0.1;
    scaled.offset = 5;
    for (const DemSample& sample : {plain, rounded, nan, unmarked, whole, large, masked, scaled}) {
        const DemConversionResult result = Convert(sample);
        EXPECT_EQ(result.points, 34U);
        EXPECT_TRUE(result.warnings.empty());
        EXPECT_EQ(PointsOf(result.lasPath).size(), 34U);
        EXPECT_GT(result.min[2], 10);
    }
    DemSample impossible = unmarked;
    // Heights within one unit are read twice, and counted once.
    impossible.value = [](int column, int row) { return column + row == 0 ? -3.4e38 : 20 + column * 0.1; };
    const DemConversionResult result = Convert(impossible);
    EXPECT_EQ(result.points, 34U);
    ASSERT_EQ(result.warnings.size(), 1U);
    EXPECT_EQ(result.warnings[0].find(L"1 "), 0U) << ToUtf8(result.warnings[0]);
}

TEST_F(DemConversionTest, HeightsFollowScaleOffsetAndUnit) {
    const double foot = 0.3048;
    const double surveyFoot = 1200.0 / 3937.0;
    const struct {
        const char* crs;
        const char* unit;
        double scale, offset, factor;
    } cases[] = {
        {"EPSG:25832", "", 0.1, -50, 1},
        {"EPSG:25832", "m", 1, 0, 1},
        {"EPSG:25832", "ft", 1, 0, foot},
        {"EPSG:25832", "US survey foot", 1, 0, surveyFoot},
        {"EPSG:25832", "cm", 2, 10, 0.01},
        {"EPSG:2263", "metre", 1, 0, 1 / surveyFoot},
        {"EPSG:2263+5703", "ft", 1, 0, foot},  // the vertical part is in metres
        {"EPSG:4326", "ft", 1, 0, foot},
        {"EPSG:25832", "elephants", 1, 0, 1},
        {"", "ft", 1, 0, 1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.crs) + " " + c.unit);
        DemSample sample;
        sample.crs = c.crs;
        sample.unit = c.unit;
        sample.scale = c.scale;
        sample.offset = c.offset;
        const DemConversionResult result = Convert(sample);
        EXPECT_NEAR(result.min[2], (100 * c.scale + c.offset) * c.factor, 0.0006);
        EXPECT_NEAR(result.max[2], (107 * c.scale + c.offset) * c.factor, 0.0006);
        EXPECT_EQ(result.warnings.empty(), c.factor == 1);
    }
}

TEST_F(DemConversionTest, TheScaleOfHeightsFollowsTheirRange) {
    const struct {
        double low, high, scale;
    } cases[] = {
        {0, 8848, 0.001}, {-11000, 8848, 0.001}, {2e6, 2.1e6, 0.001}, {3e6, 3.1e6, 0.001}, {-5e6, 5e6, 0.01},
        {0, 1e9, 1},      {100.25, 100.5, 1e-4}, {5, 5, 0.001},       {0, 0.00123, 1e-6},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.high);
        DemSample sample;
        sample.type = GDT_Float64;
        sample.value = [&c](int column, int row) {
            return c.low + (c.high - c.low) * (column + 7 * row) / 34;
        };
        const DemConversionResult result = Convert(sample);
        EXPECT_EQ(result.points, 35U);
        const auto file = LASFile::Open(result.lasPath, true, true);
        const LasHeader& header = file->Header();
        EXPECT_DOUBLE_EQ(header.Scale()[2], c.scale);
        EXPECT_NEAR(result.min[2], c.low, 0.501 * c.scale);
        EXPECT_NEAR(result.max[2], c.high, 0.501 * c.scale);
    }
}

TEST_F(DemConversionTest, ThinningKeepsOneOfNEvenly) {
    DemSample sample;
    sample.width = 64;
    sample.height = 48;
    const std::wstring path = Write(sample);
    for (const unsigned n : {1U, 2U, 3U, 4U, 16U, 64U, 256U, 100000U}) {
        options_.thinning = n;
        SCOPED_TRACE(n);
        const double expected = std::max(64.0 * 48 / n, 1.0);
        const auto points = PointsOf(Convert(path).lasPath);
        EXPECT_NEAR(static_cast<double>(points.size()), expected, expected * 0.15);
        // At best points lie in equilateral triangles, 1.07 times the square root of n pixels apart.
        for (std::size_t i = 1; i < points.size(); ++i) {
            const double distance = std::hypot(points[i][0] - points[0][0], points[i][1] - points[0][1]);
            ASSERT_GE(distance, 2 * 0.8 * std::sqrt(n));
        }
    }
}

TEST_F(DemConversionTest, AnIgnoredCrsIsNotWritten) {
    DemSample sample;
    sample.crs = "EPSG:2263";
    sample.unit = "m";
    options_.ignoreCrs = true;
    for (const int format : {0, 6}) {
        options_.pointFormat = format;
        const DemConversionResult result = Convert(sample);
        EXPECT_TRUE(result.wkt.empty());
        EXPECT_TRUE(result.warnings.empty());
        EXPECT_NEAR(result.min[2], 100, 0.001) << "there is no unit to convert heights to";
        EXPECT_FALSE(InspectLasFile(result.lasPath).file->HasProjectionRecords());
    }
}

TEST(DemVersionItems, SkipTheTwo) {
    const std::pair<int, int> cases[] = {{0, 0}, {1, 1}, {3, 2}, {4, 3}, {5, 4}, {2, 4}, {-1, 4}, {6, 4}};
    for (const auto& [item, minor] : cases) {
        EXPECT_EQ(MinorVersionOfItem(item), minor) << item;
    }
}

}  // namespace
}  // namespace orvex
