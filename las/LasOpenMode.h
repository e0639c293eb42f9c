#pragma once
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "las/LasRow.h"
#include "support/ProgressIf.h"

namespace orvex {

/// Reason why one file could not be opened in the requested mode.
struct LasFileFailure {
    std::wstring path;
    std::wstring cause;
};

/// Files of all rows, opened as requested but not yet put into the rows.
struct LasReopened {
    /// One per row; null if the row's file can stay as it is, or the row has none.
    std::vector<std::unique_ptr<LASFile>> files;
    std::vector<LasFileFailure> failures;  ///< in row order
    bool stopped = false;                  ///< the user stopped a decompression

    bool Succeeded() const { return failures.empty() && !stopped; }
};

/// Opens the file of each row read-only or read-write. A LAZ file is read as it is; for writing it is first
/// decompressed into the same folder, unless its LAS file is there and not older. The rows do not change;
/// failed files leave nothing behind.
LasReopened ReopenFiles(std::span<const LasRow> rows, bool readWrite, Kst::ProgressIf& progress);

}  // namespace orvex
