// Photos as rows: state, findings, cells, and what their neighbours say of them.
#include "photo/PhotoRow.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <iterator>

#include "host/utilities/testing/PhotoSamples.h"
#include "photo/PhotoColumns.h"
#include "photo/PhotoSeries.h"
#include "support/Format.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::IsSupersetOf;
using testing::JpegWith;
using ::testing::Not;
using testing::PosedPhoto;
using testing::TemporaryFolder;
using testing::XmpWith;
using Stated = std::vector<std::pair<std::string, std::string>>;

std::vector<std::string> CodesOf(const PhotoRow& row) {
    std::vector<std::string> codes;
    std::ranges::transform(row.findings, std::back_inserter(codes), &Finding::code);
    return codes;
}

PhotoRow Inspected(const std::string& bytes) {
    const TemporaryFolder folder;
    return InspectPhoto(folder.Write(L"photo.jpg", bytes));
}

PhotoRow Stating(const Stated& properties) {
    return Inspected(JpegWith({}, XmpWith("http://orvex.com/photo/1.0/", properties)));
}

std::wstring Shown(const PhotoRow& row, const char* column) {
    return CellText(ColumnNamed(PhotoColumns(), column), row);
}

constexpr const wchar_t* kZero = L"0.00000000";
constexpr struct {
    const char* name;
    const wchar_t* text;  ///< null: checked apart
} kCells[] = {
    {"loadFlag", L"0"},
    {"timeUtc", L"2019-07-14 09:21:33"},
    {"posQuality", L"NONE"},
    {"oriQuality", L"NONE"},
    {"path", nullptr},
    {"fileName", L"photo.jpg"},
    {"folder", nullptr},
    {"size", L"0.00"},
    {"modified", nullptr},
    {"summary", L"True Pose Photo"},
    {"imageUniqueId", L"Not available"},
    {"platformId", L"Unknown"},
    {"longitude", L"-11.25000000"},
    {"latitude", L"47.50000000"},
    {"altitude", L"612.50000000"},
    {"yaw", kZero},
    {"pitch", kZero},
    {"roll", kZero},
    {"xyAccuracy", kZero},
    {"zAccuracy", kZero},
    {"rollPitchAccuracy", kZero},
    {"yawAccuracy", kZero},
    {"adjustedGpsSeconds", L"247131311.00000000"},
    {"calibrated", L"FALSE"},
    {"imageHeight", L"480"},
    {"imageWidth", L"640"},
    {"focalLength", L"35.00000000"},
    {"principalPointX", kZero},
    {"principalPointY", kZero},
    {"radialDistortionK1", kZero},
    {"radialDistortionK2", kZero},
    {"radialDistortionK3", kZero},
    {"tangentialDistortionP1", kZero},
    {"tangentialDistortionP2", kZero},
    {"calibrationDate", L"Not available"},
    {"cameraModel", L""},
    {"fileType", L"JPEG"},
    {"imageSize", L"640 x 480"},
    {"width", L"640"},
    {"height", L"480"},
    {"bands", L"3"},
    {"bitsPerBand", L"8"},
    {"colorModel", L"RGB"},
    {"photometric", L"YCbCr"},
    {"projectionCode", L"EPSG:4326"},
    {"overviews", L"0"},
    {"pixelSize", L""},
    {"pixelSizes", L""},
    {"minimumX", L"-11.25"},
    {"maximumX", L"-11.25"},
    {"minimumY", L"47.50"},
    {"maximumY", L"47.50"},
    {"crsName", L"WGS 84"},
    {"linearUnit", L"Meters"},
    {"angularUnit", L"degree"},
    {"wkt", nullptr},
};

TEST(PhotoColumnsTest, ShowATruePosePhotoInTheirOrder) {
    const PhotoRow row = Inspected(PosedPhoto(-11.25, 47.5, 612.5, "2019:07:14", 33693));
    const auto columns = PhotoColumns();
    ASSERT_EQ(columns.size(), std::size(kCells));
    for (std::size_t i = 0; i < columns.size(); ++i) {
        EXPECT_STREQ(columns[i].name, kCells[i].name);
        if (kCells[i].text != nullptr) {
            EXPECT_EQ(CellText(columns[i], row), kCells[i].text) << columns[i].name;
        }
    }
    EXPECT_EQ(ColumnNamed(columns, "summary").look.colour(row), 0x008000U);
    EXPECT_EQ(columns[0].look.icon(row), 3);
    EXPECT_EQ(columns[0].width, 18);
    EXPECT_EQ(Shown(row, "path"), row.path);
    EXPECT_EQ(std::get<std::int64_t>(ColumnNamed(columns, "modified").cell(row)), row.modifiedMs);
    EXPECT_EQ(Shown(row, "modified"), UtcTimeText(row.modifiedMs));
    EXPECT_THAT(row.findings, IsEmpty());
    EXPECT_THAT(WhyNotTruePose(row), IsEmpty());
}

