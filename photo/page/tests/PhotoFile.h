#pragma once
#include <string>

#include "support/Format.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex::testing {

/// A JPEG file of a drone without its pixels: size and position. Altitude 0: none is stated.
inline std::string PhotoBytes(double longitude, double latitude, double altitude) {
    std::string xmp = "http://ns.adobe.com/xap/1.0/";
    xmp += '\0';
    xmp +=
        "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF "
        "xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><rdf:Description rdf:about=\"\" "
        "xmlns:drone-dji=\"http://www.dji.com/drone-dji/1.0/\"";
    xmp += " drone-dji:GpsLongitude=\"" + ToUtf8(FormatText(L"%.6f", {longitude})) + "\"";
    xmp += " drone-dji:GpsLatitude=\"" + ToUtf8(FormatText(L"%.6f", {latitude})) + "\"";
    if (altitude != 0) {
        xmp += " drone-dji:AbsoluteAltitude=\"" + ToUtf8(FormatText(L"%.6f", {altitude})) + "\"";
    }
    xmp += "/></rdf:RDF></x:xmpmeta>";
    const auto segment = [](unsigned char marker, const std::string& content) {
        const std::size_t length = content.size() + 2;
        return std::string{'\xff', static_cast<char>(marker), static_cast<char>(length >> 8U),
                           static_cast<char>(length & 0xffU)} +
               content;
    };
    const std::string frame{"\x08\x00\x78\x00\xa0\x01\x01\x11\x00", 9};  // 160 x 120, one component
    const std::string scan{"\x01\x01\x00\x00\x3f\x00", 6};
    return "\xff\xd8" + segment(0xe1, xmp) + segment(0xc0, frame) + segment(0xda, scan) + "\xff\xd9";
}

inline std::wstring WritePhoto(const TemporaryFolder& folder, const std::wstring& name,
                               double longitude = 8.5, double latitude = 47.25, double altitude = 500) {
    return folder.Write(name, PhotoBytes(longitude, latitude, altitude));
}

}  // namespace orvex::testing
