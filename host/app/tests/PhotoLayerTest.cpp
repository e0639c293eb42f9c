#include "host/app/PhotoLayer.h"

#include <gmock/gmock.h>
#include <ogrsf_frmts.h>

#include "host/app/NewShapefile.h"
#include "host/dem/HostGdal.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"
#include "support/testing/Scripted.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using testing::ReadFile;
using testing::TemporaryFolder;

/// Stops at a position.
struct Steps final : testing::RecordingProgress {
    std::uint64_t stopAt = UINT64_MAX;

    bool IsCancelled() override { return position >= stopAt; }
};

PhotoRecord Photo(const std::wstring& path, double longitude, double latitude) {
    PhotoRecord photo;
    photo.path = path;
    photo.position = {{longitude, latitude, 350.25}};
    photo.timeUtc = L"2024-05-01 10:20:30";
    photo.camera = L"K\u00e4mera 1";
    photo.masterTick = 1398593448.125;
    return photo;
}

/// The records of a layer as texts: the point, then the fields, with a blank between.
std::vector<std::string> RecordsOf(const std::wstring& path) {
    SetUpGdal();
    const GDALDatasetUniquePtr dataset(GDALDataset::Open(ToUtf8(path).c_str(), GDAL_OF_VECTOR));
    std::vector<std::string> records;
    if (dataset == nullptr) {
        return records;
    }
    for (const auto& feature : *dataset->GetLayer(0)) {
        const OGRPoint& point = *feature->GetGeometryRef()->toPoint();
        std::string& record = records.emplace_back(std::to_string(std::lround(point.getX() * 100)) + " " +
                                                   std::to_string(std::lround(point.getY() * 100)));
        for (int i = 0; i < feature->GetFieldCount(); ++i) {
            record += std::string(" ") + feature->GetFieldAsString(i);
        }
    }
    return records;
}

std::wstring CodesOf(const std::vector<FileFailure>& files) {
    std::wstring text;
    for (const auto& [path, cause] : files) {
        text += FileNameOf(path) + L": " + cause + L"\n";
    }
    return text;
}

TEST(PhotoLayer, HoldsTheRecordsAndNeverTakesTheNameOfAnother) {
    const TemporaryFolder folder;
    const std::wstring target = folder.Name(L"F\u00f6tos/Photos.shp");
    const std::wstring path = folder.Name(L"\u00dcber \U0001F4F7.jpg");
    PhotoRecord unplaced = Photo(L"/p/unplaced.jpg", 0, 0);
    unplaced.position.reset();
    Steps steps;
    const auto result = WritePhotoLayer({Photo(path, 9.5, 48.25), unplaced}, {target}, steps);
    EXPECT_EQ(result.path, target);
    EXPECT_EQ(result.added, 1U);
    EXPECT_EQ(CodesOf(result.notWritten), L"unplaced.jpg: " + Text(text::kPhotoWithoutPosition) + L"\n");
    EXPECT_TRUE(result.shortened.empty());
    EXPECT_EQ(steps.total, 2U);
    EXPECT_THAT(RecordsOf(target),
                ::testing::ElementsAre("950 4825 2024-05-01 10:20:30 48.2500000000 9.5000000000 350.2500 "
                                       "1398593448.125000 K\u00e4mera 1 " +
                                       ToUtf8(path)));
    EXPECT_EQ(ReadFile(WithExtension(target, L".cpg")).substr(0, 5), "UTF-8");
    EXPECT_NE(ReadFile(WithExtension(target, L".prj")).find("D_WGS_1984"), std::string::npos);
    EXPECT_EQ(ReadFile(target)[32], 11) << "points with a height";

    const std::string before = ReadFile(target);
    const auto second = WritePhotoLayer({Photo(path, 1, 2)}, {target}, steps);
    EXPECT_EQ(FileNameOf(second.path), L"Photos 2.shp");
    EXPECT_EQ(ReadFile(target), before);
    EXPECT_EQ(WritePhotoLayer({unplaced}, {target}, steps).path, L"") << "a layer without points is none";
    std::size_t files = 0;
    EXPECT_EQ(ListFolder(FolderOf(target), [&files](const FolderEntry&) { return ++files > 0; }), 0);
    EXPECT_EQ(files, 10U) << "two shapefiles of five files, and nothing else";
}

