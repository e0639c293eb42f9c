#pragma once
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "las/LasHeader.h"
#include "las/companion/QvrFormat.h"
#include "support/MappedFile.h"

namespace orvex {

/// A LAS or LAZ file whose companion is built. Members throw LDataError with a text that names the file.
class QvrSource {
  public:
    explicit QvrSource(const std::wstring& path);

    const std::wstring& Path() const { return path_; }
    std::uint64_t Points() const { return points_; }
    /// Of the points as they are without compression.
    std::size_t RecordLength() const { return recordLength_; }
    bool IsCompressed() const { return isCompressed_; }
    std::array<double, 3> Scale() const { return Header().Scale(); }

    /// Extent as stated in the header, in raw units.
    std::pair<QvrPosition, QvrPosition> StatedExtent() const;
    /// Reads whole records from a point on; not of a LAZ file. Any thread.
    void ReadPoints(std::uint64_t first, std::span<std::byte> records) const;
    /// Throws if the file is no longer the one that was opened.
    void RequireUnchanged() const;

    /// Facts of the source that the index keeps.
    QvrIndex Index() const;
    /// Header and VLRs of the companion, with its own records behind them; points follow.
    std::vector<std::byte> CompanionHead(std::span<const std::byte> ownRecords, std::uint32_t ownCount) const;
    /// Length of that without its own records.
    std::uint64_t KeptHeadBytes() const { return headerSize_ + vlrBytes_.size(); }

    /// A piece of the source that stands behind the companion's points.
    struct Piece {
        std::uint64_t offset = 0;
        std::uint64_t length = 0;
    };
    /// The EVLRs that the companion keeps, in file order.
    const std::vector<Piece>& KeptEvlrs() const { return evlrs_; }
    std::uint64_t KeptEvlrBytes() const;
    void ReadPiece(std::uint64_t offset, std::span<std::byte> bytes) const;

  private:
    LasHeader Header() const { return LasHeader(headerBlock_); }
    void Open();
    void ReadHead();
    void KeepVlrs();
    void KeepEvlrs();
    void RequireSound() const;
    void RequireAllPoints() const;
    std::vector<std::byte> ReadBytes(std::uint64_t offset, std::uint64_t length) const;

    std::wstring path_;
    MappedFile file_;
    std::uint64_t size_ = 0;
    FileTime time_{};
    std::uint64_t headerHash_ = 0;
    std::vector<std::byte> head_;         // of the LAS file, up to its points
    std::vector<std::byte> headerBlock_;  // copy of its header, at least of the greatest size that is known
    std::uint16_t headerSize_ = 0;
    std::vector<std::byte> vlrBytes_;
    std::uint32_t vlrCount_ = 0;
    std::vector<Piece> evlrs_;
    std::uint64_t points_ = 0;
    std::size_t recordLength_ = 0;
    bool isCompressed_ = false;
};

}  // namespace orvex
