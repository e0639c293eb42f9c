#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

namespace orvex {

/// What one file may cost while it is inspected.
struct InspectionLimits {
    std::uint64_t read = std::uint64_t{32} << 20U;     ///< bytes read of the file and its sidecars together
    std::uint64_t sidecar = std::uint64_t{8} << 20U;   ///< bytes read of one sidecar
    std::uint64_t decoder = std::uint64_t{64} << 20U;  ///< bytes that a decoder takes before the first pixel
};

/// Follows what GDAL reads of the file itself.
struct ReadWatch {
    /// Is shown the bytes before GDAL sees them; the same ones come again when they are read again. Returns
    /// why reading has to end before them, as a sentence; empty to go on.
    std::function<std::wstring(std::uint64_t offset, std::span<const std::byte> bytes)> look;
    /// Read behind the last byte, for a driver that would wait for an end of line.
    std::string tail{};
};

/// GDAL's view of the files while one of them is inspected: a virtual file system that shows the file and
/// those beside it, and nothing but regular files. Servers, databases and pipes have no name in it, nothing
/// in it can be written, and overviews and masks in files of their own (.ovr, .msk), which GDAL would open
/// with any driver, are not there. Reading ends where a limit is reached.
///
/// For the thread that makes it, until it is destroyed. May be nested: the innermost is in force.
class GdalAccess {
  public:
    /// Adds the view to GDAL's file systems. GDAL takes no lock then: call it before other threads use GDAL.
    static void Install();

    /// `path`: absolute. A watch stands in for the checks of what rasters contain.
    explicit GdalAccess(const std::wstring& path, const InspectionLimits& limits = {}, ReadWatch watch = {});
    ~GdalAccess();
    GdalAccess(const GdalAccess&) = delete;
    GdalAccess& operator=(const GdalAccess&) = delete;

    /// The file's name for GDALOpenEx.
    const std::string& Name() const { return name_; }
    /// Path of a name in the view; any other text as it is.
    static std::string PathOf(std::string text);

    /// Why reading was ended, as a sentence; empty if it was not.
    std::wstring Refusal() const;

    struct State;

  private:
    const std::unique_ptr<State> state_;
    const std::string name_;
    State* const outer_;
};

}  // namespace orvex
