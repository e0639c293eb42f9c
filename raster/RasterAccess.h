#pragma once
#include <cstdint>
#include <memory>
#include <string>

namespace orvex {

/// What one raster may cost while it is described. GDAL sees its files through these limits.
struct RasterLimits {
    std::uint64_t read = std::uint64_t{32} << 20U;    ///< bytes read of the file and its sidecars together
    std::uint64_t sidecar = std::uint64_t{8} << 20U;  ///< bytes read of one sidecar
    std::uint64_t decoder = std::uint64_t{64}
                            << 20U;  ///< bytes that a decoder takes before it has read a pixel
};

/// GDAL's view of the files while one raster is described: a virtual file system that shows the raster and
/// the files beside it, and nothing but regular files. Servers, databases and pipes have no name in it,
/// nothing in it can be written, and overviews and masks in files of their own (.ovr, .msk), which GDAL would
/// open with any driver, are not there. Reading ends where a limit is reached.
///
/// For the thread that makes it, until it is destroyed. May be nested: the innermost is in force.
class RasterAccess {
  public:
    /// `path`: absolute. Throws std::bad_alloc when GDAL cannot take another file system.
    explicit RasterAccess(const std::wstring& path, const RasterLimits& limits = {});
    ~RasterAccess();
    RasterAccess(const RasterAccess&) = delete;
    RasterAccess& operator=(const RasterAccess&) = delete;

    /// The raster's name for GDALOpenEx.
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
