#pragma once
// LAS files on the disk, for tests and fuzzers.
#include <memory>
#include <string>
#include <vector>

#include "las/LASFile.h"
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

/// All that the page shows of a file: its findings, its cells and its CRS.
std::wstring RowText(const std::wstring& path);

/// Opens a file with its points and reads all there is to it, in one text: records, findings, attributes, its
/// row and its last point. Gives the text of the failure for a file that cannot be opened; other exceptions
/// pass.
std::wstring ReadAllOfLas(const std::wstring& path, bool readOnly);

/// A LAS 1.4 file with a record of every kind.
LasBuilder RichLas();

/// Variants of RichLas with counts, sizes and offsets that the file does not bear out.
std::vector<LasBuilder> LyingLasFiles();

}  // namespace orvex::testing
