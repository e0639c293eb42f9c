#pragma once
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "host/utilities/LazLayout.h"
#include "support/ProgressIf.h"
#include "support/TemporaryFile.h"

struct laszip_header;

namespace orvex {

/// A codec object of LASzip; destroyed with what it holds.
struct LaszipDeleter {
    void operator()(void* codec) const noexcept;
};
using LaszipHandle = std::unique_ptr<void, LaszipDeleter>;

/// One decompression of a LAZ file into a LAS file. Use once.
class LazDecompressor {
  public:
    LazDecompressor(const std::wstring& lazPath, const std::wstring& lasPath, Kst::ProgressIf& progress);

    /// True when the LAS file is complete at its place, false when the user stopped. Throws LDataError with a
    /// text for the user. Nothing but the complete file is ever left.
    bool Run();

  private:
    void OpenInput();
    void RequireSpace() const;
    void OpenOutput();
    bool CopyPoints();
    bool CopyExtendedRecords();
    bool CopyBytes(std::uint64_t from, std::uint64_t length);
    void PatchHeader();
    template <typename T>
    void PatchField(std::uint64_t offset, T value);
    void Finish();

    void CheckRead(int result) const;
    void CheckWritten(int result) const;
    [[noreturn]] void FailToWrite(SystemError error) const;

    std::wstring lazPath_;
    std::wstring lasPath_;
    Kst::ProgressIf& progress_;
    LazLayout layout_;
    std::vector<ExtendedRecord> extendedRecords_;

    // The codecs use the streams, so they are declared after them and destroyed before.
    std::ifstream input_;
    TemporaryFile temporary_;
    std::ofstream output_;
    LaszipHandle reader_;
    LaszipHandle writer_;
    laszip_header* header_ = nullptr;  ///< of the file to be written; owned by the reader
    std::uint64_t pointCount_ = 0;
    std::uint64_t extendedStart_ = 0;  ///< where the copied extended records start; 0 for none
    std::uint64_t waveformStart_ = 0;  ///< where the copied waveform record starts; 0 for none
    std::uint32_t extendedCount_ = 0;
};

}  // namespace orvex