/// A photo layer of another program: in UTM, without heights, with a field of its own, its records in an
/// eight-bit code.
std::wstring ForeignLayer(const TemporaryFolder& folder, const std::vector<std::wstring>& photos) {
    SetUpGdal();
    std::wstring path = folder.Name(L"FLIGHT.shp");
    const GDALDatasetUniquePtr dataset(GetGDALDriverManager()
                                           ->GetDriverByName("ESRI Shapefile")
                                           ->Create(ToUtf8(path).c_str(), 0, 0, 0, GDT_Unknown, nullptr));
    OGRSpatialReference utm;
    utm.importFromEPSG(25832);
    CPLStringList options;
    options.SetNameValue("ENCODING", "ISO-8859-1");
    OGRLayer* const layer = dataset->CreateLayer("FLIGHT", &utm, wkbPoint, options.List());
    for (const char* name : {"PHOTOPATH", "TIMEUTC", "CAMERAID", "NOTE"}) {
        OGRFieldDefn field(name, OFTString);
        field.SetWidth(60);
        EXPECT_EQ(layer->CreateField(&field), OGRERR_NONE);
    }
    for (const char* name : {"LATITUDE", "LONGITUDE", "ALTITUDE", "MASTERTICK"}) {
        OGRFieldDefn field(name, OFTReal);
        field.SetWidth(14);
        field.SetPrecision(2);
        EXPECT_EQ(layer->CreateField(&field), OGRERR_NONE);
    }
    for (const std::wstring& photo : photos) {
        OGRFeature feature(layer->GetLayerDefn());
        const OGRPoint point(500000, 5400000);
        feature.SetGeometry(&point);
        feature.SetField("PHOTOPATH", ToUtf8(photo).c_str());
        feature.SetField("NOTE", "sch\u00f6n");
        EXPECT_EQ(layer->CreateFeature(&feature), OGRERR_NONE);
    }
    return path;
}

TEST(PhotoLayer, AppendingKeepsRecordsFieldsAndCoordinateSystem) {
    const TemporaryFolder folder;
    const std::wstring layer = ForeignLayer(folder, {L"1.jpg", folder.Name(L"2.jpg")});
    const std::string prj = ReadFile(WithExtension(layer, L".prj"));
    folder.Write(L"FLIGHT.qix", "an index of the old records");
    const std::vector<PhotoRecord> photos = {Photo(folder.Name(L"1.jpg"), 9, 0),
                                             Photo(folder.Name(L"3.jpg"), 9, 48)};
    const std::string old = "50000000 540000000 ";
    const std::string note = " sch\u00f6n ";
    Steps steps;
    auto result = WritePhotoLayer(photos, {layer, true, false}, steps);
    EXPECT_EQ(result.path, layer);
    EXPECT_EQ(result.added, 1U);
    EXPECT_EQ(CodesOf(result.notWritten), L"1.jpg: " + Text(text::kPhotoInLayerAlready) + L"\n");
    std::vector<std::string> records = RecordsOf(layer);
    ASSERT_EQ(records.size(), 3U);
    EXPECT_THAT(records[0], ::testing::StartsWith(old + "1.jpg   sch\u00f6n"));
    EXPECT_THAT(records[2], ::testing::StartsWith("50000000 531630022 "));
    EXPECT_EQ(steps.total, 4U);

    result = WritePhotoLayer(photos, {layer, true, true}, steps);
    EXPECT_EQ(std::pair(result.added, result.replaced), std::pair(std::size_t{0}, std::size_t{2}));
    records = RecordsOf(layer);
    ASSERT_EQ(records.size(), 3U);
    EXPECT_THAT(records[0], ::testing::AllOf(::testing::StartsWith("50000000 0 "),
                                             ::testing::HasSubstr(note + "0.00 9.00 350.25")));
    EXPECT_THAT(records[1], ::testing::StartsWith(old));
    EXPECT_EQ(ReadFile(WithExtension(layer, L".prj")), prj);
    EXPECT_FALSE(FileExists(folder.Name(L"FLIGHT.qix")));
    EXPECT_EQ(folder.Entries(), 5U);
}

TEST(PhotoLayer, StoppingOrFailingLeavesTheOldOne) {
    const TemporaryFolder folder;
    const std::wstring layer = ForeignLayer(folder, {L"1.jpg", L"2.jpg"});
    const std::string before = ReadFile(layer) + ReadFile(WithExtension(layer, L".dbf"));
    const auto expectUnchanged = [&] {
        EXPECT_EQ(ReadFile(layer) + ReadFile(WithExtension(layer, L".dbf")), before);
        EXPECT_EQ(folder.Entries(), 5U);
    };
    for (const std::uint64_t stopAt : {1U, 2U, 3U, 4U}) {
        Steps steps;
        steps.stopAt = stopAt;
        const auto result = WritePhotoLayer({Photo(L"/p/a.jpg", 9, 48), Photo(L"/p/b.jpg", 9, 48)},
                                            {layer, true, false}, steps);
        EXPECT_TRUE(result.stopped) << stopAt;
        EXPECT_EQ(result.path, L"");
        expectUnchanged();
    }
    // A name that is taken between the check and the end.
    Steps steps;
    NewShapefile file(folder.Name(L"new.shp"));
    folder.Write(FileNameOf(file.Path()), "shapes");
    folder.Write(FileNameOf(WithExtension(file.Path(), L".dbf")), "records");
    folder.Write(L"new.dbf", "somebody's own");
    EXPECT_THROW(file.Commit({layer, WithExtension(layer, L".dbf")}), LDataError);
    EXPECT_EQ(ReadFile(folder.Name(L"new.dbf")), "somebody's own");
    EXPECT_EQ(ReadFile(layer) + ReadFile(WithExtension(layer, L".dbf")), before);
    EXPECT_FALSE(FileExists(folder.Name(L"new.shp")));
}

