#pragma once
// The QVR companions of a record's LAS files.
#include <string>
#include <vector>

#include "host/app/RasterJobs.h"
#include "orvexcommon/LasCompanion.h"

namespace orvex {

/// LAS files that are to get companions, by what is there already. Files with fresh ones are in neither list.
struct CompanionCheck {
    std::vector<std::wstring> missing;
    std::vector<FileFailure> unfit;  ///< companions that differ or cannot be read, with the reason
    bool stopped = false;            ///< by the user; the lists lack the rest
};

/// What became of LAS files that were to get companions.
struct CompanionResult {
    std::size_t built = 0;
    std::vector<FileFailure> failures;
    bool stopped = false;  ///< companions complete by then stay
};

/// Looks at the companions of files; stops when it is cancelled. From any thread.
CompanionCheck CheckCompanions(const std::vector<std::wstring>& paths, Kst::ProgressIf& progress);

/// Builds the companions of files, one after the other. The range of `progress` is a thousand for each file;
/// its text tells the file and the space that its companion takes. Never throws, except for want of memory.
/// From any thread.
CompanionResult BuildCompanions(const std::vector<std::wstring>& paths, const LasCompanionOptions& options,
                                Kst::ProgressIf& progress);

}  // namespace orvex
