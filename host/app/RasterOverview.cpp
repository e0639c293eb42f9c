#include "host/app/RasterOverview.h"

#include <gdal_priv.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>

#include "crs/GdalRaii.h"
#include "crs/GdalSetup.h"
#include "host/app/OverviewSource.h"
#include "raster/RasterBands.h"
#include "raster/RasterFindings.h"
#include "raster/RasterReader.h"
#include "support/Format.h"
#include "support/GdalErrorScope.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kRowsPerPiece = 16;

/// Values of one band, row by row; NaN where there is no data.
using Samples = std::vector<double>;

enum class ReadEnd { Finished, Cancelled, Failed, TooSlow };

/// Reads bands piece by piece, so that it can be stopped.
class PieceReader {
  public:
    PieceReader(const OverviewSource& source, const std::function<bool()>& isCancelled, std::int64_t mostMs)
        : source_(source),
          isCancelled_(isCancelled),
          end_(Clock::now() + std::chrono::milliseconds(mostMs)) {}

    ReadEnd Read(GDALRasterBand& band, Samples& samples) const {
        samples.resize(static_cast<std::size_t>(source_.width) * static_cast<std::size_t>(source_.height));
        for (int row = 0; row < source_.height; row += kRowsPerPiece) {
            if (isCancelled_()) {
                return ReadEnd::Cancelled;
            }
            if (Clock::now() > end_) {
                return ReadEnd::TooSlow;
            }
            if (!ReadPiece(band, row, std::min(kRowsPerPiece, source_.height - row), samples)) {
                return ReadEnd::Failed;
            }
        }
        return ReadEnd::Finished;
    }

  private:
    bool ReadPiece(GDALRasterBand& band, int row, int rows, Samples& samples) const {
        const double scale = static_cast<double>(band.GetYSize()) / source_.height;
        GDALRasterIOExtraArg exact;
        INIT_RASTERIO_EXTRA_ARG(exact);
        exact.bFloatingPointWindowValidity = TRUE;
        exact.dfXOff = 0;
        exact.dfXSize = band.GetXSize();
        exact.dfYOff = row * scale;
        exact.dfYSize = rows * scale;
        exact.eResampleAlg = source_.averages ? GRIORA_Average : GRIORA_NearestNeighbour;
        const int top = std::min(static_cast<int>(exact.dfYOff), band.GetYSize() - 1);
        const int bottom =
            std::clamp(static_cast<int>(std::ceil(exact.dfYOff + exact.dfYSize)), top + 1, band.GetYSize());
        exact.dfYSize = std::min(exact.dfYSize, band.GetYSize() - exact.dfYOff);
        double* target =
            samples.data() + static_cast<std::size_t>(row) * static_cast<std::size_t>(source_.width);
        return band.RasterIO(GF_Read, 0, top, band.GetXSize(), bottom - top, target, source_.width, rows,
                             GDT_Float64, 0, 0, &exact) == CE_None;
    }

    const OverviewSource& source_;
    const std::function<bool()>& isCancelled_;
    const Clock::time_point end_;
};

void DropNodata(GDALRasterBand& band, Samples& samples) {
    const std::optional<double> nodata = BandNodataAsStored(&band);
    for (double& value : samples) {
        if (value == nodata || !std::isfinite(value)) {
            value = std::numeric_limits<double>::quiet_NaN();
        }
    }
}

struct Range {
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();

    void Take(const Samples& samples) {
        for (const double value : samples) {
            low = value < low ? value : low;  // NaN is neither
            high = value > high ? value : high;
        }
    }
    std::uint8_t Shade(double value) const {
        const double share = high > low ? (value - low) / (high - low) : 0.5;
        return static_cast<std::uint8_t>(std::lround(255 * std::clamp(share, 0.0, 1.0)));
    }
};

/// The values that become black and white: of bytes those that can be, of anything else those that are there.
Range RangeOf(const OverviewSource& source, const std::vector<Samples>& bands) {
    GDALRasterBand& first = *source.bands.front();
    Range range;
    if (first.GetRasterDataType() == GDT_Byte) {
        return {0, static_cast<double>((1 << std::clamp(BandBits(&first), 1, 8)) - 1)};
    }
    for (const Samples& samples : bands) {
        range.Take(samples);
    }
    return range;
}

void PutColour(const GDALColorTable& table, double value, std::uint8_t* pixel) {
    const GDALColorEntry* entry = value >= 0 && value < table.GetColorEntryCount()
                                      ? table.GetColorEntry(static_cast<int>(value))
                                      : nullptr;
    const auto byte = [](short part) { return static_cast<std::uint8_t>(std::clamp<short>(part, 0, 255)); };
    if (entry == nullptr) {
        pixel[3] = 0;
        return;
    }
    pixel[0] = byte(entry->c1);
    pixel[1] = byte(entry->c2);
    pixel[2] = byte(entry->c3);
    pixel[3] = byte(entry->c4);
}

