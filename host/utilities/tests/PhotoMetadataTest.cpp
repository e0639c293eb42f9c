// GetExifTagPTreeForImages on photos written byte by byte.
#include <gmock/gmock.h>

#include <boost/property_tree/ptree.hpp>
#include <locale>
#include <map>
#include <stdexcept>

#include "host/utilities/testing/PhotoSamples.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/Format.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using testing::ExifBytes;
using testing::JpegWith;
using testing::TemporaryFolder;
using testing::XmpWith;
using Tree = boost::property_tree::wptree;
using Cells = std::map<std::string, std::string>;
using enum ExifBytes::Order;

constexpr const char* kOwn = "http://orvex.com/photo/1.0/";
constexpr const char* kCamera = "http://pix4d.com/camera/1.0";
constexpr const char* kDji = "http://www.dji.com/drone-dji/1.0/";

Tree Nodes(const std::vector<std::wstring>& paths) {
    Tree tree;
    OrvexUtilities::GetExifTagPTreeForImages(paths, tree);
    return tree.get_child(L"Images");
}

Cells Read(const std::string& bytes) {
    const TemporaryFolder folder;
    const Tree nodes = Nodes({folder.Write(L"B\u00E4ume.jpg", bytes)});
    Cells cells;
    for (const auto& [key, child] : nodes.front().second) {
        cells[ToUtf8(key)] = ToUtf8(child.data());
    }
    return cells;
}

/// Expects keys to have these values; an empty one is a missing key.
void ExpectCells(const std::string& bytes, const Cells& expected, const std::string& what) {
    Cells cells = Read(bytes);
    for (const auto& [key, value] : expected) {
        EXPECT_EQ(cells[key], value) << what << ": " << key;
    }
}

TEST(PhotoMetadata, ReadsPositionsOfExifInEveryForm) {
    using Fractions = std::vector<ExifBytes::Fraction>;
    const struct {
        const char* what;
        Fractions latitude;
        const char* hemisphere;
        const char* text;
    } rows[] = {
        {"degrees, minutes, seconds", {{52, 1}, {30, 1}, {18, 1}}, "N", "52.505"},
        {"south", {{33, 1}, {30, 1}, {0, 1}}, "S", "-33.5"},
        {"a hemisphere in words", {{33, 1}, {30, 1}, {0, 1}}, "South", "-33.5"},
        {"decimal degrees", {{52505, 1000}}, "N", "52.505"},
        {"decimal minutes, seconds left out as 0/0", {{52, 1}, {303, 10}, {0, 0}}, "N", "52.505"},
        {"a denominator of 0", {{52, 0}, {30, 1}, {18, 1}}, "N", ""},
        {"a denominator of 0 below a number", {{52, 1}, {30, 1}, {18, 0}}, "N", ""},
        {"0", {{0, 1}, {0, 1}, {0, 1}}, "N", "0"},
        {"numbers that need all 32 bits", {{4000000000, 100000000}}, "N", "40"},
        {"no hemisphere", {{52, 1}, {30, 1}, {18, 1}}, "", "52.505"},
        {"no values", {}, "N", ""},
    };
    for (const auto& row : rows) {
        for (const auto order : {Little, Big}) {
            ExifBytes exif(order);
            exif.Position(8.25, 1, 100)
                .Text(ExifBytes::kGps, 1, row.hemisphere)
                .Fractions(ExifBytes::kGps, 2, row.latitude);
            const bool isThere = *row.text != '\0';
            ExpectCells(
                JpegWith(exif.Build()),
                {{"GPSLatitude", row.text}, {"GPSLongitude", isThere ? "8.25" : ""}, {"GPSAltitude", "100"}},
                row.what);
        }
    }
}

