#pragma once
#include <gdal_priv.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "support/Text.h"

namespace orvex {

/// A part of a raster, in pixels.
struct RasterWindow {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    bool endsBlocks = false;  ///< no later window reads the blocks that this one lies in

    std::uint64_t Pixels() const {
        return static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
    }
};

/// The parts in which a raster is read: each pixel once, every block as a whole where it fits into a window,
/// and never more than `mostPixels` in one, whatever size the file gives its blocks.
class RasterWindows {
  public:
    struct Size {
        int width = 0;
        int height = 0;
    };

    RasterWindows(Size raster, Size block, int mostPixels);

    /// The next part; none behind the last one.
    std::optional<RasterWindow> Next();

  private:
    Size raster_;
    Size group_;  ///< whole blocks that are read one after the other
    Size part_;   ///< what is read at once of a group
    int groupX_ = 0;
    int groupY_ = 0;
    int x_ = 0;  ///< in the group
    int y_ = 0;
};

/// The first band of a raster file as heights. Opened for reading; nothing is ever written beside the file.
/// Everything throws LDataError with the cause in plain words. One object belongs to one thread.
class DemRaster {
  public:
    explicit DemRaster(const std::wstring& path);

    const std::wstring& Path() const { return path_; }
    RasterWindows::Size Size() const;
    /// Begins a reading of the whole; the parts to read it in, of at most so many pixels each.
    RasterWindows StartReading(int mostPixels);

    /// X = t[0] + column * t[1] + row * t[2], Y = t[3] + column * t[4] + row * t[5], from the outer corner of
    /// the first pixel; nowhere beyond 1e30, and no two pixels share a place.
    const std::array<double, 6>& Transform() const { return transform_; }
    /// Null when the file carries none.
    const OGRSpatialReference* Crs() const { return crs_; }
    /// The unit of the heights as the file names it; empty when it does not.
    std::string UnitName() const { return band_->GetUnitType(); }
    /// From now on heights come multiplied with a factor as well.
    void MultiplyHeights(double factor);

    /// True when heights are not whole numbers only.
    bool HasFractions() const;
    /// True when the file cannot mark a pixel as holding no height.
    bool IsComplete() const;

    /// The heights of a part row by row, NaN where there is none. False when the file holds no block of it;
    /// `heights` is as it was then.
    bool Read(const RasterWindow& window, std::vector<double>& heights);
    /// Pixels of this reading that hold a number which no height can be, and are not marked as holding none.
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
