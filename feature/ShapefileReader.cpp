#include "feature/ShapefileReader.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "feature/FeatureFindings.h"
#include "support/ByteReader.h"
#include "support/LDataError.h"
#include "support/SidecarFile.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::size_t kHeaderBytes = 100;
constexpr std::uint32_t kFileCode = 9994;
constexpr std::size_t kIndexEntryBytes = 8;
constexpr std::size_t kRecordHeaderBytes = 8;
constexpr std::size_t kLeastContent = 4;  ///< the type of a shape
constexpr std::int32_t kTypes[] = {0, 1, 3, 5, 8, 11, 13, 15, 18, 21, 23, 25, 28, 31};

/// Header of a .shp or .shx file.
struct Header {
    std::uint64_t bytes = 0;  ///< of the file, as stated
    std::int32_t type = 0;
    std::array<double, 4> box{};
};

/// Lengths and offsets are in words of 16 bits.
std::uint64_t WordsAt(const ByteReader& reader, std::uint64_t offset) {
    return std::uint64_t{2} * reader.ReadBig<std::uint32_t>(offset);
}

/// Throws LDataError if the file does not begin with a header of a shapefile.
Header ReadHeader(const RegularFile& file) {
    const std::vector<std::byte> bytes = file.Read(0, kHeaderBytes);
    const ByteReader reader(bytes);
    if (reader.Size() == 0) {
        throw LDataError(Text(text::kRasterFileEmpty));
    }
    if (reader.ReadBig<std::uint32_t>(0) != kFileCode) {
        throw LDataError(Text(text::kShapefileStartWrong));
    }
    if (reader.Size() < kHeaderBytes) {
        throw LDataError(Text(text::kShapefileHeaderCutOff));
    }
    Header header{WordsAt(reader, 24), reader.Read<std::int32_t>(32), {}};
    for (std::size_t edge = 0; edge < header.box.size(); ++edge) {
        header.box[edge] = reader.Read<double>(36 + edge * sizeof(double));
    }
    if (std::ranges::find(kTypes, header.type) == std::end(kTypes)) {
        throw LDataError(FormatText(Text(text::kShapefileTypeUnknown), {header.type}));
    }
    return header;
}

/// Number of shapes, and how it was come by.
struct ShapeCount {
    std::uint64_t shapes = 0;
    std::uint64_t end = kHeaderBytes;  ///< behind the last of them
    bool isEnough = true;              ///< false: there are more than may be read
};

/// Walks from shape to shape, each of which states its length.
ShapeCount CountShapes(const RegularFile& file) {
    constexpr std::size_t kBlockBytes = 4096;
    constexpr std::uint64_t kMostBytes = std::uint64_t{32} << 20U;
    ShapeCount count;
    std::vector<std::byte> block;
    std::uint64_t blockAt = 0;
    std::uint64_t read = 0;
    while (count.end + kRecordHeaderBytes + kLeastContent <= file.Size()) {
        if (count.end + kRecordHeaderBytes > blockAt + block.size()) {
            if (read >= kMostBytes) {
                count.isEnough = false;
                break;
            }
            blockAt = count.end;
            block = file.Read(blockAt, kBlockBytes);
            read += kBlockBytes;
        }
        const std::uint64_t content = WordsAt(ByteReader(block), count.end - blockAt + 4);
        if (content < kLeastContent || content > file.Size() - count.end - kRecordHeaderBytes) {
            break;
        }
        ++count.shapes;
        count.end += kRecordHeaderBytes + content;
    }
    return count;
}

/// What an index says about shapes that are not as it says.
struct IndexFit {
    bool contradicts = false;  ///< it points to other places than those of shapes
    bool hasMixedTypes = false;
};

/// The index of a shapefile (.shx): offset and length of each shape.
class ShapeIndex {
  public:
    /// Throws LDataError like ReadHeader.
    explicit ShapeIndex(const std::wstring& path)
        : file_(path), header_(ReadHeader(file_)), count_((file_.Size() - kHeaderBytes) / kIndexEntryBytes) {}

    std::uint64_t Count() const { return count_; }
    bool IsCutOff() const { return header_.bytes > file_.Size(); }

