#pragma once
// Variable length records (VLRs), extended ones (EVLRs), and the descriptors of extra bytes.
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "las/LasHeader.h"
#include "support/ByteSource.h"
#include "support/LasFormat.h"

namespace orvex {

class SourceWindow;

/// Most records of one kind that are listed. Files have a handful; a file of zeros would otherwise turn into
/// as many empty records as its size allows.
inline constexpr std::size_t kMostRecords = 1U << 16U;
/// Most bytes of record data of one kind (VLRs, EVLRs) that are kept of a file. A list holds thousands of
/// files, and a CRS takes a few thousand bytes.
inline constexpr std::uint64_t kMostRecordData = std::uint64_t{1} << 20U;
/// Most bytes of a record's data that are shown byte by byte.
inline constexpr std::uint64_t kLongestDump = 256;

/// View of a VLR inside the bytes of a VlrList.
class VlrView {
  public:
    static constexpr std::size_t kHeaderSize = las::kVlrHeaderSize;

    /// `record` starts with a whole record header; missing data is missing from Data(). `isTruncated`: the
    /// data runs past the end of the VLR area.
    VlrView(std::span<const std::byte> record, std::uint64_t fileOffset, bool isTruncated);

    std::uint16_t Reserved() const;
    std::string UserId() const;
    std::uint16_t RecordId() const;
    /// Bytes of data as stated in the record header.
    std::uint64_t RecordLength() const;
    std::string Description() const;

    /// Data, truncated at the end of the VLR area; empty if it was skipped.
    std::span<const std::byte> Data() const { return record_.subspan(kHeaderSize); }
    /// False if the data was skipped.
    bool HasData() const { return isTruncated_ || Data().size() == RecordLength(); }
    bool IsTruncated() const { return isTruncated_; }
    bool Is(std::string_view userId, std::uint16_t recordId) const;
    /// Offset of the record header in the file.
    std::uint64_t FileOffset() const { return fileOffset_; }

  private:
    std::span<const std::byte> record_;
    std::uint64_t fileOffset_ = 0;
    bool isTruncated_ = false;
};

/// The VLRs of a file and the bytes that they view. Move-only.
struct VlrList {
    VlrList() = default;
    VlrList(VlrList&&) = default;
    VlrList& operator=(VlrList&&) = default;

    std::vector<std::byte> bytes;
    std::vector<VlrView> records;
};

/// An EVLR: its header, and its data if that was read.
class EvlrEntry {
  public:
    static constexpr std::size_t kHeaderSize = las::kEvlrHeaderSize;
    using HeaderBytes = std::array<std::byte, kHeaderSize>;

    /// `isTruncated`: the data runs past the end of the file.
    EvlrEntry(const HeaderBytes& header, std::uint64_t fileOffset, bool isTruncated)
        : header_(header), isTruncated_(isTruncated), fileOffset_(fileOffset) {}

    void SetData(std::vector<std::byte> data) { data_ = std::move(data); }

    std::uint16_t Reserved() const;
    std::string UserId() const;
    std::uint16_t RecordId() const;
    /// Bytes of data as stated in the record header.
    std::uint64_t RecordLength() const;
    std::string Description() const;

    /// Data; empty if it was skipped.
    std::span<const std::byte> Data() const;
    /// False if the data was skipped.
    bool HasData() const { return data_.has_value(); }
    bool IsTruncated() const { return isTruncated_; }
    bool Is(std::string_view userId, std::uint16_t recordId) const;
    /// Offset of the record header in the file.
    std::uint64_t FileOffset() const { return fileOffset_; }

  private:
    HeaderBytes header_;
    bool isTruncated_ = false;
    std::uint64_t fileOffset_ = 0;
    std::optional<std::vector<std::byte>> data_;
};

/// Reads the VLRs between the header and the points. Ends after the number of records stated in the header,
/// at a record header that would not fit, or at kMostRecords. Empty if the stated header size is below that
/// of the smallest header. Keeps the data of short records and of those that the reader decodes (CRS, extra
/// bytes), up to kMostRecordData. After an error `list` has the records before it.
SystemError ReadVlrs(const ByteSource& file, const LasHeader& header, VlrList& list);

/// The same through a window of the file.
SystemError ReadVlrs(SourceWindow& file, const LasHeader& header, VlrList& list);

/// Reads up to kMostRecords EVLRs from an offset; none if `start` or `count` is 0. Only the data of
/// "LASF_Projection" and "Kst" records is kept, up to kMostRecordData. With `truncates` it ends at the end of
/// the file; otherwise a truncated record is an error. Throws LDataError if a record cannot be read, also if
/// `count` leads past the end of the file. Returns fewer only if the source gives no more
/// (ByteSource::kNoMoreReads).
std::vector<EvlrEntry> ReadEvlrs(const ByteSource& file, std::uint64_t start, std::uint32_t count,
                                 bool truncates);

/// One extra bytes attribute. Offsets and size are bytes.
struct ExtraBytesAttribute {
    std::wstring name;
    std::uint64_t offset = 0;       ///< from the first attribute of its record
    std::uint64_t pointOffset = 0;  ///< from the first extra byte of a point record
    std::uint8_t size = 0;
    std::uint8_t dataType = 0;
};

/// Extra bytes attributes in descriptor order. Find is a linear search: a file has few of them, and a list of
/// thousands of files should not keep the names twice.
class ExtraBytes {
  public:
    /// Size of a descriptor (table 24 of the LAS 1.4 format).
    static constexpr std::size_t kDescriptorSize = 192;
    /// No point record has room for more attributes.
    static constexpr std::size_t kMostAttributes = 65535;

    /// Adds the attributes of a record's data, the first at offset 0; at most `mostAttributes`, and no more
    /// than kMostAttributes in all. A partial descriptor at the end is ignored. Throws LDataError for data
    /// types above 10.
    void Add(std::span<const std::byte> descriptors, std::size_t mostAttributes = kMostAttributes);

    const std::vector<ExtraBytesAttribute>& Attributes() const { return attributes_; }
    /// True if the attributes come from several records, so that an offset in a record is not that in a
    /// point.
    bool IsSpread() const;
    /// First attribute of a name; null if there is none.
    const ExtraBytesAttribute* Find(const std::wstring& name) const;

  private:
    std::vector<ExtraBytesAttribute> attributes_;
    std::uint64_t pointEnd_ = 0;  // of the attributes in a point record
};

/// The VLRs of a file and the extra bytes that they describe. Files with the same VLRs share one.
struct LasVlrs {
    VlrList list;
    ExtraBytes extraBytes;
    bool hasRangeIncidencePhotoIndex = false;  ///< the extra bytes hold them
};
using LasVlrsPtr = std::shared_ptr<const LasVlrs>;

/// Reads the VLRs as the other ReadVlrs do, `vlrs` having those before an error. Throws LDataError for an
/// invalid description of extra bytes.
SystemError ReadVlrs(SourceWindow& file, const LasHeader& header, LasVlrsPtr& vlrs);
/// The same, for a file on a disk. Safe from any thread.
SystemError ReadSharedVlrs(SourceWindow& file, const LasHeader& header, LasVlrsPtr& vlrs);

}  // namespace orvex