TEST(PhotoMetadata, ReadsHeightsTimesAndTheCamera) {
    ExifBytes exif(Big);
    exif.Position(-73.5, 40.25, -3.983).GpsTime("2019:07:14", 9, 21, {3325, 100});
    exif.Text(ExifBytes::kImage, 0x10F, "Maker").Text(ExifBytes::kImage, 0x110, "M 1  ");
    exif.Fractions(ExifBytes::kExif, 0x920A, {{88, 10}}).Text(ExifBytes::kExif, 0xA420, "abc");
    exif.Fractions(ExifBytes::kGps, 0x11, {{18075, 100}}).Text(ExifBytes::kGps, 0x12, "WGS-84  ");
    exif.Bytes(ExifBytes::kExif, 0x927C, std::string(500, '\xFF'));  // maker notes
    const Cells expected{{"GPSLongitude", "-73.5"},
                         {"GPSAltitude", "-3.983"},
                         {"CameraAdjGpsSec", "247131311.25"},
                         {"CameraModel", "Maker M 1"},
                         {"CameraYaw", "180.75"},
                         {"CalibratedFocalLength", "8.8"},
                         {"ImageUniqueID", "abc"},
                         {"ImageWidth", "640"},
                         {"ImageHeight", "480"},
                         {"Bands", "3"},
                         {"BitsPerBand", "8"},
                         {"FileType", "JPEG"},
                         {"PlatformID", ""},
                         {"POSQuality", ""}};
    ExpectCells(JpegWith(exif.Build()), expected, "all");
    EXPECT_THAT(Read(JpegWith(exif.Build()))["GeographicWKT"], ::testing::StartsWith("GEOGCS[\"WGS 84\""));

    exif.Text(ExifBytes::kGps, 0x12, "TOKYO")
        .Text(ExifBytes::kGps, 0x10, "M")
        .Text(ExifBytes::kGps, 0x1D, "");
    ExpectCells(JpegWith(exif.Build()), {{"GeographicWKT", ""}, {"CameraYaw", ""}, {"CameraAdjGpsSec", ""}},
                "another datum, magnetic north, no date");
}

TEST(PhotoMetadata, AsksTheSourcesInTheirOrder) {
    ExifBytes exif;
    exif.Position(1, 2, 3).Fractions(ExifBytes::kExif, 0x920A, {{35, 1}});
    const auto with = [&](const char* address,
                          const std::vector<std::pair<std::string, std::string>>& properties,
                          bool asElements = false) {
        return JpegWith(exif.Build(), XmpWith(address, properties, asElements));
    };
    for (const bool asElements : {false, true}) {
        ExpectCells(with(kOwn,
                         {{"GPSLongitude", "16319/100"},
                          {"GPSLatitude", "+24.5"},
                          {"GPSAltitude", "x"},
                          {"CameraPitch", "1/0"},
                          {"CameraCalibrated", "TRUE"},
                          {"GeographicWKT", "GEOGCS[]"}},
                         asElements),
                    {{"GPSLongitude", "163.19"},
                     {"GPSLatitude", "24.5"},
                     {"GPSAltitude", "3"},
                     {"CameraPitch", ""},
                     {"CameraCalibrated", "TRUE"},
                     {"GeographicWKT", "GEOGCS[]"},
                     {"CalibratedFocalLength", "35"}},
                    "own");
    }
    ExpectCells(with(kOwn, {{"GPSLongitude", "7"}}), {{"GPSLongitude", "1"}, {"GPSLatitude", "2"}},
                "a coordinate alone is no position");
    ExpectCells(with(kOwn, {{"GPSLongitude", "7"}, {"GPSLatitude", "8"}}),
                {{"GPSLongitude", "7"}, {"GeographicWKT", ""}},
                "own positions are on the datum that they state");
    for (const char* address :
         {kCamera, "http://pix4d.com/camera/1.0/", "http://ns.sensefly.com/Camera/1.0/", "Camera/"}) {
        ExpectCells(with(address, {{"Yaw", "274.5"},
                                   {"GPSXYAccuracy", "5"},
                                   {"PrincipalPoint", "3.1,2.5"},
                                   {"PerspectiveFocalLength", "8"},
                                   {"PerspectiveDistortion", "1, 2, 3, 4, 5"}}),
                    {{"CameraYaw", "274.5"},
                     {"CameraGPSXYAccuracy", "5"},
                     {"CalibratedCY", "2.5"},
                     {"CalibratedK3", "3"},
                     {"CalibratedP2", "5"},
                     {"CalibratedFocalLength", "8"},
                     {"GPSLongitude", "1"}},
                    address);
    }
    ExpectCells(
        with(kDji, {{"GpsLongtitude", "120.95"},
                    {"GpsLatitude", "24.67"},
                    {"AbsoluteAltitude", "+186.51"},
                    {"GimbalYawDegree", "-90.30"},
                    {"FlightYawDegree", "-86"},
                    {"FlightRollDegree", "-5"},
                    {"DewarpData", "2018-09-07;3657.0,3650.6,-4.03,23.1,-0.26,0.11,0.0009,0.00008,-0.03"}}),
        {{"GPSLongitude", "120.95"},
         {"GPSLatitude", "24.67"},
         {"GPSAltitude", "186.51"},
         {"CameraYaw", "-90.3"},
         {"CameraRoll", "-5"},
         {"CalibratedDate", "2018-09-07"},
         {"CalibratedFocalLength", "3657"},
         {"CalibratedK1", "-0.26"},
         {"CalibratedK3", "-0.03"},
         {"CalibratedP2", "8e-05"}},
        "a drone, with the tag that is misspelt");
}

