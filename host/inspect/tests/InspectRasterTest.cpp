// Rasters and elevation models through the command.
#include <gmock/gmock.h>

#include <boost/property_tree/json_parser.hpp>
#include <sstream>

#include "host/inspect/InspectCommand.h"
#include "raster/testing/GeoTiff.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using testing::GeoTiff;
using ::testing::HasSubstr;
using ::testing::Not;
using testing::TemporaryFolder;
using Tree = boost::property_tree::ptree;

std::string Print(const std::vector<std::wstring>& arguments, int code = kInspectOk) {
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(RunInspectCommand(arguments, {out, err}), code) << err.str();
    return out.str();
}

std::vector<Tree> Objects(const std::vector<std::wstring>& arguments) {
    std::istringstream in(Print(arguments));
    Tree tree;
    boost::property_tree::read_json(in, tree);
    std::vector<Tree> objects;
    for (const auto& [key, object] : tree) {
        objects.push_back(object);
    }
    return objects;
}

std::vector<double> Numbers(const Tree& array) {
    std::vector<double> numbers;
    for (const auto& [key, number] : array) {
        numbers.push_back(number.get_value<double>());
    }
    return numbers;
}

GeoTiff Heights(double nodata) {
    GeoTiff tiff;
    tiff.type = GDT_Float32;
    tiff.options = {"COMPRESS=LZW", "BIGTIFF=YES"};
    tiff.change = [nodata](GDALDatasetH dataset) {
        GDALSetRasterNoDataValue(GDALGetRasterBand(dataset, 1), nodata);
    };
    return tiff;
}

constexpr char kGrid[] = "ncols 2\nnrows 2\nxllcorner 10\nyllcorner 20\ncellsize 5\n1 2\n3 4\n";

TEST(InspectRaster, JsonTellsWhatTheFileHolds) {
    const TemporaryFolder folder;
    const Tree object = Objects({L"--json", Heights(-9999).Write(folder, L"Gr\u00f6\u00dfe.TIF")}).at(0);
    EXPECT_EQ(object.get<std::string>("kind"), "raster");
    EXPECT_TRUE(object.get<bool>("loadable"));
    EXPECT_EQ(object.get<std::string>("las"), "null");
    EXPECT_EQ(object.get<int>("crs.epsg"), 32633);
    const Tree& raster = object.get_child("raster");
    EXPECT_EQ(raster.get<std::string>("driver"), "GTiff");
    EXPECT_EQ(raster.get<int>("width"), 20);
    EXPECT_EQ(raster.get<int>("height"), 10);
    EXPECT_EQ(raster.get<int>("bands"), 1);
    EXPECT_EQ(raster.get<std::string>("dataType"), "Float32");
    EXPECT_THAT(Numbers(raster.get_child("pixelSize")), ElementsAre(0.5, 0.5));
    EXPECT_THAT(Numbers(raster.get_child("extent")), ElementsAre(500000, 5299995, 500010, 5300000));
    EXPECT_EQ(raster.get<std::string>("unit"), "Meters");
    EXPECT_TRUE(raster.get<bool>("bigTiff"));
    EXPECT_EQ(raster.get<std::string>("compression"), "LZW");
    EXPECT_EQ(raster.get<int>("overviews"), 0);
    EXPECT_EQ(raster.get<double>("nodata"), -9999);
    EXPECT_EQ(raster.get<int>("kind"), 1);
    EXPECT_EQ(raster.get_child("bandDetails").size(), 1U);
}

TEST(InspectRaster, JsonOfWhatIsNotThereIsNull) {
    const TemporaryFolder folder;
    GeoTiff bare;
    bare.transform.reset();
    bare.epsg = 0;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const auto objects = Objects({L"--json", bare.Write(folder, L"a.tif"),
                                  Heights(nan).Write(folder, L"b.tif"), folder.Write(L"c.tif", "no raster")});
    EXPECT_EQ(objects.at(0).get<std::string>("raster.extent"), "null");
    EXPECT_EQ(objects.at(0).get<std::string>("raster.nodata"), "null");
    EXPECT_THAT(Numbers(objects.at(0).get_child("raster.pixelSize")), ElementsAre(0, 0));
    EXPECT_EQ(objects.at(1).get<std::string>("raster.nodata"), "nan");
    EXPECT_EQ(objects.at(2).get<std::string>("raster"), "null");
    EXPECT_EQ(objects.at(2).get<std::string>("crs"), "null");
    EXPECT_FALSE(objects.at(2).get<bool>("loadable"));
}

