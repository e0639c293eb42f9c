#pragma once
#include <cstdint>
#include <filesystem>

namespace orvex {

/// One class's set-up of GDAL from the folder that the component lies in: the first call does the work, later
/// calls only report its outcome.
class GdalSetup {
  public:
    /// 0 when GDAL is ready, 0x80004005 (as a negative number) when "gdal-data", "gdalplugins" or "pcs.csv"
    /// is missing below `folder`; GDAL is not touched then.
    std::int32_t Run(const std::filesystem::path& folder);
    /// Run with the component's own folder.
    std::int32_t Run();

  private:
    bool attempted_ = false;
    bool succeeded_ = false;
};

/// The set-up that the LAS inspection and the command line share. Safe from any thread.
std::int32_t EnsureGdal();

}  // namespace orvex