void Paint(const OverviewSource& source, const std::vector<Samples>& bands, RasterOverview& picture) {
    const Range range = RangeOf(source, bands);
    const GDALColorTable* table =
        source.colours == OverviewColours::Palette ? source.bands.front()->GetColorTable() : nullptr;
    for (std::size_t i = 0; i < bands.front().size(); ++i) {
        std::uint8_t* pixel = picture.rgba.data() + 4 * i;
        const auto isMissing = [i](const Samples& samples) { return std::isnan(samples[i]); };
        if (std::ranges::all_of(bands, isMissing)) {
            continue;
        }
        if (table != nullptr) {
            PutColour(*table, bands.front()[i], pixel);
            continue;
        }
        for (std::size_t part = 0; part < 3; ++part) {
            const double value = bands[bands.size() == 3 ? part : 0][i];
            pixel[part] = std::isnan(value) ? 0 : range.Shade(value);
        }
        pixel[3] = 255;
    }
}

/// Alpha bands reach up to the greatest value of their type; masks are bytes.
void PutAlpha(GDALRasterBand& band, const Samples& alpha, RasterOverview& picture) {
    const double full = band.GetRasterDataType() == GDT_UInt16 ? 65535 : 255;
    for (std::size_t i = 0; i < alpha.size(); ++i) {
        const double share = std::isfinite(alpha[i]) ? std::clamp(alpha[i] / full, 0.0, 1.0) : 0;
        std::uint8_t& shown = picture.rgba[4 * i + 3];
        shown = static_cast<std::uint8_t>(std::lround(shown * share));
    }
}

ReadEnd ReadPicture(const OverviewSource& source, const PieceReader& reader, RasterOverview& picture) {
    std::vector<Samples> bands(source.bands.size());
    for (std::size_t i = 0; i < bands.size(); ++i) {
        const ReadEnd end = reader.Read(*source.AtLevel(source.bands[i]), bands[i]);
        if (end != ReadEnd::Finished) {
            return end;
        }
        DropNodata(*source.bands[i], bands[i]);
    }
    Samples alpha;
    if (source.alpha != nullptr) {
        const ReadEnd end = reader.Read(*source.AtLevel(source.alpha), alpha);
        if (end != ReadEnd::Finished) {
            return end;
        }
    }
    picture.width = source.width;
    picture.height = source.height;
    picture.rgba.resize(4 * bands.front().size());
    Paint(source, bands, picture);
    if (source.alpha != nullptr) {
        PutAlpha(*source.alpha, alpha, picture);
    }
    return ReadEnd::Finished;
}

RasterOverview Without(std::wstring problem) {
    RasterOverview none;
    none.problem = std::move(problem);
    return none;
}

/// What GDAL said, in plain words.
RasterOverview Failed(const GdalErrorScope& errors) {
    return Without(FormatText(Text(41421_lsid), {PlainReason(errors.Messages())}));
}

RasterOverview ReadFrom(GDALDataset& dataset, const GdalErrorScope& errors,
                        const std::function<bool()>& isCancelled, const OverviewLimits& limits) {
    const std::optional<OverviewSource> source = ChooseOverviewSource(dataset, limits);
    if (!source) {
        return Without(Text(41420_lsid));
    }
    RasterOverview picture;
    switch (ReadPicture(*source, PieceReader(*source, isCancelled, limits.mostMs), picture)) {
        case ReadEnd::Finished:
            return picture;
        case ReadEnd::Cancelled:
            return {};
        case ReadEnd::TooSlow:
            return Without(Text(41422_lsid));
        default:
            return Failed(errors);
    }
}

}  // namespace

RasterOverview ReadRasterOverview(const std::wstring& path, const std::function<bool()>& isCancelled,
                                  const OverviewLimits& limits) {
    EnsureGdal();
    const GdalErrorScope errors;
    const NoNetwork noNetwork;
    try {
        const GdalDataset dataset = OpenRaster(path, errors);
        if (GDALGetRasterCount(dataset.get()) < 1) {
            return Failed(errors);
        }
        return ReadFrom(*GDALDataset::FromHandle(dataset.get()), errors, isCancelled, limits);
    } catch (const LDataError& error) {
        return Without(FormatText(Text(41421_lsid), {error.Text()}));
    }
}

}  // namespace orvex
