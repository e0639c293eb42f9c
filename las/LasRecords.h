#pragma once
// Variable length records (VLRs) and extended ones (EVLRs).
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "las/LasHeader.h"
#include "support/MappedFile.h"

namespace orvex {

/// The user id of the records that hold a CRS, and the ids that matter here.
inline constexpr std::string_view kProjectionUserId = "LASF_Projection";
inline constexpr std::uint16_t kWktRecordId = 2112;
inline constexpr std::uint16_t kGeoKeyDirectoryRecordId = 34735;
inline constexpr std::uint16_t kGeoDoublesRecordId = 34736;
inline constexpr std::uint16_t kGeoTextRecordId = 34737;

/// The most records of one kind that a list holds. Files have a handful; a file of zeros would otherwise turn
/// into as many empty records as its size allows.
inline constexpr std::size_t kMostRecords = 1U << 18U;

/// A VLR inside a VLR area, which outlives the view.
class VlrView {
  public:
    static constexpr std::size_t kHeaderSize = 54;

    /// `record` starts with the whole record header; data that it lacks is missing from Data().
    VlrView(std::span<const std::byte> record, std::uint64_t fileOffset);

    std::uint16_t Reserved() const;
    std::string UserId() const;
    std::uint16_t RecordId() const;
    /// As the record header says it, in bytes.
    std::uint64_t RecordLength() const;
    std::string Description() const;

    /// The data, cut where the VLR area ends.
    std::span<const std::byte> Data() const { return record_.subspan(kHeaderSize); }
    bool HasData() const { return true; }
    bool IsTruncated() const { return Data().size() < RecordLength(); }
    bool Is(std::string_view userId, std::uint16_t recordId) const;
    /// Byte of the file that the record header starts at.
    std::uint64_t FileOffset() const { return fileOffset_; }

  private:
    std::span<const std::byte> record_;
    std::uint64_t fileOffset_ = 0;
};

/// An EVLR: its header, and its data where that was read. Move-only.
class EvlrEntry {
  public:
    static constexpr std::size_t kHeaderSize = 60;
    using HeaderBytes = std::array<std::byte, kHeaderSize>;

    /// A record whose data was skipped. `isTruncated`: the data runs past the end of the file.
    EvlrEntry(const HeaderBytes& header, std::uint64_t fileOffset, bool isTruncated);

    /// Gives the record its data, as a copy or as a view of the file.
    void SetData(std::vector<std::byte> copy);
    void SetData(MappedView view);

    std::uint16_t Reserved() const;
    std::string UserId() const;
    std::uint16_t RecordId() const;
    /// As the record header says it, in bytes.
    std::uint64_t RecordLength() const;
    std::string Description() const;

    /// The data; empty when it was skipped.
    std::span<const std::byte> Data() const;
    bool HasData() const { return hasData_; }
    bool IsTruncated() const { return isTruncated_; }
    bool Is(std::string_view userId, std::uint16_t recordId) const;
    std::uint64_t FileOffset() const { return fileOffset_; }

  private:
    HeaderBytes header_;
    bool hasData_ = false;
    bool isTruncated_ = false;
    std::uint64_t fileOffset_ = 0;
    std::vector<std::byte> copy_;
    MappedView view_;
};

/// The VLRs of an area that holds a file from its first byte up to its points. The walk starts behind the
/// header and ends after the header's count of records, where the next record header would not fit, or at
/// kMostRecords. A header size below the smallest header gives no records.
std::vector<VlrView> WalkVlrs(std::span<const std::byte> area, const LasHeader& header);

}  // namespace orvex
