#include "host/utilities/TiffDirectories.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

namespace orvex {
namespace {

constexpr std::uint64_t kMostEntries = 4096;
constexpr std::uint64_t kMostValueBytes = 4096;
constexpr int kMostDirectories = 64;

namespace tag {
enum : std::uint16_t {
    kSubfileType = 0x00FE,
    kWidth = 0x0100,
    kHeight = 0x0101,
    kBits = 0x0102,
    kPhotometric = 0x0106,
    kMake = 0x010F,
    kModel = 0x0110,
    kOrientation = 0x0112,
    kBands = 0x0115,
    kThumbnailOffset = 0x0201,
    kThumbnailLength = 0x0202,
    kXmp = 0x02BC,
    kPixelScale = 0x830E,
    kExifDirectory = 0x8769,
    kGpsDirectory = 0x8825,
    kFocalLength = 0x920A,
    kPixelWidth = 0xA002,
    kPixelHeight = 0xA003,
    kImageUniqueId = 0xA420,
    kLastGps = 0x001F,
};
}  // namespace tag

constexpr std::uint16_t kKeptOfImage[] = {tag::kMake, tag::kModel, tag::kOrientation};
constexpr std::uint16_t kKeptOfExif[] = {tag::kFocalLength, tag::kPixelWidth, tag::kPixelHeight,
                                         tag::kImageUniqueId};

/// Bytes of one value of a TIFF type; 0 for a type that does not exist.
std::uint64_t SizeOfType(std::uint16_t type) {
    constexpr std::uint8_t kSizes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4, 0, 0, 8, 8, 8};
    return type < std::size(kSizes) ? kSizes[type] : 0;
}

struct Entry {
    std::uint16_t tag = 0;
    std::uint16_t type = 0;
    std::uint64_t count = 0;
    FileRange value;  ///< in the file; length 0 if it does not lie in the structure
};

struct Directory {
    std::vector<Entry> entries;
    std::uint64_t next = 0;  ///< offset of the next one in the structure; 0 for none

    const Entry* Find(std::uint16_t tag) const {
        const auto found = std::ranges::find(entries, tag, &Entry::tag);
        return found == entries.end() ? nullptr : &*found;
    }
};

class Reader {
  public:
    Reader(PhotoBytes& file, FileRange range) : file_(file), range_(range) {}

    /// Reads the header; nullopt if it is none, else the offset of the first directory.
    std::optional<std::uint64_t> First();
    std::optional<Directory> At(std::uint64_t offset);
    /// First value of an entry that holds whole numbers.
    std::optional<std::uint64_t> Whole(const Directory& directory, std::uint16_t tag);
    /// The directory that an entry points to.
    Directory Below(const Directory& directory, std::uint16_t tag);
    /// A range inside the structure; length 0 if it is not.
    FileRange Inside(std::uint64_t offset, std::uint64_t length) const;

    ByteOrder Order() const { return order_; }
    PhotoBytes& File() { return file_; }

  private:
    template <typename T>
    std::optional<T> Number(std::uint64_t offset) {
        return Inside(offset, sizeof(T)).length == 0 ? std::nullopt
                                                     : file_.Number<T>(range_.offset + offset, order_);
    }
    std::optional<std::uint64_t> Offset(std::uint64_t offset) {
        if (isBig_) {
            return Number<std::uint64_t>(offset);
        }
        return Number<std::uint32_t>(offset);
    }
    Entry EntryAt(std::uint64_t offset);

