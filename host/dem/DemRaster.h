#pragma once
#include <gdal_priv.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "support/Text.h"

namespace orvex {

/// Window of a raster in pixels.
struct RasterWindow {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    bool endsBlocks = false;  ///< last window in its blocks

    std::uint64_t Pixels() const {
        return static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
    }
};

/// Windows in which a raster is read: each pixel once, whole blocks where they fit, and never more than
/// `mostPixels` per window, whatever the file's block size.
class RasterWindows {
  public:
    struct Size {
        int width = 0;
        int height = 0;
    };

    RasterWindows(Size raster, Size block, int mostPixels);

    /// Next window; nullopt after the last one.
    std::optional<RasterWindow> Next();

  private:
    Size raster_;
    Size group_;  ///< whole blocks that are read in a row
    Size part_;   ///< of a window in a group
    int groupX_ = 0;
    int groupY_ = 0;
    int x_ = 0;  ///< in the group
    int y_ = 0;
};

/// First band of a raster file as heights. Opened read-only; nothing is written beside the file. Members
/// throw LDataError with the cause in plain words. Not thread-safe.
class DemRaster {
  public:
    explicit DemRaster(const std::wstring& path);

    const std::wstring& Path() const { return path_; }
    RasterWindows::Size Size() const;
    /// Starts a pass over the whole raster; returns its windows of at most `mostPixels` pixels.
    RasterWindows StartReading(int mostPixels);

    /// X = t[0] + column * t[1] + row * t[2], Y = t[3] + column * t[4] + row * t[5], from the outer corner of
    /// the first pixel. All coordinates are below 1e30, and no two pixels coincide.
    const std::array<double, 6>& Transform() const { return transform_; }
    /// Null if the file has none.
    const OGRSpatialReference* Crs() const { return crs_; }
    /// Unit of the heights as named in the file; empty if none.
    std::string UnitName() const { return band_->GetUnitType(); }
    /// Multiplies all heights read from now on.
    void MultiplyHeights(double factor);

    /// True if heights may have fractions.
    bool HasFractions() const;
    /// True if the file has no means to mark a pixel as no data.
    bool IsComplete() const;

    /// Reads the heights of a window row by row, NaN for none. False if the file holds none of its blocks;
    /// `heights` is unchanged then.
    bool Read(const RasterWindow& window, std::vector<double>& heights);
    /// Pixels of this pass whose value cannot be a height although they are not marked as no data.
    std::uint64_t ImpossibleHeights() const { return impossible_; }

  private:
    void RequireSmallBlocks() const;
    void FindPlace();
    void FindNoData();
    int Coverage(const RasterWindow& window) const;
    void DropAbsent(const RasterWindow& window, std::vector<double>& heights) const;
    void DropNoData(std::vector<double>& heights) const;
    void DropImpossible(std::vector<double>& heights);
    void DropMasked(const RasterWindow& window, std::vector<double>& heights);
    void Scale(std::vector<double>& heights) const;
    [[noreturn]] void Fail(StringId text, const std::wstring& cause) const;

    std::wstring path_;
    GDALDatasetUniquePtr dataset_;
    GDALRasterBand* band_ = nullptr;
    std::array<double, 6> transform_{};
    const OGRSpatialReference* crs_ = nullptr;
    std::optional<double> noData_;
    bool hasMask_ = false;
    double factor_ = 1;  ///< height = stored number * factor + term
    double term_ = 0;
    std::vector<std::uint8_t> mask_;
    std::uint64_t impossible_ = 0;
};

}  // namespace orvex
