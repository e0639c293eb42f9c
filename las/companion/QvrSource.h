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
    /// Header of the companion, which has records of its own beside those that it keeps.
    std::vector<std::byte> CompanionHeader(std::uint64_t ownBytes, std::uint32_t ownCount) const;
    /// Length of the header and the VLRs that the companion keeps.
    std::uint64_t KeptHeadBytes() const { return headerSize_ + BytesOf(vlrs_); }

    /// Records that the companion keeps.
    struct Piece {
        std::uint64_t offset = 0;
        std::uint64_t length = 0;
        bool isInHead = false;  ///< of a LAZ file: its head is in memory
    };
    /// The VLRs that the companion keeps, in file order.
    const std::vector<Piece>& KeptVlrs() const { return vlrs_; }
    /// The EVLRs that the companion keeps, in file order.
    const std::vector<Piece>& KeptEvlrs() const { return evlrs_; }
    std::uint64_t KeptEvlrBytes() const { return BytesOf(evlrs_); }
    /// Reads bytes of a piece, from an offset in it on.
    void ReadPiece(const Piece& piece, std::uint64_t from, std::span<std::byte> bytes) const;

  private:
    static std::uint64_t BytesOf(const std::vector<Piece>& pieces);
    LasHeader Header() const { return LasHeader(headerBlock_); }
    void Open();
    void ReadHead();
    void KeepHeader();
    void KeepVlrs();
    void RequireReadable(const Piece& vlr) const;
    void KeepEvlrs();
    void RequireSound() const;
    void RequireAllPoints() const;
    void ReadFile(std::uint64_t offset, std::span<std::byte> bytes) const;
    std::vector<std::byte> ReadBytes(std::uint64_t offset, std::uint64_t length) const;

    std::wstring path_;
    MappedFile file_;
    std::uint64_t size_ = 0;
    FileTime time_{};
    std::uint64_t headerHash_ = 0;
    std::vector<std::byte> head_;         // of a LAZ file, up to its points; else the header alone
    std::vector<std::byte> headerBlock_;  // copy of its header, at least of the greatest size that is known
    std::uint16_t headerSize_ = 0;
    std::vector<Piece> vlrs_;  // those that follow each other are one piece
    std::uint32_t vlrCount_ = 0;
    std::vector<Piece> evlrs_;
    std::uint64_t points_ = 0;
    std::size_t recordLength_ = 0;
    bool isCompressed_ = false;
};

}  // namespace orvex
