#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace orvex {

/// Where things lie in a LAS or LAZ file, from its public header block (LAS 1.0 to 1.4); checked against the
/// file's size.
struct LazLayout {
    std::uint64_t fileSize = 0;
    std::uint8_t versionMinor = 0;
    std::uint16_t headerSize = 0;
    std::uint32_t offsetToPoints = 0;
    std::uint16_t recordLength = 0;  ///< of a point
    bool hasPoints = false;
    std::uint32_t recordCount = 0;          ///< variable-length records
    std::uint64_t waveformStart = 0;        ///< waveform record inside the file (LAS 1.3 on); 0 for none
    std::uint64_t extendedStart = 0;        ///< first extended record (LAS 1.4); 0 for none
    std::uint32_t extendedRecordCount = 0;  ///< as announced
};

/// A record behind the points: 60 bytes of header and its data.
struct ExtendedRecord {
    std::uint64_t offset = 0;
    std::uint64_t length = 0;  ///< with its header
    bool isWaveform = false;   ///< the waveform data packets
};

/// Reads the layout. Throws LDataError when the file cannot be read, is no LAS file, or announces what cannot
/// lie in it: the codec reserves memory from these numbers unseen.
LazLayout ReadLazLayout(const std::wstring& path);

/// The extended records that a decompressed file keeps, in order: those that lie inside the file, less the
/// ones that describe where the compressed chunks are and so mean nothing without them.
std::vector<ExtendedRecord> ReadExtendedRecords(const std::wstring& path, const LazLayout& layout);

}  // namespace orvex