TEST(PhotoRowTest, IsATruePoseOnlyWithAllOfIt) {
    const std::string wkt =
        "GEOGCS[&quot;WGS 84&quot;,DATUM[&quot;WGS_1984&quot;,SPHEROID[&quot;WGS "
        "84&quot;,6378137,298.257223563]],"
        "PRIMEM[&quot;Greenwich&quot;,0],UNIT[&quot;degree&quot;,0.0174532925]]";
    const struct {
        const char* what;
        Stated stated;
        std::vector<std::string> lacks;
    } rows[] = {
        {"all",
         {{"GPSLongitude", "8"}, {"GPSLatitude", "9"}, {"GPSAltitude", "-1"}, {"GeographicWKT", wkt}},
         {}},
        {"longitude 0",
         {{"GPSLongitude", "0"}, {"GPSLatitude", "9"}, {"GPSAltitude", "1"}, {"GeographicWKT", wkt}},
         {"coordinate-zero"}},
        {"altitude 0",
         {{"GPSLongitude", "8"}, {"GPSLatitude", "9"}, {"GPSAltitude", "0"}, {"GeographicWKT", wkt}},
         {"no-altitude"}},
        {"no CRS", {{"GPSLongitude", "8"}, {"GPSLatitude", "9"}, {"GPSAltitude", "1"}}, {"no-crs"}},
        {"0, 0",
         {{"GPSLongitude", "0"}, {"GPSLatitude", "0"}, {"GPSAltitude", "1"}, {"GeographicWKT", wkt}},
         {"position-zero"}},
        {"nothing", {}, {"no-position", "no-altitude", "no-crs"}},
    };
    for (const auto& row : rows) {
        const PhotoRow photo = Stating(row.stated);
        ASSERT_TRUE(photo.loadable) << row.what;
        EXPECT_EQ(IsTruePose(photo), row.lacks.empty()) << row.what;
        EXPECT_EQ(WhyNotTruePose(photo).size(), row.lacks.size()) << row.what;
        EXPECT_THAT(CodesOf(photo), IsSupersetOf(row.lacks)) << row.what;
        EXPECT_EQ(Shown(photo, "loadFlag"), row.lacks.empty() ? L"0" : L"1") << row.what;
        EXPECT_EQ(PhotoColumns()[0].look.icon(photo), row.lacks.empty() ? 3 : 5) << row.what;
    }
}

TEST(PhotoRowTest, FindsWhatIsOddAboutOnePhoto) {
    const struct {
        std::pair<std::string, std::string> stated;
        const char* code;
    } rows[] = {
        {{"CameraAdjGpsSec", "500000000"}, "beyond-leap-seconds"},
        {{"CalibratedFocalLength", "0"}, "no-focal-length"},
        {{"CameraGPSXYAccuracy", "1e7"}, "accuracy-absurd"},
        {{"CameraYawAccuracy", "-1"}, "accuracy-absurd"},
        {{"ImageWidth", "6000"}, "size-contradicts"},
        {{"GeographicWKT", "GEOGCS[nonsense"}, "crs-unreadable"},
        {{"GPSLatitude", "91"}, "position-out-of-range"},
    };
    for (const auto& row : rows) {
        Stated stated{{"GPSLongitude", "8"}, row.stated};
        if (row.stated.first != "GPSLatitude") {
            stated.push_back({"GPSLatitude", "9"});
        }
        EXPECT_THAT(CodesOf(Stating(stated)), Contains(row.code)) << row.stated.first;
    }
    // Before 2011-09-14 adjusted GPS seconds are negative: there is a time, but no text of it.
    const PhotoRow early = Stating({{"CameraAdjGpsSec", "-5"}});
    EXPECT_EQ(early.timeUtc, L"");
    EXPECT_THAT(CodesOf(early), Not(Contains("no-gps-time")));
    EXPECT_EQ(Shown(early, "crsName"), L"Unknown");
    EXPECT_EQ(Shown(Stating({{"CameraCalibrated", "true"}}), "calibrated"), L"FALSE");
    EXPECT_EQ(Shown(Stating({{"CameraCalibrated", "TRUE"}}), "calibrated"), L"TRUE");
}

