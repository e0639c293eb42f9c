#include <gmock/gmock.h>
#include <ogrsf_frmts.h>

#include <string>
#include <string_view>
#include <vector>

#include "host/utilities/testing/FeatureAnswer.h"
#include "support/Environment.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/GdalAccess.h"
#include "support/GdalRaii.h"
#include "support/LDataError.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using namespace std::string_literals;
using testing::Ask;
using testing::FeatureAnswer;
using testing::ReadFile;
using testing::TemporaryFolder;

/// A group code and its value.
using Pair = std::pair<int, std::string>;

std::string Lines(const std::vector<Pair>& pairs) {
    std::string text;
    for (const auto& [code, value] : pairs) {
        text += "  " + std::to_string(code) + "\r\n" + value + "\r\n";
    }
    return text;
}

std::string Section(const std::string& name, const std::string& content) {
    return Lines({{0, "SECTION"}, {2, name}}) + content + Lines({{0, "ENDSEC"}});
}

const std::string kHeader = Section("HEADER", Lines({{9, "$ACADVER"}, {1, "AC1032"}}));
const std::string kEnd = Lines({{0, "EOF"}});

std::string Dxf(const std::string& blocks, const std::string& entities) {
    return kHeader + Section("BLOCKS", blocks) + Section("ENTITIES", entities) + kEnd;
}

std::string Point(const std::string& layer, int x, int y) {
    return Lines({{0, "POINT"}, {8, layer}, {10, std::to_string(x)}, {20, std::to_string(y)}});
}

std::string Line(const std::string& layer, int x1, int y1, int x2, int y2) {
    return Lines({{0, "LINE"},
                  {8, layer},
                  {10, std::to_string(x1)},
                  {20, std::to_string(y1)},
                  {11, std::to_string(x2)},
                  {21, std::to_string(y2)}});
}

std::string Block(const std::string& name, const std::string& content) {
    return Lines({{0, "BLOCK"}, {8, "0"}, {2, name}, {10, "0"}, {20, "0"}}) + content +
           Lines({{0, "ENDBLK"}, {8, "0"}});
}

std::string Insert(const std::string& block, int columns = 1, int rows = 1) {
    return Lines({{0, "INSERT"},
                  {8, "C"},
                  {2, block},
                  {10, "100"},
                  {20, "200"},
                  {70, std::to_string(columns)},
                  {71, std::to_string(rows)},
                  {44, "1"},
                  {45, "1"}});
}

std::string Repeated(const std::string& text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i) {
        all += text;
    }
    return all;
}

/// The files are written, asked about and named in failures.
class CadFiles {
  public:
    FeatureAnswer Dxf(const std::string& bytes) { return Ask(&OrvexUtilities::GetDXFInfo, Write(bytes)); }
    FeatureAnswer Dwg(const std::string& bytes) { return Ask(&OrvexUtilities::GetDWGInfo, Write(bytes)); }
    FeatureAnswer Dgn(const std::string& bytes) { return Ask(&OrvexUtilities::GetDGNInfo, Write(bytes)); }
    std::wstring Write(const std::string& bytes) { return folder_.Write(L"drawing ä.cad", bytes); }
    std::wstring Name(const std::wstring& name) { return folder_.Name(name); }

  private:
    TemporaryFolder folder_;
};

void ExpectRefused(const FeatureAnswer& answer, const std::wstring& message, const char* what) {
    EXPECT_FALSE(answer.isRead) << what;
    EXPECT_EQ(answer.features, 0U) << what;
    EXPECT_TRUE(answer.layers.empty()) << what;
    EXPECT_GT(answer.extent.minX, answer.extent.maxX) << what;
    EXPECT_EQ(answer.message, message) << what;
}

void ExpectExtent(const tagOrvexExtent& extent, double minX, double minY, double maxX, double maxY) {
    EXPECT_DOUBLE_EQ(extent.minX, minX);
    EXPECT_DOUBLE_EQ(extent.minY, minY);
    EXPECT_DOUBLE_EQ(extent.maxX, maxX);
    EXPECT_DOUBLE_EQ(extent.maxY, maxY);
}