    PhotoBytes& file_;
    FileRange range_;
    ByteOrder order_ = ByteOrder::Little;
    bool isBig_ = false;
};

FileRange Reader::Inside(std::uint64_t offset, std::uint64_t length) const {
    const bool fits = offset <= range_.length && length <= range_.length - offset;
    return fits ? FileRange{range_.offset + offset, length} : FileRange{};
}

std::optional<std::uint64_t> Reader::First() {
    const std::string mark = file_.Text(Inside(0, 2), 2);
    if (mark != "II" && mark != "MM") {
        return std::nullopt;
    }
    order_ = mark == "II" ? ByteOrder::Little : ByteOrder::Big;
    const auto version = Number<std::uint16_t>(2);
    isBig_ = version == 43;
    if (version == 42) {
        return Offset(4);
    }
    const bool isSound = isBig_ && Number<std::uint16_t>(4) == 8;
    return isSound ? Offset(8) : std::nullopt;
}

Entry Reader::EntryAt(std::uint64_t offset) {
    Entry entry;
    entry.tag = Number<std::uint16_t>(offset).value_or(0);
    entry.type = Number<std::uint16_t>(offset + 2).value_or(0);
    entry.count = Offset(offset + 4).value_or(0);
    const std::uint64_t size = SizeOfType(entry.type);
    if (size == 0 || entry.count > range_.length / size) {
        return entry;
    }
    const std::uint64_t field = isBig_ ? 8 : 4;
    const std::uint64_t place = offset + 4 + field;
    const std::uint64_t length = size * entry.count;
    entry.value = Inside(length <= field ? place : Offset(place).value_or(range_.length), length);
    return entry;
}

std::optional<Directory> Reader::At(std::uint64_t offset) {
    if (offset == 0) {
        return std::nullopt;
    }
    std::optional<std::uint64_t> count = Number<std::uint16_t>(offset);
    if (isBig_) {
        count = Number<std::uint64_t>(offset);
    }
    if (!count || *count > kMostEntries) {
        return std::nullopt;
    }
    const std::uint64_t size = isBig_ ? 20 : 12;
    const std::uint64_t first = offset + (isBig_ ? 8 : 2);
    Directory directory;
    for (std::uint64_t i = 0; i < *count; ++i) {
        if (Inside(first + i * size, size).length == 0) {
            return directory;
        }
        directory.entries.push_back(EntryAt(first + i * size));
    }
    directory.next = Offset(first + *count * size).value_or(0);
    return directory;
}

std::optional<std::uint64_t> Reader::Whole(const Directory& directory, std::uint16_t tag) {
    const Entry* entry = directory.Find(tag);
    if (entry == nullptr || entry->value.length == 0) {
        return std::nullopt;
    }
    const std::uint64_t at = entry->value.offset;
    switch (entry->type) {
        case 1:
            return file_.Number<std::uint8_t>(at, order_);
        case 3:
            return file_.Number<std::uint16_t>(at, order_);
        case 4:
        case 13:
            return file_.Number<std::uint32_t>(at, order_);
        case 16:
        case 18:
            return file_.Number<std::uint64_t>(at, order_);
        default:
            return std::nullopt;
    }
}

Directory Reader::Below(const Directory& directory, std::uint16_t tag) {
    const auto offset = Whole(directory, tag);
    return offset ? At(*offset).value_or(Directory()) : Directory();
}

/// Writes the entries that matter as a small TIFF structure: a directory, the EXIF and the GPS directory.
class ExifCopy {
  public:
    explicit ExifCopy(Reader& reader) : reader_(reader) {}

    std::string Write(const Directory& image, const Directory& exif, const Directory& gps) {
        const auto isOf = [](auto& tags) {
            return [&tags](std::uint16_t tag) { return std::ranges::find(tags, tag) != std::end(tags); };
        };
        const std::vector<Value> ofImage = Kept(image, isOf(kKeptOfImage));
        const std::vector<Value> ofExif = Kept(exif, isOf(kKeptOfExif));
        const std::vector<Value> ofGps = Kept(gps, [](std::uint16_t tag) { return tag <= tag::kLastGps; });
        if (ofImage.empty() && ofExif.empty() && ofGps.empty()) {
            return {};
        }
        out_ = reader_.Order() == ByteOrder::Big ? "MM" : "II";
        Put(42, 2);
        Put(kHeader, 4);
        const std::uint64_t exifAt = kHeader + SizeOf(ofImage) + 2 * kEntry;
        const std::uint64_t gpsAt = exifAt + SizeOf(ofExif);
        Append(ofImage, {{tag::kExifDirectory, exifAt}, {tag::kGpsDirectory, gpsAt}});
        Append(ofExif, {});
        Append(ofGps, {});
        return std::move(out_);
    }

  private:
    static constexpr std::uint64_t kHeader = 8;
    static constexpr std::uint64_t kEntry = 12;
    static constexpr std::uint64_t kInline = 4;

    struct Value {
        Entry entry;
        std::string bytes;
    };

    template <typename IsKept>
    std::vector<Value> Kept(const Directory& directory, IsKept isKept) {
        std::vector<Value> values;
        for (const Entry& entry : directory.entries) {
            constexpr std::uint16_t kLastClassicType = 12;
            const bool isDouble =
                std::ranges::any_of(values, [&](const Value& v) { return v.entry.tag == entry.tag; });
            if (!isKept(entry.tag) || entry.type > kLastClassicType || isDouble) {
                continue;
            }
            std::string bytes = reader_.File().Text(entry.value, kMostValueBytes);
            if (!bytes.empty()) {
                values.push_back({entry, std::move(bytes)});
            }
        }
        std::ranges::sort(values, {}, [](const Value& value) { return value.entry.tag; });
        return values;
    }

    /// Values follow their directory, at even offsets.
    static std::uint64_t Outside(const Value& value) {
        const std::uint64_t size = value.bytes.size();
        return size <= kInline ? 0 : size + size % 2;
    }

    static std::uint64_t SizeOf(const std::vector<Value>& values) {
        std::uint64_t size = 2 + values.size() * kEntry + 4;
        for (const Value& value : values) {
            size += Outside(value);
        }
        return size;
    }

