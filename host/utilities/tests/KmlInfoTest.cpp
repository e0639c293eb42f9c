#include <cpl_vsi.h>
#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

#include "host/utilities/testing/FeatureAnswer.h"
#include "support/Format.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using testing::Ask;
using testing::FeatureAnswer;
using testing::ReadFile;
using testing::TemporaryFolder;

std::string Kml(const std::string& content) {
    return R"(<?xml version="1.0" encoding="UTF-8"?><kml xmlns="http://www.opengis.net/kml/2.2")"
           R"( xmlns:gx="http://www.google.com/kml/ext/2.2"><Document><name>Plan</name>)" +
           content + "</Document></kml>";
}

std::string Folder(const std::string& name, const std::string& content) {
    return "<Folder><name>" + name + "</name>" + content + "</Folder>";
}

std::string Line(const std::string& coordinates) {
    return "<Placemark><LineString><coordinates>" + coordinates + "</coordinates></LineString></Placemark>";
}

const std::string kPoint = "<Placemark><Point><coordinates>1,2</coordinates></Point></Placemark>";

class KmlFiles {
  public:
    FeatureAnswer Read(const std::string& bytes) {
        return Ask(&OrvexUtilities::GetKMLInfo, folder_.Write(L"plän.kml", bytes));
    }
    std::wstring Zip(const std::vector<std::pair<std::string, std::string>>& entries) {
        std::wstring path = folder_.Name(L"archive" + std::to_wstring(archives_++) + L".kmz");
        std::string archive = "/vsizip/";
        archive += ToUtf8(path);
        // GDAL keeps an archive open for further entries as long as a handle to the archive itself is.
        VSILFILE* const whole = VSIFOpenL(archive.c_str(), "wb");
        for (const auto& [name, content] : entries) {
            VSILFILE* const file = VSIFOpenL(std::string(archive).append("/").append(name).c_str(), "wb");
            VSIFWriteL(content.data(), 1, content.size(), file);
            VSIFCloseL(file);
        }
        VSIFCloseL(whole);
        return path;
    }
    FeatureAnswer ReadZip(const std::vector<std::pair<std::string, std::string>>& entries) {
        return Ask(&OrvexUtilities::GetKMLInfo, Zip(entries));
    }

  private:
    TemporaryFolder folder_;
    int archives_ = 0;
};

void ExpectRefused(const FeatureAnswer& answer, const std::wstring& message, const char* what) {
    EXPECT_FALSE(answer.isRead) << what;
    EXPECT_EQ(answer.features, 0U) << what;
    EXPECT_TRUE(answer.layers.empty()) << what;
    EXPECT_GT(answer.extent.minX, answer.extent.maxX) << what;
    EXPECT_EQ(answer.message, message) << what;
}

TEST(KmlInfo, CountsByTheFolderThatHoldsAFeature) {
    KmlFiles files;
    const struct {
        const char* what;
        std::string file;
        OrvexLayerMap layers;
    } cases[] = {
        {"in the document and a folder",
         Kml(kPoint + Folder("A", kPoint + kPoint)),
         {{L"Plan", 1}, {L"A", 2}}},
        {"a folder with nothing of its own", Kml(Folder("A", Folder("B", kPoint))), {{L"B", 1}}},
        {"two of one name", Kml(Folder("A", kPoint) + Folder("A", kPoint)), {{L"A", 1}, {L"A (#2)", 1}}},
        {"a name with an entity", Kml(Folder(" M&amp;M\n", kPoint)), {{L"M&M", 1}}},
        {"names that are not the folder's",
         Kml("<Folder><Style><name>no</name></Style>" + kPoint + "</Folder>"),
         {{L"Layer0", 1}}},
        {"no folder", "<kml>" + kPoint + "</kml>", {{FromUtf8("plän"), 1}}},
        {"no document either", kPoint, {{FromUtf8("plän"), 1}}},
        {"a namespace's prefix",
         R"(<k:kml xmlns:k="x"><k:Folder><k:name>A</k:name><k:Placemark/></k:Folder></k:kml>)",
         {{L"A", 1}}},
        {"ground overlays", Kml("<GroundOverlay/>"), {{L"Plan", 1}}},
        {"extended data",
         Kml("<Placemark><ExtendedData><Data name='Folder'><value><Placemark/></value></Data></ExtendedData>"
             "</Placemark>"),
         {{L"Plan", 1}}},
    };
    for (const auto& row : cases) {
        const FeatureAnswer answer = files.Read(row.file);
        EXPECT_TRUE(answer.isRead) << row.what;
        EXPECT_EQ(answer.layers, row.layers) << row.what;
        EXPECT_EQ(answer.message, L"") << row.what;
    }
}

