#pragma once
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "las/LasRow.h"
#include "support/ProgressIf.h"

namespace orvex {

/// Why one file could not be brought into the requested mode.
struct LasFileFailure {
    std::wstring path;
    std::wstring cause;
};

/// The files of all rows, opened as requested but not yet put into the rows.
struct LasReopened {
    /// One per row; null where the row's file is right as it is, or has none.
    std::vector<std::unique_ptr<LASFile>> files;
    std::vector<LasFileFailure> failures;  ///< every file that could not be opened, in row order
    bool stopped = false;                  ///< the user stopped a decompression

    bool Succeeded() const { return failures.empty() && !stopped; }
};

/// Opens the file of each row in the mode wanted. A LAZ file is read as it is; for writing it is decompressed
/// beside itself first, unless its LAS file is there and not older. Rows stay as they are; what is listed in
/// `failures` left nothing behind.
LasReopened ReopenFiles(std::span<const LasRow> rows, bool readWrite, Kst::ProgressIf& progress);

}  // namespace orvex