TEST(PhotoMetadata, ReadsPropertiesOfListsAndPacketsThatAreDamaged) {
    const std::string yaw = "<v:Yaw>12.5</v:Yaw>";
    const auto packet = [](const std::string& inside) {
        return "<r:RDF xmlns:r=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\" xmlns:v=\"" +
               std::string(kCamera) + "\"><r:Description>" + inside + "</r:Description></r:RDF>";
    };
    const std::string deep = [] {
        std::string text;
        for (int i = 0; i < 5000; ++i) {
            text += "<v:a>";
        }
        return text;
    }();
    const struct {
        const char* what;
        std::string xmp;
        const char* yaw;
    } rows[] = {
        {"a list", packet("<v:Yaw><r:Seq> <r:li>12.5</r:li> </r:Seq></v:Yaw>"), "12.5"},
        {"padding of zero bytes", packet(yaw) + std::string(20, '\0'), "12.5"},
        {"a name before it", "xml:XMP=" + packet(yaw), "12.5"},
        {"cut off behind the property", packet(yaw).substr(0, packet(yaw).find("</r:Desc")), "12.5"},
        {"something behind it", packet(yaw) + "<junk", "12.5"},
        {"no XML", "\xFF\xFE", ""},
        {"nested too deeply", packet(yaw + deep), "12.5"},
        {"entities of its own", "<!DOCTYPE x [<!ENTITY a \"12.5\">]>" + packet("<v:Yaw>&a;</v:Yaw>"), ""},
        {"another vocabulary",
         "<r:RDF xmlns:r=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\" xmlns:v=\"urn:x\">" +
             ("<r:Description>" + yaw + "</r:Description></r:RDF>"),
         ""},
    };
    for (const auto& row : rows) {
        ExpectCells(JpegWith({}, row.xmp), {{"CameraYaw", row.yaw}, {"ImageWidth", "640"}}, row.what);
    }
}

std::string Tiff(ExifBytes exif) {
    return exif.Position(11.5, 47.5, 600)
        .Whole(ExifBytes::kImage, 0x100, 4, 4000)
        .Whole(ExifBytes::kImage, 0x101, 3, 3000)
        .Whole(ExifBytes::kImage, 0x115, 3, 3)
        .Whole(ExifBytes::kImage, 0x102, 3, 16)
        .Whole(ExifBytes::kImage, 0x106, 3, 2)
        .Bytes(ExifBytes::kImage, 0x2BC, XmpWith(kCamera, {{"Roll", "-1.5"}}))
        .Whole(ExifBytes::kThumbnail, 0xFE, 4, 1)
        .Build();
}

