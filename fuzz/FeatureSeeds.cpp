#include <string>

#include "fuzz/Seeds.h"

namespace orvex::fuzz {
namespace {

using namespace std::string_literals;

/// A drawing with these sections, one pair of group code and value in two lines.
std::string Drawing(const std::string& blocks, const std::string& entities) {
    return "0\nSECTION\n2\nHEADER\n9\n$ACADVER\n1\nAC1032\n0\nENDSEC\n0\nSECTION\n2\nBLOCKS\n" + blocks +
           "0\nENDSEC\n0\nSECTION\n2\nENTITIES\n" + entities + "0\nENDSEC\n0\nEOF\n";
}

std::string Kml(const std::string& features) {
    return "<kml><Document><name>D</name>" + features + "</Document></kml>";
}

/// A stored entry "a.kml" with this content.
std::string Archive(const std::string& content) {
    const auto number = [](std::size_t value, int bytes) {
        std::string text;
        for (int i = 0; i < bytes; ++i) {
            text += static_cast<char>(value >> (8 * i) & 0xFFU);
        }
        return text;
    };
    const std::string sizes = "\0\0\0\0"s + number(content.size(), 4) + number(content.size(), 4);
    const std::string local = "PK\3\4\x14\0\0\0\0\0\0\0\0\0"s + sizes + "\5\0\0\0a.kml"s + content;
    const std::string table =
        "PK\1\2\x14\0\x14\0\0\0\0\0\0\0\0\0"s + sizes + "\5\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0a.kml"s;
    return local + table + "PK\5\6\0\0\0\0\1\0\1\0"s + number(table.size(), 4) + number(local.size(), 4) +
           "\0\0"s;
}

}  // namespace

// Each kind of file and of object, and damage that once made GDAL read on without end.
std::vector<std::string> Seeds() {
    const std::string line = "0\nLINE\n8\nA\n10\n0\n20\n0\n11\n1\n21\n1\n";
    const std::string block = "0\nBLOCK\n8\n0\n2\nB\n" + line + "0\nENDBLK\n";
    const std::string place = "<Placemark><Point><coordinates>1,2</coordinates></Point></Placemark>";
    return {
        "",
        "AC1015",
        "AC1032",
        "\x08\x09\xFE\x02"s + std::string(1532, '\0') + "\xFF\xFF",
        Drawing("", line + "0\nPOINT\n8\nB\n10\n1\n20\n2\n0\nCIRCLE\n8\n0\n10\n0\n20\n0\n40\n5\n"),
        Drawing(block, "0\nINSERT\n8\n0\n2\nB\n10\n5\n20\n5\n70\n2\n71\n2\n44\n1\n45\n1\n"),
        Drawing("", "0\nHATCH\n8\n0\n91\n1\n92\n1\n93\n2\n72\n1\n10\n0\n20\n0\n11\n1\n21\n1\n"),
        Drawing("", "0\nLWPOLYLINE\n8\n0\n90\n2\n70\n1\n10\n0\n20\n0\n42\n1\n10\n1\n20\n0\n"),
        Drawing("",
                "0\nSPLINE\n8\n0\n71\n2\n72\n6\n73\n3\n40\n0\n40\n0\n40\n0\n40\n1\n40\n1\n40\n1\n10\n0\n20\n0"
                "\n10\n1\n"
                "20\n1\n10\n2\n20\n0\n"),
        "0\nSECTION\n2\nHEADER\n9\n$DIMZIN",
        "0\nSECTION\n2\nENTITIES\n0\nHATCH\n8\n0\n72\n1\n10\n0\n20\n",
        Kml(place + "<Folder><name>F</name>" + place + "<NetworkLink/></Folder>"),
        Kml("<Placemark><gx:Track><gx:coord>1 2 3</gx:coord></gx:Track></Placemark>"),
        Kml("<GroundOverlay><LatLonBox><north>1</north><south>0</south><east>1</east><west>0</west></"
            "LatLonBox>"
            "</GroundOverlay>"),
        "<!DOCTYPE kml [<!ENTITY e 'x'>]>" + Kml("<Folder><name>&e;</name>" + place + "</Folder>"),
        Archive(Kml(place)),
    };
}

}  // namespace orvex::fuzz
