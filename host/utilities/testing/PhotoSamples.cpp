#include "host/utilities/testing/PhotoSamples.h"

#include <fmt/format.h>

#include <cmath>

namespace orvex::testing {
namespace {

constexpr std::int64_t kMillion = 1000000;

ExifBytes::Fraction Millionths(double value) {
    return {std::llround(std::abs(value) * kMillion), kMillion};
}

std::string Segment(char marker, const std::string& content) {
    const std::size_t length = content.size() + 2;
    return {std::string{'\xFF', marker, static_cast<char>(length >> 8U), static_cast<char>(length & 0xFFU)} +
            content};
}

}  // namespace

std::string ExifBytes::Number(std::uint64_t value, unsigned bytes) const {
    std::string text;
    for (unsigned i = 0; i < bytes; ++i) {
        text += static_cast<char>((value >> (8U * (isBigEndian_ ? bytes - 1 - i : i))) & 0xFFU);
    }
    return text;
}

ExifBytes& ExifBytes::Add(Directory directory, unsigned tag, Entry entry) {
    directories_[directory].insert_or_assign(tag, std::move(entry));
    return *this;
}

ExifBytes& ExifBytes::Text(Directory directory, unsigned tag, const std::string& text) {
    return Add(directory, tag, {2, text.size() + 1, text + '\0'});
}

ExifBytes& ExifBytes::Whole(Directory directory, unsigned tag, unsigned type, std::uint64_t value) {
    const unsigned size = type == 1 ? 1 : type == 3 ? 2 : type == 4 ? 4 : 8;
    return Add(directory, tag, {type, 1, Number(value, size)});
}

ExifBytes& ExifBytes::Fractions(Directory directory, unsigned tag, const std::vector<Fraction>& values,
                                unsigned type) {
    std::string bytes;
    for (const auto& [top, bottom] : values) {
        bytes += Number(static_cast<std::uint64_t>(top), 4) + Number(static_cast<std::uint64_t>(bottom), 4);
    }
    return Add(directory, tag, {type, values.size(), bytes});
}

ExifBytes& ExifBytes::Bytes(Directory directory, unsigned tag, const std::string& bytes) {
    return Add(directory, tag, {1, bytes.size(), bytes});
}

ExifBytes& ExifBytes::Claim(Directory directory, unsigned tag, unsigned type, std::uint64_t count,
                            std::uint64_t at) {
    return Add(directory, tag, {type, count, Number(at, isBig_ ? 8 : 4), true});
}

ExifBytes& ExifBytes::Position(double longitude, double latitude, double altitude) {
    Text(kGps, 1, latitude < 0 ? "S" : "N").Fractions(kGps, 2, {Millionths(latitude), {0, 1}, {0, 1}});
    Text(kGps, 3, longitude < 0 ? "W" : "E").Fractions(kGps, 4, {Millionths(longitude), {0, 1}, {0, 1}});
    return Whole(kGps, 5, 1, altitude < 0 ? 1 : 0).Fractions(kGps, 6, {Millionths(altitude)});
}

ExifBytes& ExifBytes::GpsTime(const std::string& date, int hour, int minute, Fraction second) {
    return Text(kGps, 0x1D, date).Fractions(kGps, 7, {{hour, 1}, {minute, 1}, second});
}

/// The directory, then the values that do not fit into their entries.
std::string ExifBytes::DirectoryAt(const std::map<unsigned, Entry>& entries, std::uint64_t at,
                                   std::uint64_t next) const {
    const unsigned field = isBig_ ? 8 : 4;
    std::string directory = Number(entries.size(), isBig_ ? 8 : 2);
    std::uint64_t place = at + directory.size() + entries.size() * (4 + 2 * field) + field;
    std::string values;
    for (const auto& [tag, entry] : entries) {
        directory += Number(tag, 2) + Number(entry.type, 2) + Number(entry.count, field);
        if (entry.isClaim || entry.bytes.size() <= field) {
            directory += entry.bytes + std::string(field - entry.bytes.size(), '\0');
        } else {
            directory += Number(place, field);
            place += entry.bytes.size();
            values += entry.bytes;
        }
    }
    return directory + Number(next, field) + values;
}

std::string ExifBytes::Build() const {
    const unsigned field = isBig_ ? 8 : 4;
    std::string bytes = isBigEndian_ ? "MM" : "II";
    bytes += isBig_ ? Number(43, 2) + Number(8, 2) + Number(0, 2) : Number(42, 2);
    const std::uint64_t first = bytes.size() + field;
    bytes += Number(first, field);

    std::map<unsigned, Entry> image = directories_[kImage];
    const auto point = [&](unsigned tag, std::uint64_t at) {
        image.insert_or_assign(tag, Entry{isBig_ ? 16U : 4U, 1, Number(at, field)});
    };
    point(0x8769, 0);
    point(0x8825, 0);
    const std::uint64_t exif = first + DirectoryAt(image, first, 0).size();
    const std::uint64_t gps = exif + DirectoryAt(directories_[kExif], exif, 0).size();
    const std::uint64_t thumbnail = gps + DirectoryAt(directories_[kGps], gps, 0).size();
    point(0x8769, exif);
    point(0x8825, gps);
    bytes += DirectoryAt(image, first, directories_[kThumbnail].empty() ? 0 : thumbnail);
    bytes += DirectoryAt(directories_[kExif], exif, 0) + DirectoryAt(directories_[kGps], gps, 0);
    return bytes +
           (directories_[kThumbnail].empty() ? "" : DirectoryAt(directories_[kThumbnail], thumbnail, 0));
}

std::string XmpWith(const std::string& address,
                    const std::vector<std::pair<std::string, std::string>>& properties, bool asElements) {
    std::string attributes;
    std::string elements;
    for (const auto& [name, value] : properties) {
        attributes += asElements ? "" : fmt::format(R"( v:{}="{}")", name, value);
        elements += asElements ? fmt::format("<v:{0}>{1}</v:{0}>", name, value) : "";
    }
    return "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?><x:xmpmeta "
           "xmlns:x=\"adobe:ns:meta/\">"
           "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><rdf:Description "
           "rdf:about=\"\" "
           "xmlns:v=\"" +
           address + "\"" + attributes + ">" + elements +
           "</rdf:Description></rdf:RDF></x:xmpmeta><?xpacket end=\"w\"?>";
}

std::string JpegWith(const std::string& exif, const std::string& xmp, unsigned width, unsigned height) {
    std::string bytes = "\xFF\xD8";
    if (!exif.empty()) {
        bytes += Segment('\xE1', std::string("Exif\0\0", 6) + exif);
    }
    if (!xmp.empty()) {
        bytes += Segment('\xE1', std::string("http://ns.adobe.com/xap/1.0/\0", 29) + xmp);
    }
    const std::string size{static_cast<char>(height >> 8U), static_cast<char>(height & 0xFFU),
                           static_cast<char>(width >> 8U), static_cast<char>(width & 0xFFU)};
    bytes += Segment('\xC0', '\x08' + size + std::string("\x03\x01\x22\x00\x02\x11\x01\x03\x11\x01", 10));
    return bytes + Segment('\xDA', std::string("\x03\x01\x00\x02\x11\x03\x11\x00\x3F\x00", 10)) + "\xFF\xD9";
}

std::string PosedPhoto(double longitude, double latitude, double altitude, const std::string& date,
                       int secondOfDay) {
    ExifBytes exif;
    exif.Position(longitude, latitude, altitude)
        .GpsTime(date, secondOfDay / 3600, secondOfDay / 60 % 60, {secondOfDay % 60, 1})
        .Fractions(ExifBytes::kExif, 0x920A, {{35, 1}});
    return JpegWith(exif.Build());
}

}  // namespace orvex::testing
