#pragma once
#include <filesystem>

namespace orvex {

/// Sets GDAL up from the component's folder: the first call does the work, later calls return its outcome.
class GdalSetup {
  public:
    /// False when "gdal-data", "gdal-data/pcs.csv" or "gdalplugins" is missing in `folder`; GDAL is then left
    /// as it is.
    bool Run(const std::filesystem::path& folder);
    /// Run with the folder that the component lies in.
    bool Run();

  private:
    bool attempted_ = false;
    bool succeeded_ = false;
};

/// Runs the setup that the whole process shares. False when GDAL's data is missing. Safe from any thread.
bool EnsureGdal();

}  // namespace orvex