TEST(PhotoMetadata, ReadsTiffAndBigTiffInBothByteOrders) {
    for (const auto order : {Little, Big}) {
        for (const auto format : {ExifBytes::Format::Classic, ExifBytes::Format::Big}) {
            const bool isBig = format == ExifBytes::Format::Big;
            ExpectCells(Tiff(ExifBytes(order, format)),
                        {{"FileType", isBig ? "BigTIFF" : "TIFF"},
                         {"ImageWidth", "4000"},
                         {"ImageHeight", "3000"},
                         {"Bands", "3"},
                         {"BitsPerBand", "16"},
                         {"Photometric", "2"},
                         {"Overviews", "1"},
                         {"CameraRoll", "-1.5"},
                         {"GPSLongitude", "11.5"},
                         {"GPSAltitude", "600"}},
                        isBig ? "BigTIFF" : "TIFF");
        }
    }
}

TEST(PhotoMetadata, ReadsSizesOfOtherFormats) {
    const std::string zeros(40, '\0');
    const struct {
        std::string bytes;
        const char* type;
        const char* size;
    } rows[] = {
        {std::string("\x89PNG\r\n\x1A\n\0\0\0\rIHDR\0\0\1\0\0\0\0\x80\x08\x02\0\0\0", 29) + zeros, "PNG",
         "256x128"},
        {std::string("GIF89a\x20\0\x10\0", 10) + zeros, "GIF", "32x16"},
        {std::string("BM") + std::string(12, '\0') +
             std::string("\x28\0\0\0\x20\0\0\0\xF0\xFF\xFF\xFF\1\0\x18\0", 16) + zeros,
         "BMP", "32x16"},
        {std::string("\0\0\0\x0CjP  \r\n\x87\n\0\0\0\x1Ejp2h\0\0\0\x16ihdr\0\0\0\x10\0\0\0\x20\0\3\7\0\0\0",
                     42),
         "JPEG 2000", "32x16"},
    };
    for (const auto& row : rows) {
        Cells cells = Read(row.bytes);
        EXPECT_EQ(cells["FileType"], row.type);
        EXPECT_EQ(cells["ImageWidth"] + "x" + cells["ImageHeight"], row.size) << row.type;
    }
}

TEST(PhotoMetadata, ReadsNothingThatDamagedFilesClaim) {
    ExifBytes lies;
    lies.Position(1, 2, 3)
        .Claim(ExifBytes::kGps, 6, 5, 0x20000000, 8)
        .Claim(ExifBytes::kImage, 0x10F, 2, 0xFFFFFFFF, 8);
    lies.Claim(ExifBytes::kExif, 0xA420, 2, 20, 0xFFFFFFF0).Claim(ExifBytes::kImage, 0x2BC, 1, 0xFFFFFFF0, 8);
    lies.Claim(ExifBytes::kThumbnail, 0x201, 4, 1, 0xFFFFFF00)
        .Claim(ExifBytes::kThumbnail, 0x202, 4, 1, 0xFFFFFF00);
    ExpectCells(JpegWith(lies.Build()),
                {{"GPSLongitude", "1"}, {"GPSAltitude", ""}, {"CameraModel", ""}, {"ImageUniqueID", ""}},
                "claims");

    const std::string loop = std::string("II*\0\x08\0\0\0\1\0\0\1\4\0\1\0\0\0\7\0\0\0\x08\0\0\0", 26);
    ExpectCells(loop, {{"ImageWidth", "7"}}, "directories in a circle");
    const std::string whole = testing::PosedPhoto(1, 2, 3);
    for (std::size_t length = 0; length < whole.size(); length += 7) {
        Cells cells = Read(whole.substr(0, length));
        EXPECT_TRUE(cells.contains("Error") || cells.contains("FileType")) << length;
    }
}

