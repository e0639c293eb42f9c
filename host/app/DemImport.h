#pragma once
#include <mutex>
#include <string>
#include <vector>

#include "host/app/FailureText.h"
#include "host/app/Project.h"
#include "host/dem/DemConversion.h"
#include "support/ProgressIf.h"

namespace orvex {

/// An elevation raster that is to become a LAS file of a layer.
struct DemToImport {
    std::wstring path;
    std::wstring layer;
};

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
    /// `readOnly` is how the LAS files are to be opened.
    DemImport(std::vector<DemToImport> dems, DemConversionOptions options, bool readOnly);

    /// The range of `progress` is a thousand for each raster; its text says which one it is. A failure does
    /// not keep the others from being converted. To be called once; from any thread.
    void Run(Kst::ProgressIf& progress);
    /// A copy of what there is. From any thread.
    DemImportResult Result() const;

  private:
    void ConvertOne(const DemToImport& dem, Kst::ProgressIf& progress);
    void Keep(const DemToImport& dem, const DemConversionResult& converted);

    const std::vector<DemToImport> dems_;
    const DemConversionOptions options_;
    const bool readOnly_;
    mutable std::mutex lock_;
    DemImportResult result_;
};

}  // namespace orvex
