#include "crs/GdalSetup.h"

#include <cpl_conv.h>
#include <gdal.h>

#include <mutex>

#include "orvexcommon/OrvexUtilities.h"
#include "support/Environment.h"
#include "support/Files.h"
#include "support/GdalAccess.h"
#include "support/GdalErrorScope.h"
#include "support/SpatialReference.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr double kCacheFraction = 0.25;

std::string Utf8Of(const std::filesystem::path& path) {
    return ToUtf8(FromPath(path));
}

bool SetUp(const std::filesystem::path& folder) {
    const std::filesystem::path data = folder / "gdal-data";
    const std::filesystem::path plugins = folder / "gdalplugins";
    if (folder.empty() || !FolderExists(FromPath(data)) || !FolderExists(FromPath(plugins)) ||
        KindOf(FromPath(data / "pcs.csv")) == FileKind::Missing) {
        return false;
    }
    const GdalErrorScope errors;
    CPLSetConfigOption("GDAL_DATA", Utf8Of(data).c_str());
    CPLSetConfigOption("GDAL_DRIVER_PATH", Utf8Of(plugins).c_str());
    // The component brings its own, whatever the system has.
    PreferProjData(folder / "proj");
    OrvexUtilities::SetGDALRasterCacheSize(kCacheFraction);
    GDALAllRegister();
    GdalAccess::Install();
    return true;
}

}  // namespace

bool GdalSetup::Run(const std::filesystem::path& folder) {
    if (!attempted_) {
        attempted_ = true;
        succeeded_ = SetUp(folder);
    }
    return succeeded_;
}

bool GdalSetup::Run() {
    // Looking the folder up takes a system call, and this runs for every file.
    return Run(attempted_ ? std::filesystem::path() : DataFolder());
}

bool EnsureGdal() {
    static std::mutex lock;
    static GdalSetup setup;
    const std::lock_guard guard(lock);
    return setup.Run();
}

}  // namespace orvex