TEST(KmlInfo, TheExtentIsThatOfTheCoordinates) {
    KmlFiles files;
    const std::string track =
        "<Placemark><gx:MultiTrack><gx:Track><when>2020</when><gx:coord>3 40 5</gx:coord>"
        "<gx:coord>-2 41</gx:coord></gx:Track></gx:MultiTrack></Placemark>";
    const std::string several =
        "<Placemark><LookAt><longitude>99</longitude><latitude>9</latitude></LookAt><MultiGeometry><Point>"
        "<coordinates>3,40</coordinates></Point><Polygon><outerBoundaryIs><LinearRing><coordinates>-2,41 "
        "0,40.5"
        "</coordinates></LinearRing></outerBoundaryIs></Polygon></MultiGeometry></Placemark>";
    const std::string model =
        "<Placemark><Model><Location><longitude>3</longitude><latitude>40</latitude>"
        "</Location></Model></Placemark>";
    const std::string box =
        "<GroundOverlay><LatLonBox><north>41</north><south> 40 </south><east>3</east>"
        "<west>-2</west></LatLonBox></GroundOverlay>";
    const struct {
        const char* what;
        std::string features;
        std::uint64_t unreadable;
    } cases[] = {
        {"tuples", Line("3,40,100 -2,41,200"), 0},
        {"blanks beside commas", Line("\n 3 , 40 ,100\n\t-2,\n41 "), 0},
        {"signs and exponents", Line("+3,4e1 -0.2E1,41.0"), 0},
        {"what is no number", Line("3,40 x,y 7 nan,1 inf,1 -2,41 ,5 5,"), 5},
        {"tracks", track, 0},
        {"several geometries", several, 0},
        {"a model", model + Line("-2,41"), 0},
        {"a box", box, 0},
        {"a point of what is not counted",
         Line("3,40 -2,41") + "<PhotoOverlay><Point><coordinates>9,9</coordinates></Point></PhotoOverlay>",
         0},
    };
    for (const auto& row : cases) {
        const FeatureAnswer answer = files.Read(Kml(row.features));
        EXPECT_TRUE(answer.isRead) << row.what;
        const auto& extent = answer.extent;
        EXPECT_EQ((std::vector<double>{extent.minX, extent.minY, extent.maxX, extent.maxY}),
                  (std::vector<double>{-2, 40, 3, 41}))
            << row.what;
        if (row.unreadable != 0) {
            EXPECT_EQ(answer.message, FormatText(Text(text::kKmlBadCoordinates), {row.unreadable}))
                << row.what;
        }
    }
    const FeatureAnswer none = files.Read(Kml("<Placemark/>"));
    EXPECT_GT(none.extent.minX, none.extent.maxX);
}

// Parts of numbers and names come in different buffers.
TEST(KmlInfo, ReadsAFileOfManyBuffers) {
    KmlFiles files;
    std::string coordinates;
    for (int i = 0; i < 100'000; ++i) {
        coordinates += "12.3456789,-45.6789 ";
    }
    const FeatureAnswer answer = files.Read(Kml(Line(coordinates) + Folder("A", Line(coordinates))));
    EXPECT_EQ(answer.features, 2U);
    EXPECT_EQ(answer.message, L"");
    EXPECT_DOUBLE_EQ(answer.extent.minX, 12.3456789);
    EXPECT_DOUBLE_EQ(answer.extent.maxX, 12.3456789);
    EXPECT_DOUBLE_EQ(answer.extent.minY, -45.6789);
    EXPECT_DOUBLE_EQ(answer.extent.maxY, -45.6789);
}

