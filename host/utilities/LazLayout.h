#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace orvex {

class MappedFile;

/// Layout of a LAS or LAZ file from its public header block (LAS 1.0 to 1.4), checked against the file's
/// size.
struct LazLayout {
    std::uint64_t fileSize = 0;
    std::uint8_t versionMinor = 0;
    std::uint16_t headerSize = 0;
    std::uint32_t offsetToPoints = 0;
    std::uint16_t recordLength = 0;  ///< of a point
    bool hasPoints = false;
    bool isCompressed = false;
    std::uint32_t recordCount = 0;          ///< VLRs as stated in the header
    std::uint64_t waveformStart = 0;        ///< waveform record inside the file (LAS 1.3 on); 0 for none
    std::uint64_t extendedStart = 0;        ///< first EVLR (LAS 1.4); 0 for none
    std::uint32_t extendedRecordCount = 0;  ///< EVLRs as stated in the header
};

/// An EVLR, or the waveform record of LAS 1.3.
struct ExtendedRecord {
    std::uint64_t offset = 0;
    std::uint64_t length = 0;  ///< including its header
    bool isWaveform = false;   ///< the waveform data packets
};

/// Throws LDataError if the file cannot be opened.
MappedFile OpenForReading(const std::wstring& path, std::uint64_t& size);
/// Bytes of a file from a place on; fewer where it ends or cannot be read.
std::vector<std::byte> ReadPart(const MappedFile& file, std::uint64_t offset, std::uint64_t length);

/// Reads the layout. Throws LDataError if the file cannot be read, is not a LAS file, or states sizes and
/// counts that cannot be right: the codec allocates memory from them unchecked.
LazLayout ReadLazLayout(const std::wstring& path);

/// EVLRs that a decompressed file keeps, in file order: those that lie inside the file, except the ones that
/// index the compressed chunks.
std::vector<ExtendedRecord> ReadExtendedRecords(const std::wstring& path, const LazLayout& layout);

/// The table at the end of the points that lists the chunks in which they are compressed, each for itself.
struct LazChunkTable {
    std::uint64_t place = 0;      ///< in the file; 0 if there is none
    std::uint64_t start = 0;      ///< place of the first chunk
    std::uint32_t chunkSize = 0;  ///< points in each chunk but the last; 0 if the table lists them
};

/// Checks what the codec trusts blindly: its own record ("laszip encoded", 22204), which lists the items of a
/// point, and the start of the table of chunks, which it returns. Throws LDataError if they cannot be right,
/// or the record of a compressed file is missing.
LazChunkTable RequireUsableCodecRecord(const std::wstring& path, const LazLayout& layout);

}  // namespace orvex