TEST(PhotoRowTest, KeepsThePhotoThatCannotBeRead) {
    const TemporaryFolder folder;
    const PhotoRow row = InspectPhoto(folder.Write(L"text.jpg", "no image"));
    EXPECT_FALSE(row.loadable);
    EXPECT_FALSE(row.threw);
    EXPECT_EQ(Shown(row, "loadFlag"), L"2");
    EXPECT_EQ(row.summary, L"The metadata item 'text.jpg' could not be read.\n");
    EXPECT_THAT(CodesOf(row), ElementsAre("unreadable"));
    EXPECT_EQ(LoadFlagOf(row), LoadFlag::NotLoadable);
    EXPECT_EQ(PhotoColumns()[0].look.icon(row), 6);
    for (const PhotoRow& failed : {row, UnreadPhoto(L"/a/b.jpg", L"because")}) {
        EXPECT_FALSE(WhyNotTruePose(failed).empty());
        for (const Column<PhotoRow>& column : PhotoColumns()) {
            CellText(column, failed);
        }
    }
}

/// A photo that was read, without a file.
PhotoRow Photo(const std::wstring& path, double longitude, double altitude, double seconds,
               double focalLength = 35, std::uint32_t width = 6000) {
    PhotoRow row;
    row.path = path;
    row.loadable = true;
    row.state = PhotoState::Read;
    row.crs = DescribeCrs({});
    row.metadata.gpsLongitude = longitude;
    row.metadata.gpsLatitude = 47;
    row.metadata.gpsAltitude = altitude;
    row.metadata.cameraAdjGpsSec = seconds;
    row.metadata.calibratedFocalLength = focalLength;
    row.metadata.imageWidth = width;
    row.metadata.imageHeight = 4000;
    return row;
}

TEST(PhotoSeriesTest, FindsWhatTheNeighboursShow) {
    std::vector<PhotoRow> rows;
    rows.push_back(Photo(L"/b/9.jpg", 8.001, 500, 100));
    rows.push_back(Photo(L"/a/10.jpg", 8.003, 505, 90));       // behind 9, in natural order
    rows.push_back(Photo(L"/a/9.jpg", 8.002, 500, 100));       // the time of /b/9.jpg, elsewhere
    rows.push_back(Photo(L"/a/11.jpg", 8.003, 505, 120));      // does not move any more
    rows.push_back(Photo(L"/a/12.jpg", 8.004, 900, 130));      // jumps
    rows.push_back(Photo(L"/a/13.jpg", 8.005, 510, 140, 50));  // another lens
    rows.push_back(
        Photo(L"/a/14.jpg", 8.006, 510, 150, 0, 3000));      // smaller; a missing length is no other one
    rows.push_back(Photo(L"/a/copy.jpg", 8.006, 510, 150));  // the same exposure
    PhotoRow upright = Photo(L"/a/15.jpg", 8.007, 510, 149);
    std::swap(upright.metadata.imageWidth, upright.metadata.imageHeight);
    rows.push_back(std::move(upright));
    rows.push_back(UnreadPhoto(L"/a/16.jpg", L"because"));

    const std::vector<std::vector<std::string>> expected{
        {"same-time"},
        {"same-position", "time-backwards"},
        {"same-time"},
        {"same-position"},
        {"altitude-jumps"},
        {"focal-length-differs"},
        {"image-size-differs", "same-exposure"},
        {"same-exposure"},
        {"time-backwards"},
        {"unreadable"},
    };
    for (int round = 0; round < 2; ++round) {
        ComparePhotos(rows);
        for (std::size_t i = 0; i < rows.size(); ++i) {
            EXPECT_THAT(CodesOf(rows[i]), ::testing::ElementsAreArray(expected[i])) << ToUtf8(rows[i].path);
        }
    }
    EXPECT_EQ(rows[5].summary, rows[5].findings.front().text);
    rows.erase(rows.begin() + 2);
    ComparePhotos(rows);
    EXPECT_THAT(CodesOf(rows[0]), IsEmpty()) << "what is gone is no neighbour";
    EXPECT_EQ(rows[0].summary, L"OK");
}

}  // namespace
}  // namespace orvex
