#pragma once
#include <cstdint>
#include <vector>

#include "las/LasRecords.h"
#include "support/MappedFile.h"

namespace orvex {

/// Reads the EVLRs of an open LAS 1.4 file. The data of the "LASF_Projection" and "Kst" records is kept, that
/// of others is skipped.
class EvlrReader {
  public:
    /// `mapData`: the data is mapped, and data that runs past the end of the file is cut; otherwise it is
    /// copied (mapped when it is large), and such a record is a failure.
    EvlrReader(const MappedFile& file, bool mapData) : file_(file), mapData_(mapData) {}

    /// The records from a byte of the file, at most kMostRecords; none when either argument is 0. Throws
    /// LDataError when a record cannot be read, which includes a count beyond the end of the file.
    std::vector<EvlrEntry> Read(std::uint64_t start, std::uint32_t count);

  private:
    std::vector<EvlrEntry> ReadAll(std::uint64_t start, std::uint32_t count);
    EvlrEntry ReadHeader(std::uint64_t position) const;
    void ReadData(EvlrEntry& entry, std::uint64_t position);
    std::uint64_t NextPosition(const EvlrEntry& entry, std::uint64_t dataPosition) const;

    const MappedFile& file_;
    bool mapData_;
    std::uint64_t fileSize_ = 0;
    std::uint64_t copied_ = 0;  // bytes of data in private memory
};

}  // namespace orvex
