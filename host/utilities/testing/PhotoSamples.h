#pragma once
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace orvex::testing {

/// A TIFF structure with the directories of EXIF, written entry by entry and as broken as a test wants it. It
/// is the EXIF block of a JPEG file, or with the tags of an image a TIFF file.
class ExifBytes {
  public:
    enum class Format { Classic, Big };
    enum class Order { Little, Big };
    enum Directory : unsigned { kImage, kExif, kGps, kThumbnail };
    using Fraction = std::pair<std::int64_t, std::int64_t>;

    explicit ExifBytes(Order order = Order::Little, Format format = Format::Classic)
        : isBigEndian_(order == Order::Big), isBig_(format == Format::Big) {}

    ExifBytes& Text(Directory directory, unsigned tag, const std::string& text);
    /// Of TIFF type 1 (one byte), 3 (two), 4 (four) or 16 (eight).
    ExifBytes& Whole(Directory directory, unsigned tag, unsigned type, std::uint64_t value);
    ExifBytes& Fractions(Directory directory, unsigned tag, const std::vector<Fraction>& values,
                         unsigned type = 5);
    ExifBytes& Bytes(Directory directory, unsigned tag, const std::string& bytes);
    /// Claims `count` values of a type at an offset.
    ExifBytes& Claim(Directory directory, unsigned tag, unsigned type, std::uint64_t count, std::uint64_t at);
    /// Position in degrees and metres, to a millionth.
    ExifBytes& Position(double longitude, double latitude, double altitude);
    /// Time as the GPS receiver states it: "2019:07:14" and three fractions.
    ExifBytes& GpsTime(const std::string& date, int hour, int minute, Fraction second);

    std::string Build() const;

  private:
    struct Entry {
        unsigned type;
        std::uint64_t count;
        std::string bytes;
        bool isClaim = false;
    };
    std::string Number(std::uint64_t value, unsigned bytes) const;
    std::string DirectoryAt(const std::map<unsigned, Entry>& entries, std::uint64_t at,
                            std::uint64_t next) const;
    ExifBytes& Add(Directory directory, unsigned tag, Entry entry);

    const bool isBigEndian_;
    const bool isBig_;
    std::map<unsigned, Entry> directories_[4];
};

/// An XMP packet with the properties of one vocabulary, as attributes of the description or as elements.
std::string XmpWith(const std::string& address,
                    const std::vector<std::pair<std::string, std::string>>& properties,
                    bool asElements = false);

/// A JPEG file without a picture that can be decoded: the blocks, which may be empty, and the frame header.
std::string JpegWith(const std::string& exif, const std::string& xmp = {}, unsigned width = 640,
                     unsigned height = 480);

/// A photo with full pose.
std::string PosedPhoto(double longitude, double latitude, double altitude,
                       const std::string& date = "2019:07:14", int secondOfDay = 0);

}  // namespace orvex::testing