TEST(InspectRaster, TheKindIsWhatTheNameOrTheOptionSays) {
    const TemporaryFolder folder;
    const std::wstring image = GeoTiff().Write(folder, L"a.tif");
    const std::wstring grid = folder.Write(L"b.ASC", kGrid);
    folder.Write(L"b.prj", "");
    folder.Write(L"a.tif.aux.xml", "<PAMDataset/>");
    folder.Write(L"c.las", "LASF");
    const auto kinds = [&](std::vector<std::wstring> arguments) {
        arguments.insert(arguments.begin(), L"--json");
        std::vector<std::string> kinds;
        for (const Tree& object : Objects(arguments)) {
            kinds.push_back(object.get<std::string>("kind"));
        }
        return kinds;
    };
    const std::wstring all = FromPath(folder.Path());
    EXPECT_THAT(kinds({all}), ElementsAre("raster", "dem", "las")) << "sidecars are no files of their own";
    EXPECT_THAT(kinds({L"--as", L"dem", all}), ElementsAre("dem", "dem"));
    EXPECT_THAT(kinds({L"--as=raster", grid, image}), ElementsAre("raster", "raster"));
    EXPECT_THAT(kinds({L"--as=las", all}), ElementsAre("las"));
    for (const wchar_t* option : {L"--as", L"--as=", L"--as=photo"}) {
        EXPECT_EQ(Print({all, option}, kInspectUsage), "");
    }
}

TEST(InspectRaster, CsvAndTableHaveTheirColumns) {
    const TemporaryFolder folder;
    const std::wstring image = Heights(-9999).Write(folder, L"a.tif");
    std::istringstream csv(Print({L"--csv", image}));
    std::string heading;
    std::string line;
    std::getline(csv, heading);
    std::getline(csv, line);
    EXPECT_THAT(heading, HasSubstr(",companionStatus,driver,width,height,"));
    EXPECT_THAT(line, HasSubstr(",500000,5299995,,500010,5300000,,"));
    EXPECT_THAT(line, HasSubstr(",GTiff,20,10,1,Float32,0.5,0.5,Meters,true,LZW,0,-9999,1"));
    EXPECT_EQ(std::ranges::count(heading, ','), std::ranges::count(line, ','));

    const std::string table = Print({image});
    EXPECT_THAT(table, HasSubstr("0.5 x 0.5 Meters"));
    EXPECT_THAT(table, HasSubstr("20 x 10"));
    EXPECT_THAT(table, Not(HasSubstr("Points"))) << "no column without a word in it";
}

std::vector<GeoTiff> Varied() {
    std::vector<GeoTiff> files;
    for (const GDALDataType type : {GDT_Byte, GDT_UInt16, GDT_Int16, GDT_UInt32, GDT_Int32, GDT_Float32,
                                    GDT_Float64, GDT_CInt16, GDT_CFloat32}) {
        files.emplace_back().type = type;
    }
    files.emplace_back().transform = {{100, 3, 4, 200, 4, -3}};
    files.emplace_back().transform = {{0, 1, 0, 0, 0, 1}};
    files.emplace_back().transform.reset();
    for (const int epsg : {4326, 2263, 3857, 31468, 0}) {
        files.emplace_back().epsg = epsg;
    }
    for (const char* text : {"EPSG:32633+5773", "+proj=laea +lat_0=50 +lon_0=10 +ellps=GRS80"}) {
        files.emplace_back().crsText = text;
    }
    files.emplace_back().bands = 7;
    files.emplace_back().options = {"BIGTIFF=YES", "ENDIANNESS=BIG", "TILED=YES"};
    files.emplace_back() = Heights(-32768);
    return files;
}

/// What the program gdalinfo says of a file.
Tree Gdalinfo(const TemporaryFolder& folder, const std::wstring& path) {
    const std::wstring output = folder.Name(L"gdalinfo.json");
    const std::string command =
        std::string(ORVEX_GDALINFO) + " -json \"" + ToUtf8(path) + "\" >\"" + ToUtf8(output) + "\"";
    EXPECT_EQ(std::system(command.c_str()), 0);
    std::istringstream in(testing::ReadFile(output));
    Tree tree;
    boost::property_tree::read_json(in, tree);
    return tree;
}

TEST(InspectRaster, AgreesWithGdalinfo) {
    if (std::string(ORVEX_GDALINFO).empty()) {
        GTEST_SKIP() << "there is no program gdalinfo for this platform";
    }
    const TemporaryFolder folder;
    int number = 0;
    for (const GeoTiff& file : Varied()) {
        const std::wstring path = file.Write(folder, std::to_wstring(++number) + L".tif");
        const Tree object = Objects({L"--json", path}).at(0);
        const Tree& ours = object.get_child("raster");
        const Tree theirs = Gdalinfo(folder, path);
        EXPECT_THAT(Numbers(theirs.get_child("size")),
                    ElementsAre(ours.get<int>("width"), ours.get<int>("height")));
        const auto transform = theirs.get_child_optional("geoTransform");
        EXPECT_EQ(transform ? Numbers(*transform) : std::vector<double>(),
                  Numbers(ours.get_child("transform")))
            << number;
        EXPECT_EQ(theirs.get_child("bands").size(), ours.get<std::size_t>("bands"));
        EXPECT_EQ(theirs.get_child("bands").front().second.get<std::string>("type"),
                  ours.get<std::string>("dataType"));
        const std::string wkt = theirs.get<std::string>("coordinateSystem.wkt", "");
        const std::string name = object.get<std::string>("crs.name");
        EXPECT_THAT(wkt, HasSubstr(name.empty() ? name : '"' + name + '"')) << number;
        EXPECT_EQ(wkt.empty(), object.get<std::string>("crs.prettyWkt").empty()) << number;
    }
}

}  // namespace
}  // namespace orvex
