#pragma once
// Reading of QVR companions; docs/formats/qvr.md describes the format.
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "las/LasHeader.h"
#include "las/LasPointViews.h"
#include "las/companion/QvrFormat.h"
#include "support/MappedFile.h"

namespace orvex {

/// Points of a file that follow each other; numbers count from 0.
struct PointRange {
    std::uint64_t first = 0;
    std::uint64_t count = 0;
    friend bool operator==(const PointRange&, const PointRange&) = default;
};

/// Header and index record of a QVR file.
struct QvrHead {
    std::array<std::byte, las::kHeaderSize14> block{};  ///< zeros beyond the header's size
    QvrIndex index;

    /// View of the block.
    LasHeader Header() const { return LasHeader(block); }
};

/// An open QVR file: its header and its index in memory, its points on the disk. The functions may be called
/// from several threads at once.
class QvrFile {
  public:
    /// Opens a file and reads its index. Every entry is checked, no point is read. Throws LDataError.
    static std::unique_ptr<QvrFile> Open(const std::wstring& path);

    const std::wstring& Path() const { return path_; }
    LasHeader Header() const { return head_.Header(); }
    const QvrIndex& Index() const { return head_.index; }
    /// In file order; together all points, each in one entry.
    std::span<const QvrEntry> Entries() const { return entries_; }
    std::uint64_t PointCount() const { return Header().PointCount(); }
    /// Bytes of a point record.
    std::uint16_t RecordLength() const { return Header().PointRecordLength(); }
    /// Scale and offset of the coordinates, and the header's extent.
    const LasPointFrame& Frame() const { return frame_; }

    /// The box that holds all points, in coordinates.
    LasExtent RootBox() const;
    /// Octant of an entry, in coordinates.
    LasExtent BoxOf(const QvrEntry& entry) const;
    /// Points for a picture of a view, in coordinates: whole generations of the entries whose octants meet
    /// the view, as many as put up to about `mostPoints` points into it. The more points, the denser the
    /// picture, evenly at every place. The ranges hold points beside the view as well, in all up to
    /// kMostBeside times `mostPoints`; of a view of everything never more than `mostPoints`. In file order,
    /// adjacent ones joined.
    static constexpr std::uint64_t kMostBeside = 8;
    std::vector<PointRange> Select(const LasExtent& view, std::uint64_t mostPoints) const;

    /// Points whose records take up to a megabyte, at least one: a record can have 64 kB.
    std::uint64_t PointsPerRead() const;
    /// Reads the records of points below PointCount() into a buffer of their size. Throws LDataError.
    void Read(PointRange points, std::span<std::byte> records) const;
    /// X, Y, Z of a point record.
    std::array<double, 3> PositionOf(std::span<const std::byte> record) const;
    /// Classification of a point record, without the flags of the legacy formats.
    std::uint8_t ClassificationOf(std::span<const std::byte> record) const;

  private:
    QvrFile() = default;
    LasExtent CoordinatesOf(const QvrRawBox& cell) const;

    std::wstring path_;
    MappedFile file_;
    QvrHead head_;
    LasPointFrame frame_;
    std::vector<QvrEntry> entries_;
};

/// Reads a QVR file's header and index record alone. Throws LDataError with the file's name.
QvrHead ReadQvrHead(const std::wstring& path);

}  // namespace orvex