// A block's lines become one feature of each insert, its texts one each, on the layer of the insert if they
// are on layer "0".
TEST(CadInfo, CountsADxfFileByTheLayersOfTheDrawing) {
    CadFiles files;
    const std::string text = Lines({{0, "TEXT"}, {8, "Schrift"}, {10, "5"}, {20, "6"}, {1, "x"}});
    const std::string blocks = Block("B", Line("0", 0, 0, 3, 4) + Line("0", 0, 0, 1, 1) + text);
    const FeatureAnswer answer = files.Dxf(Dxf(
        blocks, Line("A", 0, 0, 10, 5) + Point("Straße", -7, 8) + Point("Straße", 1, 1) + Insert("B", 2, 1)));
    EXPECT_TRUE(answer.isRead);
    EXPECT_EQ(answer.message, L"");
    EXPECT_EQ(answer.features, 7U);
    EXPECT_EQ(answer.layers, (OrvexLayerMap{{L"A", 1}, {FromUtf8("Straße"), 2}, {L"C", 2}, {L"Schrift", 2}}));
    ExpectExtent(answer.extent, -7, 0, 106, 206);
}

TEST(CadInfo, SaysWhichObjectsOfADxfFileAreLeftOut) {
    CadFiles files;
    const std::string ray = Lines({{0, "RAY"}, {8, "0"}, {10, "0"}, {20, "0"}, {11, "1"}, {21, "1"}});
    const std::wstring left = FormatText(Text(text::kFeatureKindsLeftOut), {L"RAY (2)"});
    const FeatureAnswer answer = files.Dxf(Dxf("", ray + Point("A", 1, 2) + ray));
    EXPECT_TRUE(answer.isRead);
    EXPECT_EQ(answer.features, 1U);
    EXPECT_EQ(answer.message, left);
    ExpectRefused(files.Dxf(Dxf("", ray + ray)), left, "nothing else");
    const FeatureAnswer large =
        files.Dxf(Dxf(Block("B", Repeated(Lines({{0, "TEXT"}, {8, "0"}, {1, "x"}}), 10'001)), Insert("B")));
    EXPECT_EQ(large.features, 10'000U);
    EXPECT_EQ(large.message, FormatText(Text(text::kDxfBlockPartly), {10'000}));
}

// GDAL would take hours or gigabytes for them, or never end.
TEST(CadInfo, EndsWhatGdalWouldNotEnd) {
    CadFiles files;
    std::string nested = Block("B0", Point("0", 1, 1));
    for (int i = 1; i < 8; ++i) {
        nested += Block("B" + std::to_string(i), Repeated(Insert("B" + std::to_string(i - 1)), 10));
    }
    const std::string circle = Block("A", Insert("B")) + Block("B", Insert("A"));
    const std::string edges =
        Repeated(Lines({{72, "1"}, {10, "0"}, {20, "0"}, {11, "1"}, {21, "1"}}), 30'001);
    const std::wstring tooMany = FormatText(Text(text::kDxfTooManyInserted), {250'000});
    const std::string leader = Section("TABLES", Lines({{0, "BLOCK_RECORD"}, {5, "1F"}, {2, "B7"}})) +
                               Section("BLOCKS", nested) +
                               Section("ENTITIES", Lines({{0, "MULTILEADER"}, {8, "0"}, {344, "1F"}}));
    const struct {
        const char* what;
        std::string file;
        std::wstring message;
    } cases[] = {
        {"blocks in blocks", Dxf(nested, Insert("B7")), tooMany},
        {"blocks in blocks of a leader", kHeader + leader + kEnd, tooMany},
        {"an array", Dxf(Block("B", Point("0", 1, 1)), Insert("B", 30'000, 30'000)), tooMany},
        {"blocks in a circle", Dxf(circle, Insert("A")), Text(text::kDxfBlocksNested)},
        {"a header without an end", Lines({{0, "SECTION"}, {2, "HEADER"}, {9, "$DIMZIN"}}),
         Text(text::kCadIncomplete)},
        {"definitions without an end", kHeader + Section("BLOCKS", Repeated(Block("B", ""), 200'001)),
         Text(text::kDxfTooManyDefinitions)},
    };
    for (const auto& row : cases) {
        ExpectRefused(files.Dxf(row.file), row.message, row.what);
    }
    const FeatureAnswer hatch = files.Dxf(Dxf("", Lines({{0, "HATCH"}, {8, "0"}}) + edges));
    EXPECT_FALSE(hatch.isRead) << hatch.features;
}

TEST(CadInfo, SaysWhereADxfFileIsDamaged) {
    CadFiles files;
    const std::string good = Dxf("", Repeated(Line("A", 0, 0, 1, 1), 3));
    const std::string second = Dxf("", Line("A", 0, 0, 1, 1));
    const struct {
        const char* what;
        std::string file;
        std::string line;
    } cases[] = {
        {"no group code", kHeader + Section("ENTITIES", "LINE\r\n"), "15"},
        {"cut within an object", good.substr(0, good.find("LINE", good.size() / 2) + 10), "35"},
        {"cut before the end mark", second.substr(0, second.size() - kEnd.size() - 16), "33"},
    };
    for (const auto& row : cases) {
        ExpectRefused(files.Dxf(row.file), FormatText(Text(text::kDxfDamaged), {FromUtf8(row.line)}),
                      row.what);
    }
    ExpectRefused(files.Dxf(Dxf("", "")), Text(text::kCadNoObjects), "no objects");
    // GDAL 3.6 does not come back from some of them.
    for (std::size_t length = kHeader.size(); length < second.rfind("ENDSEC"); ++length) {
        EXPECT_FALSE(files.Dxf(second.substr(0, length)).isRead) << length;
    }
}

TEST(CadInfo, NamesVersionsAndContentsThatCannotBeRead) {
    CadFiles files;
    const auto release = [](const wchar_t* name, const wchar_t* code) {
        return FormatText(Text(text::kDwgRelease), {name, code});
    };
    const auto other = [](const wchar_t* kind) {
        return FormatText(Text(text::kFeatureOtherContent), {kind});
    };
    const std::string filler(2000, '\0');
    const struct {
        std::string start;
        std::wstring asDwg;
        std::wstring asDxf;
        std::wstring asDgn;
    } cases[] = {
        {"", Text(text::kRasterFileEmpty), Text(text::kRasterFileEmpty), Text(text::kRasterFileEmpty)},
        {"AC1032" + filler, release(L"2018", L"AC1032"), other(L"DXF"), other(L"DGN")},
        {"AC1027" + filler, release(L"2013", L"AC1027"), other(L"DXF"), other(L"DGN")},
        {"AC1014" + filler, release(L"R14", L"AC1014"), other(L"DXF"), other(L"DGN")},
        {"AC2.10" + filler, release(L"R2.1", L"AC2.10"), other(L"DXF"), other(L"DGN")},
        {"AC1099" + filler, FormatText(Text(text::kDwgUnknownRelease), {L"AC1099"}), other(L"DXF"),
         other(L"DGN")},
        {"AC1015" + filler, Text(text::kCadUnreadable), other(L"DXF"), other(L"DGN")},
        {"AutoCAD Binary DXF\r\n\x1A\0"s + filler, other(L"DWG"), Text(text::kDxfBinary), other(L"DGN")},
        {"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1" + filler, other(L"DWG"), other(L"DXF"), Text(text::kDgnVersion8)},
        {"Dear Sir or Madam,\n", other(L"DWG"), other(L"DXF"), other(L"DGN")},
        {"\x08\x09\xFE\x02", other(L"DWG"), other(L"DXF"), Text(text::kCadUnreadable)},
    };
    for (const auto& row : cases) {
        const char* const what = row.start.c_str();
        ExpectRefused(files.Dwg(row.start), row.asDwg, what);
        ExpectRefused(files.Dxf(row.start), row.asDxf, what);
        ExpectRefused(files.Dgn(row.start), row.asDgn, what);
    }
    const std::wstring missing = files.Name(L"missing.dxf");
    ExpectRefused(Ask(&OrvexUtilities::GetDXFInfo, missing), Text(text::kFileMissing), "missing");
    const std::wstring folder = FolderOf(missing);
    ExpectRefused(Ask(&OrvexUtilities::GetDWGInfo, folder), Text(text::kFileOpenRefused), "a folder");
}

/// Writes lines on the levels 3, 10 and 3 to a DGN file.
void WriteDgn(const std::wstring& path) {
    RegisterOGRDGN();
    const std::string seed = "SEED=" + ToUtf8(FromPath(ModuleFolder() / "gdal-data" / "seed_2d.dgn"));
    const GdalList options({seed});
    const GdalDataset dataset(GDALCreate(GDALGetDriverByName("DGN"), ToUtf8(path).c_str(), 0, 0, 0,
                                         GDT_Unknown, const_cast<char**>(options.Get())));
    ASSERT_NE(dataset, nullptr);
    OGRLayer* const layer = GDALDataset::FromHandle(dataset.get())->CreateLayer("elements");
    ASSERT_NE(layer, nullptr);
    for (const int level : {3, 10, 3}) {
        OGRFeature feature(layer->GetLayerDefn());
        feature.SetField("Level", level);
        feature.SetField("Type", 3);
        OGRLineString line;
        line.addPoint(0, 0);
        line.addPoint(level, 2 * level);
        feature.SetGeometry(&line);
        ASSERT_EQ(layer->CreateFeature(&feature), OGRERR_NONE);
    }
}

TEST(CadInfo, CountsADgnFileByLevel) {
    CadFiles files;
    const std::wstring path = files.Name(L"levels.dgn");
    ASSERT_NO_FATAL_FAILURE(WriteDgn(path));
    const FeatureAnswer answer = Ask(&OrvexUtilities::GetDGNInfo, path);
    EXPECT_TRUE(answer.isRead);
    EXPECT_EQ(answer.message, L"");
    EXPECT_EQ(answer.features, 3U);
    EXPECT_EQ(answer.layers, (OrvexLayerMap{{L"Level 10", 1}, {L"Level 3", 2}}));
    ExpectExtent(answer.extent, 0, 0, 10, 20);

    const std::string bytes = ReadFile(path);
    const std::size_t mark = bytes.rfind("\xFF\xFF");
    ASSERT_NE(mark, std::string::npos);
    for (const std::size_t length : {mark, mark - 2, mark - 100}) {
        ExpectRefused(files.Dgn(bytes.substr(0, length)), Text(text::kCadIncomplete), "truncated");
    }
}

// The component's own view of files is installed beside that of the library.
TEST(CadInfo, IsReadWhileAnotherModuleHasItsOwnViewOfFiles) {
    CadFiles files;
    const std::wstring path = files.Write(Dxf("", Point("A", 1, 2)));
    const GdalAccess access(AbsolutePath(path));
    const auto isOpened = [&] {
        return GdalDataset(GDALOpenEx(access.Name().c_str(), GDAL_OF_VECTOR, GdalList({"DXF"}).Get(), nullptr,
                                      nullptr)) != nullptr;
    };
    const std::wstring other = files.Name(L"missing.dxf");
    EXPECT_TRUE(Ask(&OrvexUtilities::GetDXFInfo, path).isRead);
    EXPECT_FALSE(Ask(&OrvexUtilities::GetDXFInfo, other).isRead);
    EXPECT_TRUE(isOpened());
}

TEST(CadInfo, NamesShapeTypes) {
    EXPECT_EQ(OrvexUtilities::OrvexGeometryToString(0), L"Null");
    EXPECT_EQ(OrvexUtilities::OrvexGeometryToString(13), L"PolylineZ");
    EXPECT_EQ(OrvexUtilities::OrvexGeometryToString(28), L"MultipointM");
    for (const int none : {-1, 2, 30, 32}) {
        EXPECT_EQ(OrvexUtilities::OrvexGeometryToString(none), L"Unknown") << none;
    }
}

}  // namespace
}  // namespace orvex
