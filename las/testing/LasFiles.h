#pragma once
// LAS files on the disk, for tests and fuzzers.
#include <memory>
#include <string>
#include <vector>

#include "las/LasRow.h"
#include "las/testing/LasBuilder.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex::testing {

/// A temporary folder for built files.
class LasFolder : public TemporaryFolder {
  public:
    std::wstring Write(const LasBuilder& builder, const std::wstring& name = L"a.las") const;
    /// Writes and opens a file without its points.
    std::unique_ptr<LASFile> Open(const LasBuilder& builder, bool readOnly = true) const;
    using TemporaryFolder::Write;
};

/// Text of the failure to open a file; empty if it opens.
std::wstring FailureToOpen(const std::wstring& path, bool readOnly = true);

/// A file in memory that gives up to `most` bytes in all, and then `error`.
class MemorySource final : public ByteSource {
  public:
    explicit MemorySource(std::string bytes, std::uint64_t most = ~std::uint64_t{0},
                          SystemError error = kNoMoreReads)
        : bytes_(std::move(bytes)), left_(most), error_(error) {}

    SystemError Size(std::uint64_t& size) const override;
    SystemError ReadAt(std::uint64_t offset, std::span<std::byte> buffer, std::size_t& read) const override;

  private:
    std::string bytes_;
    mutable std::uint64_t left_;
    SystemError error_;
};

/// All that the page shows of a file: its findings, its cells and its CRS. Without `withDisk`, all but what
/// is not known of a file elsewhere: the time of its last change.
std::wstring RowText(const std::wstring& path);
std::wstring RowText(const LasRow& row, bool withDisk = true);

/// Opens a file with its points and reads all there is to it, in one text: records, findings, attributes, its
/// row and its last point. Gives the text of the failure for a file that cannot be opened; other exceptions
/// pass.
std::wstring ReadAllOfLas(const std::wstring& path, bool readOnly);

/// A LAS 1.4 file with a record of every kind.
LasBuilder RichLas();

/// Variants of RichLas with counts, sizes and offsets that the file does not bear out.
std::vector<LasBuilder> LyingLasFiles();

}  // namespace orvex::testing