TEST(KmlInfo, FollowsNoLinkAndSaysSo) {
    KmlFiles files;
    const std::string links =
        "<NetworkLink><Link><href>http://127.0.0.1:9/a.kml</href></Link></NetworkLink>"
        "<Folder><NetworkLink/></Folder>";
    const std::wstring left = FormatText(Text(text::kKmlNetworkLinks), {2});
    const FeatureAnswer answer = files.Read(Kml(links + kPoint + "<gx:Tour/>"));
    EXPECT_EQ(answer.features, 1U);
    EXPECT_EQ(answer.message, left + L"\n" + FormatText(Text(text::kFeatureKindsLeftOut), {L"Tour (1)"}));
    ExpectRefused(files.Read(Kml(links)), Text(text::kKmlNoFeatures) + L" " + left, "links alone");
}

/// Entities that would expand to 10^12 bytes.
std::string Bomb(const std::string& content) {
    std::string declarations = "<!ENTITY a 'aaaaaaaaaa'>";
    for (char name = 'b'; name <= 'l'; ++name) {
        std::string references;
        for (int i = 0; i < 10; ++i) {
            references += std::string("&") + static_cast<char>(name - 1) + ";";
        }
        declarations += std::string("<!ENTITY ") + name + " '" + references + "'>";
    }
    return "<!DOCTYPE kml [" + declarations + "]><kml><Document>" + content + "</Document></kml>";
}

TEST(KmlInfo, ExpandsNoEntities) {
    KmlFiles files;
    EXPECT_EQ(files.Read(Bomb("<description>&l;</description>" + kPoint)).features, 1U);
    ExpectRefused(files.Read(Bomb("<Style id='&l;'/>" + kPoint)), FormatText(Text(text::kKmlDamaged), {1}),
                  "in an attribute");
    const FeatureAnswer external =
        files.Read("<!DOCTYPE kml [<!ENTITY e SYSTEM 'file:///etc/hostname'>]><kml>" +
                   Folder("x&e;y", kPoint) + "</kml>");
    EXPECT_EQ(external.layers, (OrvexLayerMap{{L"xy", 1}}));
}

TEST(KmlInfo, SaysWhatIsWrong) {
    KmlFiles files;
    constexpr std::size_t kToken = std::size_t{5} << 20U;
    constexpr std::size_t kJunk = std::size_t{65} << 20U;
    const std::string good = Kml(kPoint);
    std::string folders;
    for (int i = 0; i < 100'000; ++i) {
        folders += "<Folder>";
    }
    const std::wstring other = FormatText(Text(text::kFeatureOtherContent), {L"KML"});
    const struct {
        const char* what;
        std::string file;
        std::wstring message;
    } cases[] = {
        {"empty", "", Text(text::kRasterFileEmpty)},
        {"a text", "Dear Sir or Madam", other},
        {"another XML", "<html><body/></html>", other},
        {"bytes", std::string(100, '\xFE'), other},
        {"truncated", good.substr(0, good.size() - 20), Text(text::kKmlIncomplete)},
        {"truncated within a tag", good.substr(0, good.size() - 3), Text(text::kKmlIncomplete)},
        {"a bare ampersand", Kml("\n" + Folder("a & b", kPoint)), FormatText(Text(text::kKmlDamaged), {2})},
        {"more behind it", good + "<kml/>", FormatText(Text(text::kKmlDamaged), {1})},
        {"a character set", "<?xml version='1.0' encoding='windows-1252'?><kml/>",
         Text(text::kKmlCharacters)},
        {"no features", Kml(Folder("A", "")), Text(text::kKmlNoFeatures)},
        {"depth", Kml(folders), Text(text::kKmlTooDeep)},
        {"a long comment", Kml("<!--" + std::string(kToken, 'x') + "-->" + kPoint),
         Text(text::kKmlWithoutFeatures)},
        {"a long attribute", Kml("<Style id='" + std::string(kToken, 'x') + "'/>" + kPoint),
         Text(text::kKmlWithoutFeatures)},
        {"much without features", Kml("<description>" + std::string(kJunk, 'x') + "</description>" + kPoint),
         Text(text::kKmlWithoutFeatures)},
    };
    for (const auto& row : cases) {
        ExpectRefused(files.Read(row.file), row.message, row.what);
    }
}