    /// Compares some of its entries, from the first to the last, with the shapes they point to.
    IndexFit Compare(const RegularFile& shapes, const Header& header) const {
        constexpr std::uint64_t kSamples = 16;
        constexpr std::uint64_t kMostRoom = std::uint64_t{1} << 33U;  // that its offsets reach
        const std::uint64_t room = std::min(std::max(header.bytes, shapes.Size()), kMostRoom) - kHeaderBytes;
        IndexFit fit{count_ > room / (kRecordHeaderBytes + kLeastContent), false};
        const std::uint64_t step = std::max<std::uint64_t>(count_ / kSamples, 1);
        for (std::uint64_t i = 0; i < count_ && !fit.contradicts; i += step) {
            CompareEntry(i, shapes, header, fit);
        }
        if (count_ > 0 && !fit.contradicts) {
            CompareEntry(count_ - 1, shapes, header, fit);
        }
        return fit;
    }

  private:
    void CompareEntry(std::uint64_t index, const RegularFile& shapes, const Header& header,
                      IndexFit& fit) const {
        const std::vector<std::byte> bytes =
            file_.Read(kHeaderBytes + index * kIndexEntryBytes, kIndexEntryBytes);
        const ByteReader entry(bytes);
        const std::uint64_t offset = WordsAt(entry, 0);
        const std::uint64_t length = WordsAt(entry, 4);
        if (offset == 0 && length == 0) {
            return;  // a shape that was deleted
        }
        if (offset < kHeaderBytes || offset + kRecordHeaderBytes + length > shapes.Size()) {
            // A file that is cut off is reported as that.
            fit.contradicts = offset < kHeaderBytes || header.bytes <= shapes.Size();
            return;
        }
        const std::vector<std::byte> start = shapes.Read(offset, kRecordHeaderBytes + kLeastContent);
        const ByteReader shape(start);
        const auto type = shape.Read<std::int32_t>(kRecordHeaderBytes);
        fit.contradicts = WordsAt(shape, 4) != length;
        fit.hasMixedTypes = fit.hasMixedTypes || (type != 0 && type != header.type);
    }

    RegularFile file_;
    Header header_;
    std::uint64_t count_;
};

/// Number of shapes by the index; nullopt, and a finding, if it cannot be relied upon.
std::optional<std::uint64_t> CountByIndex(const std::wstring& path, const RegularFile& shapes,
                                          const Header& header, std::vector<Finding>& findings) {
    const std::wstring beside = SidecarOf(path, L".shx");
    if (beside.empty()) {
        findings.push_back(MakeFinding(feature_finding::kIndexMissing));
        return std::nullopt;
    }
    try {
        const ShapeIndex index(beside);
        const IndexFit fit = index.Compare(shapes, header);
        if (fit.hasMixedTypes) {
            findings.push_back(MakeFinding(feature_finding::kShapeTypesMixed));
        }
        if (index.IsCutOff() || fit.contradicts) {
            findings.push_back(MakeFinding(index.IsCutOff() ? feature_finding::kIndexCutOff
                                                            : feature_finding::kIndexContradicts));
            return std::nullopt;
        }
        return index.Count();
    } catch (const LDataError& error) {
        findings.push_back(MakeFinding(feature_finding::kIndexUnreadable, {error.Text()}));
        return std::nullopt;
    }
}

/// Number of shapes by the file itself; nullopt if there are more than may be read.
std::optional<std::uint64_t> CountByWalk(const RegularFile& shapes, const Header& header,
                                         ShapefileContent& content) {
    const ShapeCount count = CountShapes(shapes);
    content.shapeCount = count.shapes;
    if (!count.isEnough) {
        content.findings.push_back(MakeFinding(feature_finding::kShapesNotAllCounted, {count.shapes}));
        return std::nullopt;
    }
    if (count.end != shapes.Size() && header.bytes <= shapes.Size()) {
        content.findings.push_back(MakeFinding(feature_finding::kShapesDamaged, {count.shapes}));
    }
    return count.shapes;
}

}  // namespace

ShapefileContent ReadShapefile(const std::wstring& path) {
    const RegularFile shapes(path);
    const Header header = ReadHeader(shapes);
    ShapefileContent content;
    content.shapeType = header.type;
    content.extent = header.box;
    if (header.bytes > shapes.Size()) {
        content.findings.push_back(
            MakeFinding(feature_finding::kShapesCutOff, {shapes.Size(), header.bytes}));
    }
    std::optional<std::uint64_t> count = CountByIndex(path, shapes, header, content.findings);
    count = count ? count : CountByWalk(shapes, header, content);
    content.shapeCount = count.value_or(content.shapeCount);
    AttributeTable table = ReadAttributeTable(path);
    content.fields = std::move(table.fields);
    std::ranges::move(table.findings, std::back_inserter(content.findings));
    if (count && table.recordCount && *table.recordCount != *count) {
        content.findings.push_back(MakeFinding(feature_finding::kTableCount, {*table.recordCount, *count}));
    }
    return content;
}

}  // namespace orvex
