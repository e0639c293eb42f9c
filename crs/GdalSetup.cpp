#include "crs/GdalSetup.h"

#include <cpl_conv.h>
#include <gdal.h>

#include <mutex>

#include "orvexcommon/OrvexUtilities.h"
#include "support/Files.h"
#include "support/GdalErrorScope.h"
#include "support/ModuleFolder.h"
#include "support/ProjData.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::int32_t kReady = 0;
constexpr auto kFailed = static_cast<std::int32_t>(0x80004005U);
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
    // A moved folder brings its own, whatever the system has.
    PreferProjData(folder / "proj");
    OrvexUtilities::SetGDALRasterCacheSize(kCacheFraction);
    GDALAllRegister();
    return true;
}

}  // namespace

std::int32_t GdalSetup::Run(const std::filesystem::path& folder) {
    if (!attempted_) {
        attempted_ = true;
        succeeded_ = SetUp(folder);
    }
    return succeeded_ ? kReady : kFailed;
}

std::int32_t GdalSetup::Run() {
    // Looked up once: this is asked for every file.
    return Run(attempted_ ? std::filesystem::path() : ModuleFolder());
}

std::int32_t EnsureGdal() {
    static std::mutex lock;
    static GdalSetup setup;
    const std::lock_guard guard(lock);
    return setup.Run();
}

}  // namespace orvex
