#pragma once
// Feature files of a record, on their way into the project.
#include <mutex>
#include <vector>

#include "host/app/RasterJobs.h"
#include "host/vector/VectorConversion.h"

namespace orvex {

/// What became of feature files.
struct FeatureImportResult {
    std::vector<NewFile> files;         ///< shapefiles, in the order of the files they come from
    std::vector<FileFailure> failures;  ///< files that could not be read or converted
    std::vector<FileFailure> warnings;  ///< losses in files that were converted
    std::vector<FileFailure> notes;     ///< changes without a loss
    bool stopped = false;
};

/// Takes shapefiles as they are and converts CAD and KML files to shapefiles, one after the other. What is
/// complete is there for the taking at any time.
class FeatureImport {
  public:
    FeatureImport(std::vector<AssignedFile> files, VectorConversionOptions options);

    /// The range of `progress` is a thousand for each file; its text says which one it is. To be called once;
    /// from any thread.
    void Run(Kst::ProgressIf& progress);
    /// A copy of what there is. From any thread.
    FeatureImportResult Result() const;

  private:
    void ImportOne(const AssignedFile& file, Kst::ProgressIf& progress);
    void Keep(const AssignedFile& from, const VectorConversionResult& converted);

    const std::vector<AssignedFile> files_;
    const VectorConversionOptions options_;
    mutable std::mutex lock_;
    FeatureImportResult result_;
};

}  // namespace orvex