TEST(KmlInfo, ReadsTheMainDocumentOfAnArchive) {
    KmlFiles files;
    const std::string main = Kml(Folder("main", kPoint));
    const std::string other = Kml(Folder("other", kPoint));
    const std::wstring two = FormatText(Text(text::kKmzOthers), {2});
    const struct {
        const char* what;
        std::vector<std::pair<std::string, std::string>> entries;
        std::wstring message;
    } cases[] = {
        {"doc.kml", {{"doc.kml", main}}, L""},
        {"doc.kml behind others",
         {{"a.kml", other}, {"files/b.png", "x"}, {"Doc.KML", main}, {"c.kmz", "x"}},
         two},
        {"the first", {{"folder/a.kml", main}, {"b.kml", other}, {"c.kml", other}}, two},
        {"beside what macOS adds", {{"__MACOSX/._a.kml", "x"}, {"a.kml", main}}, L""},
    };
    for (const auto& row : cases) {
        const FeatureAnswer answer = files.ReadZip(row.entries);
        EXPECT_EQ(answer.layers, (OrvexLayerMap{{L"main", 1}})) << row.what;
        EXPECT_EQ(answer.message, row.message) << row.what;
    }
    const std::string bytes = ReadFile(files.Zip({{"doc.kml", main}}));
    EXPECT_EQ(files.Read(bytes).layers, (OrvexLayerMap{{L"main", 1}})) << "whatever its extension";
}

TEST(KmlInfo, SaysWhatIsWrongWithAnArchive) {
    KmlFiles files;
    std::string features;
    for (int i = 0; i < 2000; ++i) {
        features += Line(std::to_string(i * 7919 % 180) + "," + std::to_string(i * 104729 % 90));
    }
    const std::string good = ReadFile(files.Zip({{"doc.kml", Kml(features)}}));
    std::string damaged = good;
    damaged.replace(60, 40, 40, '\0');
    std::string encrypted = good;
    encrypted[good.rfind("PK\1\2") + 8] |= 1;
    std::string many = good;
    many.replace(good.rfind("PK\5\6") + 10, 2, "\xFF\xFF");
    const struct {
        const char* what;
        std::string file;
        std::wstring message;
    } cases[] = {
        {"truncated", good.substr(0, good.size() / 2), Text(text::kKmzIncomplete)},
        {"damaged", damaged, Text(text::kKmzDamaged)},
        {"encrypted", encrypted, Text(text::kKmzEncrypted)},
        {"many entries", many, FormatText(Text(text::kKmzTooManyEntries), {10'000})},
        {"no KML", ReadFile(files.Zip({{"a.txt", "x"}})), Text(text::kKmzWithoutKml)},
    };
    for (const auto& row : cases) {
        ExpectRefused(files.Read(row.file), row.message, row.what);
    }
    std::string bomb = "<kml><Placemark><LineString><coordinates>";
    for (int i = 0; i < 70; ++i) {
        bomb += "1,2" + std::string(std::size_t{1} << 20U, ' ');
    }
    ExpectRefused(files.ReadZip({{"doc.kml", bomb}}), FormatText(Text(text::kKmzBomb), {64}), "a bomb");
}

}  // namespace
}  // namespace orvex