    void Put(std::uint64_t number, unsigned bytes) {
        for (unsigned i = 0; i < bytes; ++i) {
            const unsigned place = reader_.Order() == ByteOrder::Big ? bytes - 1 - i : i;
            out_ += static_cast<char>((number >> (8U * place)) & 0xFFU);
        }
    }

    void PutEntry(std::uint16_t tag, std::uint16_t type, std::uint64_t count) {
        Put(tag, 2);
        Put(type, 2);
        Put(count, 4);
    }

    void Append(const std::vector<Value>& values,
                std::initializer_list<std::pair<std::uint16_t, std::uint64_t>> pointers) {
        const std::size_t count = values.size() + pointers.size();
        std::uint64_t at = out_.size() + 2 + count * kEntry + 4;
        Put(count, 2);
        for (const Value& value : values) {
            PutEntry(value.entry.tag, value.entry.type, value.entry.count);
            if (Outside(value) == 0) {
                out_ += value.bytes + std::string(kInline - value.bytes.size(), '\0');
            } else {
                Put(at, 4);
                at += Outside(value);
            }
        }
        for (const auto& [tag, offset] : pointers) {
            constexpr std::uint16_t kLong = 4;
            PutEntry(tag, kLong, 1);
            Put(offset, 4);
        }
        Put(0, 4);
        for (const Value& value : values) {
            if (Outside(value) != 0) {
                out_ += value.bytes + std::string(value.bytes.size() % 2, '\0');
            }
        }
    }

    Reader& reader_;
    std::string out_;
};

std::uint32_t Whole32(Reader& reader, const Directory& directory, std::uint16_t tag) {
    const std::uint64_t value = reader.Whole(directory, tag).value_or(0);
    return value > 0xFFFFFFFFU ? 0 : static_cast<std::uint32_t>(value);
}

/// Size of a pixel on the ground: two doubles, and a third for heights.
void ReadPixelScale(Reader& reader, const Directory& directory, TiffFacts& facts) {
    constexpr std::uint16_t kDouble = 12;
    const Entry* entry = directory.Find(tag::kPixelScale);
    if (entry == nullptr || entry->type != kDouble || entry->value.length < 2 * sizeof(double)) {
        return;
    }
    const auto at = [&](std::uint64_t offset) {
        const auto bits = reader.File().Number<std::uint64_t>(entry->value.offset + offset, reader.Order());
        const double size = std::bit_cast<double>(bits.value_or(0));
        return std::isfinite(size) && size > 0 ? size : 0;
    };
    facts.pixelWidth = at(0);
    facts.pixelHeight = at(sizeof(double));
}

/// The further directories: a JPEG preview, and images that are the first one reduced.
void ReadChain(Reader& reader, const Directory& first, TiffFacts& facts) {
    std::uint64_t next = first.next;
    for (int i = 0; i < kMostDirectories && next != 0; ++i) {
        const std::optional<Directory> directory = reader.At(next);
        if (!directory) {
            return;
        }
        facts.overviews += Whole32(reader, *directory, tag::kSubfileType) == 1 ? 1 : 0;
        const auto offset = reader.Whole(*directory, tag::kThumbnailOffset);
        const auto length = reader.Whole(*directory, tag::kThumbnailLength);
        if (facts.thumbnail.length == 0 && offset && length) {
            facts.thumbnail = reader.Inside(*offset, *length);
        }
        next = directory->next;
    }
}

}  // namespace

std::optional<TiffFacts> ReadTiffDirectories(PhotoBytes& file, FileRange range) {
    Reader reader(file, range);
    const std::optional<std::uint64_t> start = reader.First();
    const std::optional<Directory> first = start ? reader.At(*start) : std::nullopt;
    if (!first) {
        return std::nullopt;
    }
    TiffFacts facts;
    facts.width = Whole32(reader, *first, tag::kWidth);
    facts.height = Whole32(reader, *first, tag::kHeight);
    facts.bits = Whole32(reader, *first, tag::kBits);
    facts.bands = Whole32(reader, *first, tag::kBands);
    if (const auto photometric = reader.Whole(*first, tag::kPhotometric)) {
        facts.photometric = *photometric > 0xFFFF ? -1 : static_cast<std::int32_t>(*photometric);
    }
    if (const Entry* xmp = first->Find(tag::kXmp)) {
        facts.xmp = xmp->value;
    }
    ReadPixelScale(reader, *first, facts);
    ReadChain(reader, *first, facts);
    facts.exif = ExifCopy(reader).Write(*first, reader.Below(*first, tag::kExifDirectory),
                                        reader.Below(*first, tag::kGpsDirectory));
    return facts;
}

}  // namespace orvex