TEST(PhotoMetadata, NamesWhatCannotBeRead) {
    const TemporaryFolder folder;
    const std::wstring good = folder.Write(L"a.jpg", testing::PosedPhoto(1, 2, 3));
    const struct {
        std::wstring path;
        StringId error;
    } rows[] = {
        {folder.Name(L"none.jpg"), text::kFileMissing},
        {FromPath(folder.Path()), text::kPhotoIsNoFile},
        {folder.Write(L"text.jpg", "no image"), text::kPhotoFormatUnsupported},
        {folder.Write(L"empty.jpg", ""), text::kPhotoFormatUnsupported},
        {folder.Write(L"cut.jpg", "\xFF\xD8\xFF\xE1"), text::kPhotoDamaged},
        {L"http://example.invalid/a.jpg", text::kFileMissing},
        {L"data:image/jpeg;base64,AAAA", text::kFileMissing},
        {L"-", text::kFileMissing},
        {L"", text::kFileMissing},
    };
    std::vector<std::wstring> paths;
    for (const auto& row : rows) {
        paths.push_back(row.path);
    }
    Tree tree;
    EXPECT_FALSE(OrvexUtilities::GetExifTagPTreeForImages(paths, tree));
    paths.push_back(good);
    EXPECT_TRUE(OrvexUtilities::GetExifTagPTreeForImages(paths, tree));
    const Tree& images = tree.get_child(L"Images");
    ASSERT_EQ(images.size(), std::size(rows) + 1);
    auto image = images.begin();
    for (const auto& row : rows) {
        EXPECT_EQ(image->second.get_child(L"SourceFile").data(), row.path);
        EXPECT_EQ(image->second.get_child(L"Error").data(), Text(row.error)) << ToUtf8(row.path);
        ++image;
    }
    EXPECT_EQ(image->second.count(L"Error"), 0U);
    EXPECT_TRUE(Nodes({}).empty());
}

TEST(PhotoMetadata, KeepsTheOrderOfManyPathsAndIgnoresTheLocale) {
    const TemporaryFolder folder;
    constexpr int kPhotos = 200;
    std::vector<std::wstring> paths;
    paths.reserve(kPhotos);
    for (int i = 0; i < kPhotos; ++i) {
        paths.push_back(folder.Write(std::to_wstring(i) + L".jpg", testing::PosedPhoto(i * 0.25, 1.5, 2)));
    }
    const std::locale before = std::locale();
    try {
        std::locale::global(std::locale("de_DE.UTF-8"));
    } catch (const std::runtime_error&) {
        // Not on this machine.
    }
    std::size_t i = 0;
    for (const auto& [name, image] : Nodes(paths)) {
        EXPECT_EQ(image.get_child(L"SourceFile").data(), paths[i]);
        EXPECT_EQ(image.get_child(L"GPSLongitude").data(),
                  FormatText(L"%g", {static_cast<double>(i) * 0.25}));
        ++i;
    }
    std::locale::global(before);
    EXPECT_EQ(i, paths.size());
}

TEST(PhotoThumbnail, IsTheEmbeddedOneAndNoMoreThanAMebibyte) {
    const TemporaryFolder folder;
    const std::string preview = JpegWith({});
    const auto thumbnailOf = [&](const std::string& bytes, std::uint64_t length) {
        ExifBytes exif;
        exif.Whole(ExifBytes::kImage, 0x100, 4, 100);
        exif.Whole(ExifBytes::kThumbnail, 0x202, 4, length).Whole(ExifBytes::kThumbnail, 0x201, 4, 0);
        exif.Whole(ExifBytes::kThumbnail, 0x201, 4, exif.Build().size());
        return OrvexUtilities::GetExifThumbnail(folder.Write(L"a.tif", exif.Build() + bytes));
    };
    EXPECT_EQ(thumbnailOf(preview, preview.size()), preview);
    EXPECT_EQ(thumbnailOf(preview, preview.size() + 1), "") << "longer than the file";
    EXPECT_EQ(thumbnailOf("no JPEG", 7), "");
    EXPECT_EQ(thumbnailOf(preview + std::string(1 << 20, ' '), (1 << 20) + 1), "") << "too large";
    EXPECT_EQ(OrvexUtilities::GetExifThumbnail(folder.Write(L"b.jpg", preview)), "");
    EXPECT_EQ(OrvexUtilities::GetExifThumbnail(folder.Name(L"none.jpg")), "");
}

}  // namespace
}  // namespace orvex
