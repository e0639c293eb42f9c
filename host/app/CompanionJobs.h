#pragma once
// The QVR companions of a record's LAS files.
#include <string>
#include <vector>

#include "host/app/RasterJobs.h"
#include "orvexcommon/LasCompanion.h"

namespace orvex {

/// LAS files that are to get companions, by what is there already, with the reason. Files with fresh ones are
/// in no list.
struct CompanionCheck {
    std::vector<std::wstring> missing;
    std::vector<FileFailure> stale;
    std::vector<FileFailure> unreadable;
    std::vector<FileFailure> ofOthers;  ///< good companions of other files, which are not to be replaced
    bool stopped = false;               ///< by the user; the lists lack the rest
};

/// A companion to be built.
struct CompanionJob {
    std::wstring path;              ///< of the LAS file
    bool replacesExisting = false;  ///< the user has agreed
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
/// its text tells the file and the space that its companion takes. `replaceExisting` of the options is not
/// used; companions that are those of other files by then are never replaced. Never throws, except for want
/// of memory. From any thread.
CompanionResult BuildCompanions(const std::vector<CompanionJob>& jobs, LasCompanionOptions options,
                                Kst::ProgressIf& progress);

}  // namespace orvex
