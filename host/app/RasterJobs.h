#pragma once
// Long work on the files of a record. Each run reports progress and collects failures: one file does
// not keep the others from being done.
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "host/app/Project.h"
#include "host/dem/DemConversion.h"
#include "support/ProgressIf.h"
#include "support/Text.h"
#include "support/UserPrompts.h"

namespace orvex {

/// Why something could not be done with a file.
struct FileFailure {
    std::wstring path;
    std::wstring cause;  ///< plain words
};

/// A section for each cause: the number and the names of its files.
std::vector<ReportPrompt::Section> SectionsOf(const std::vector<FileFailure>& failures);
/// One section for all files, each with its cause.
ReportPrompt::Section SectionOf(StringId heading, const std::vector<FileFailure>& failures);

/// Files that are to be looked at on the disk before they are added.
struct FilesToCheck {
    std::vector<std::wstring> read;     ///< that are to be readable
    std::vector<std::wstring> write;    ///< that are to be writable
    std::vector<std::wstring> refused;  ///< rasters that could not be described
};

struct CheckedFiles {
    std::set<std::wstring> unreadable;
    bool canWriteAll = true;
    std::map<std::wstring, std::wstring> reasonOfRefused;
};

/// Looks at files. What has not been looked at when it is stopped counts as readable and writable. From any
/// thread.
CheckedFiles CheckFiles(const FilesToCheck& files, Kst::ProgressIf& progress);

/// What became of rasters that were to get overviews.
struct OverviewResult {
    std::size_t built = 0;
    std::size_t notNeeded = 0;  ///< have overviews already, or are small
    std::vector<FileFailure> failures;
    bool stopped = false;  ///< what was complete by then stays
};

/// Rasters up to so many pixels on their longer side get no overviews.
inline constexpr int kSmallRaster = 1024;

/// Builds overviews for rasters that have none, as "<name>.ovr" beside each: the rasters themselves are only
/// read, and no file is replaced. The range of `progress` is a thousand for each raster; its text is the
/// raster's name. Never throws, except for want of memory. From any thread.
OverviewResult BuildOverviews(const std::vector<std::wstring>& paths, Kst::ProgressIf& progress);

/// What became of elevation rasters.
struct DemImportResult {
    std::vector<NewFile> files;         ///< the LAS files that are complete, in the order of the rasters
    std::vector<FileFailure> failures;  ///< rasters that could not be converted
    std::vector<FileFailure> warnings;  ///< what is to be known of LAS files that are complete
    bool stopped = false;
};

/// Converts elevation rasters to LAS files, one after the other. What is complete is there for the taking at
/// any time, also while the rest is still being converted.
class DemImport {
  public:
    /// `dems` are rasters with the layers of their LAS files; `readOnly` is how these are to be opened.
    DemImport(std::vector<AssignedFile> dems, DemConversionOptions options, bool readOnly);

    /// The range of `progress` is a thousand for each raster; its text says which one it is. To be called
    /// once; from any thread.
    void Run(Kst::ProgressIf& progress);
    /// A copy of what there is. From any thread.
    DemImportResult Result() const;

  private:
    void ConvertOne(const AssignedFile& dem, Kst::ProgressIf& progress);
    void Keep(const AssignedFile& dem, const DemConversionResult& converted);

    const std::vector<AssignedFile> dems_;
    const DemConversionOptions options_;
    const bool readOnly_;
    mutable std::mutex lock_;
    DemImportResult result_;
};

}  // namespace orvex