TEST(PhotoLayer, WhatDoesNotFitIsShortenedAndTold) {
    const TemporaryFolder folder;
    const std::wstring target = folder.Name(L"Photos.shp");
    const std::wstring deep(230, L'\u00e4');
    const std::wstring base = folder.Name({});
    const std::wstring justFits = base + std::wstring(254 - base.size(), L'a');
    const struct {
        const char* name;
        std::wstring path;
        std::wstring stored;
        bool isTold;
    } cases[] = {
        {"a full path that just fits", justFits, justFits, false},
        {"one that fits when it is relative", folder.Name(L"x/" + std::wstring(248, L'b')),
         NativePath(L"x/" + std::wstring(248, L'b')), false},
        {"one of 460 bytes", L"/" + deep + L"/c.jpg", L"c.jpg", true},
        {"a name of 464 bytes", L"/x/" + deep + L".jpg", std::wstring(127, L'\u00e4'), true},
    };
    Steps steps;
    for (const auto& c : cases) {
        const auto result = WritePhotoLayer({Photo(c.path, 1, 2)}, {target}, steps);
        EXPECT_EQ(!result.shortened.empty(), c.isTold) << c.name;
        ASSERT_EQ(RecordsOf(result.path).size(), 1U) << c.name;
        EXPECT_THAT(RecordsOf(result.path)[0], ::testing::EndsWith(" " + ToUtf8(c.stored))) << c.name;
        bool hasPhoto = false;
        OpenPhotoLayer(result.path)->HasPhoto(c.path, hasPhoto);
        EXPECT_EQ(hasPhoto, !c.isTold) << c.name;
    }
    PhotoRecord photo = Photo(L"/p/a.jpg", 1, 2);
    photo.camera = std::wstring(40, L'\u00e4');
    EXPECT_EQ(CodesOf(WritePhotoLayer({photo}, {target}, steps).shortened),
              L"a.jpg: " +
                  FormatText(Text(text::kPhotoTextTooLong), {L"CameraID", std::wstring(32, L'\u00e4')}) +
                  L"\n");
}

TEST(PhotoLayer, AnswersTheComponent) {
    const TemporaryFolder folder;
    Steps steps;
    const std::wstring own =
        WritePhotoLayer({Photo(folder.Name(L"p/\u00e4.jpg"), 1, 2)}, {folder.Name(L"own.shp")}, steps).path;
    const std::wstring foreign = ForeignLayer(folder, {L"1.jpg"});
    const struct {
        std::wstring path;
        std::int32_t type;
        std::wstring photo;
        bool hasPhoto;
    } cases[] = {
        {own, kPointZLayer, folder.Name(L"p/\u00e4.jpg"), true},
        {own, kPointZLayer, folder.Name(L"p/\u00c4.JPG"), true},
        {own, kPointZLayer, folder.Name(L"p/b.jpg"), false},
        {foreign, kPointLayer, folder.Name(L"1.jpg"), true},
        {foreign, kPointLayer, L"1.jpg", false},
    };
    for (const auto& c : cases) {
        const auto layer = OpenPhotoLayer(c.path);
        std::int32_t type = 0;
        bool hasPhoto = false;
        bool hasField = false;
        EXPECT_EQ(layer->GetGeometryType(type), kHostOk);
        EXPECT_EQ(type, c.type);
        EXPECT_EQ(layer->HasPhoto(c.photo, hasPhoto), kHostOk);
        EXPECT_EQ(hasPhoto, c.hasPhoto) << ToUtf8(c.photo);
        for (const wchar_t* name :
             {L"TimeUTC", L"Latitude", L"Longitude", L"Altitude", L"MasterTick", L"CameraID", L"PhotoPath"}) {
            EXPECT_EQ(layer->HasField(name, hasField), kHostOk);
            EXPECT_TRUE(hasField) << ToUtf8(name);
        }
        EXPECT_EQ(layer->HasField(L"Photo", hasField), kHostOk);
        EXPECT_FALSE(hasField);
    }
    const std::wstring damaged = folder.Write(L"damaged.shp", "no shapefile");
    for (const std::wstring& path : {damaged, folder.Name(L"missing.shp"), folder.Write(L"a.txt", "text"),
                                     std::wstring(L"/vsicurl/http://localhost/a.shp"), std::wstring()}) {
        EXPECT_THROW(OpenPhotoLayer(path), LDataError) << ToUtf8(path);
        EXPECT_THROW(WritePhotoLayer({Photo(L"/p/a.jpg", 1, 2)}, {path, true}, steps), LDataError);
    }
    EXPECT_EQ(ReadFile(damaged), "no shapefile");
}

}  // namespace
}  // namespace orvex
