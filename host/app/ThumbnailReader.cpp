#include <gdal_utils.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <string_view>

#include "host/app/HostText.h"
#include "host/app/Thumbnails.h"
#include "host/dem/HostGdal.h"

namespace orvex {

namespace {

using Clock = std::chrono::steady_clock;

/// Up to so many source pixels are averaged; of more, single ones are picked.
constexpr double kMaxAveraged = 24 << 20;
constexpr int kRowsPerPiece = 16;

/// Values of one band of the thumbnail, row by row.
using Samples = std::vector<double>;

/// Which bands of a dataset make the thumbnail, and its size.
struct Source {
    GDALDataset& dataset;
    int width = 0;
    int height = 0;
    std::vector<int> bands;  ///< numbers from 1: one, or red, green and blue
    bool hasPalette = false;
    bool hasAlpha = false;   ///< an alpha band or a mask for the whole dataset
    bool hasNoData = false;  ///< each band marks its own pixels without data
    bool averages = false;

    GDALRasterBand& Band(int number) const { return *dataset.GetRasterBand(number); }
    GDALRasterBand& First() const { return Band(bands.front()); }
};

/// Number of the band with a colour interpretation; 0 for none.
int FindBand(GDALDataset& dataset, GDALColorInterp meaning) {
    for (int number = 1; number <= std::min(dataset.GetRasterCount(), 16); ++number) {
        if (dataset.GetRasterBand(number)->GetColorInterpretation() == meaning) {
            return number;
        }
    }
    return 0;
}

/// Red, green and blue; where the file does not say what its bands are, the first three. Else the first band.
std::vector<int> ColourBands(GDALDataset& dataset) {
    std::vector<int> bands = {FindBand(dataset, GCI_RedBand), FindBand(dataset, GCI_GreenBand),
                              FindBand(dataset, GCI_BlueBand)};
    if (std::ranges::find(bands, 0) == bands.end()) {
        return bands;
    }
    const auto isUndefined = [&dataset](int number) {
        return dataset.GetRasterBand(number)->GetColorInterpretation() == GCI_Undefined;
    };
    const bool hasThree = dataset.GetRasterCount() >= 3 && isUndefined(2) && isUndefined(3);
    return hasThree ? std::vector<int>{1, 2, 3} : std::vector<int>{1};
}

double PixelsOf(GDALRasterBand& band) {
    return static_cast<double>(band.GetXSize()) * band.GetYSize();
}

/// True if reaching a pixel means decoding all before it.
bool IsSequential(GDALDataset& dataset) {
    const std::string_view name = dataset.GetDriver() == nullptr ? "" : dataset.GetDriver()->GetDescription();
    return name == "PNG" || name == "JPEG" || name == "GIF";
}

/// Bytes of the blocks that are decoded to pick the thumbnail's pixels from a band; nullopt when a single
/// block is beyond the limit.
std::optional<double> DecodedBytes(GDALRasterBand& band, const Source& source,
                                   const ThumbnailLimits& limits) {
    int width = 1;
    int height = 1;
    band.GetBlockSize(&width, &height);
    const double sample = std::max(1, GDALGetDataTypeSizeBytes(band.GetRasterDataType()));
    const double block = sample * width * height;
    if (block > limits.blockBytes) {
        return std::nullopt;
    }
    const auto blocks = [](int size, int side, int picked) {
        return std::min((size - 1) / std::max(side, 1) + 1, picked);
    };
    const double touched = static_cast<double>(blocks(band.GetXSize(), width, source.width)) *
                           blocks(band.GetYSize(), height, source.height);
    return IsSequential(source.dataset) ? sample * PixelsOf(band) : touched * block;
}

/// Decides between averaging and picking. False when either is more work than the limits allow.
bool ChooseSampling(Source& source, const ThumbnailLimits& limits) {
    std::vector<GDALRasterBand*> read;
    std::ranges::transform(source.bands, std::back_inserter(read),
                           [&source](int number) { return &source.Band(number); });
    if (source.hasAlpha) {
        read.push_back(source.First().GetMaskBand());
    }
    double bytes = 0;
    double pixels = 0;
    for (GDALRasterBand* band : read) {
        GDALRasterBand* const overview = band->GetRasterSampleOverview(static_cast<GUIntBig>(source.width) *
                                                                       static_cast<GUIntBig>(source.height));
        GDALRasterBand& level = overview == nullptr ? *band : *overview;
        const auto decoded = DecodedBytes(level, source, limits);
        bytes += decoded.value_or(std::numeric_limits<double>::infinity());
        pixels = std::max(pixels, PixelsOf(level));
    }
    source.averages = !source.hasPalette && pixels <= kMaxAveraged;
    return bytes <= limits.decodedBytes;
}

Source SourceOf(GDALDataset& dataset, const ThumbnailLimits& limits) {
    Source source{.dataset = dataset, .bands = ColourBands(dataset)};
    const double longest = std::max(dataset.GetRasterXSize(), dataset.GetRasterYSize());
    const double share = std::min(1.0, limits.longSide / longest);
    source.width = std::max(1, static_cast<int>(std::lround(dataset.GetRasterXSize() * share)));
    source.height = std::max(1, static_cast<int>(std::lround(dataset.GetRasterYSize() * share)));
    source.hasPalette = source.bands.size() == 1 && source.First().GetColorTable() != nullptr;
    const int flags = source.First().GetMaskFlags();
    source.hasAlpha = (flags & GMF_PER_DATASET) != 0 && (flags & GMF_NODATA) == 0;
    source.hasNoData = (flags & GMF_NODATA) != 0;
    return source;
}

/// Reduces bands with gdal_translate and reads them piece by piece, so that it can be stopped.
class PieceReader {
  public:
    enum class End { Finished, Cancelled, Failed, TooSlow };

    PieceReader(const Source& source, const std::function<bool()>& isCancelled,
                std::chrono::milliseconds time)
        : source_(source), isCancelled_(isCancelled), deadline_(Clock::now() + time) {}

    /// `options` of gdal_translate choose the bands. Whatever has been read is appended to `bands`.
    End Read(const std::vector<std::string>& options, std::vector<Samples>& bands) const {
        const GDALDatasetUniquePtr reduced = Reduce(options);
        for (int number = 1; reduced != nullptr && number <= reduced->GetRasterCount(); ++number) {
            const End end = ReadBand(*reduced->GetRasterBand(number), bands.emplace_back());
            if (end != End::Finished) {
                return end;
            }
        }
        return reduced == nullptr ? End::Failed : End::Finished;
    }

  private:
    /// A virtual dataset: the pixels are read, from the overview that fits, when they are asked for.
    GDALDatasetUniquePtr Reduce(const std::vector<std::string>& options) const {
        CPLStringList arguments;
        for (const std::string& argument :
             {std::string("-of"), std::string("VRT"), std::string("-r"),
              std::string(source_.averages ? "average" : "nearest"), std::string("-outsize"),
              std::to_string(source_.width), std::to_string(source_.height)}) {
            arguments.AddString(argument.c_str());
        }
        for (const std::string& option : options) {
            arguments.AddString(option.c_str());
        }
        const std::unique_ptr<GDALTranslateOptions, decltype(&GDALTranslateOptionsFree)> parsed(
            GDALTranslateOptionsNew(arguments.List(), nullptr), &GDALTranslateOptionsFree);
        return GDALDatasetUniquePtr(GDALDataset::FromHandle(
            GDALTranslate("", GDALDataset::ToHandle(&source_.dataset), parsed.get(), nullptr)));
    }

    End ReadBand(GDALRasterBand& band, Samples& samples) const {
        const auto width = static_cast<std::size_t>(source_.width);
        samples.resize(width * static_cast<std::size_t>(source_.height));
        for (int row = 0; row < source_.height; row += kRowsPerPiece) {
            if (isCancelled_()) {
                return End::Cancelled;
            }
            if (Clock::now() > deadline_) {
                return End::TooSlow;
            }
            const int rows = std::min(kRowsPerPiece, source_.height - row);
            double* const target = samples.data() + static_cast<std::size_t>(row) * width;
            if (band.RasterIO(GF_Read, 0, row, source_.width, rows, target, source_.width, rows, GDT_Float64,
                              0, 0, nullptr) != CE_None) {
                return End::Failed;
            }
        }
        return End::Finished;
    }

    const Source& source_;
    const std::function<bool()>& isCancelled_;
    const Clock::time_point deadline_;
};

/// The values that become black and white.
struct Range {
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();

    int Shade(double value) const {
        const double share = high > low ? (value - low) / (high - low) : 0.5;
        return std::isnan(value) ? 0 : static_cast<int>(std::lround(255 * std::clamp(share, 0.0, 1.0)));
    }
};

/// Of bytes all that can be, of other types the lowest and the highest of the values that are there.
Range RangeOf(GDALRasterBand& band, const std::vector<Samples>& bands) {
    Range range;
    if (band.GetRasterDataType() == GDT_Byte) {
        const char* const bits = band.GetMetadataItem("NBITS", "IMAGE_STRUCTURE");
        return {0, static_cast<double>((1 << (bits == nullptr ? 8 : std::clamp(std::atoi(bits), 1, 8))) - 1)};
    }
    for (const Samples& samples : bands) {
        for (const double value : samples) {
            range.low = value < range.low ? value : range.low;  // NaN is neither
            range.high = value > range.high ? value : range.high;
        }
    }
    return range;
}

/// What has been read for a thumbnail.
struct Pieces {
    std::vector<Samples> bands;  ///< of a palette red, green, blue and alpha
    std::vector<Samples> masks;  ///< 0 to 255: one for all bands, or one for each
};

/// The no-data value as the band's pixels hold it; NaN for none. GDAL knows none beyond single precision,
/// where texts of few digits put its limit.
double NoDataOf(GDALRasterBand& band) {
    int isStated = 0;
    const double value = band.GetNoDataValue(&isStated);
    constexpr double kLimit = std::numeric_limits<float>::max();
    if (isStated == 0) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    return band.GetRasterDataType() == GDT_Float32 ? static_cast<float>(std::clamp(value, -kLimit, kLimit))
                                                   : value;
}

/// Replaces values without data by NaN.
void DropMissing(const Source& source, Pieces& pieces) {
    const double noData =
        source.hasPalette ? std::numeric_limits<double>::quiet_NaN() : NoDataOf(source.First());
    for (std::size_t band = 0; band < pieces.bands.size(); ++band) {
        const Samples* const mask =
            source.hasNoData ? &pieces.masks[std::min(band, pieces.masks.size() - 1)] : nullptr;
        for (std::size_t i = 0; i < pieces.bands[band].size(); ++i) {
            double& value = pieces.bands[band][i];
            if (!std::isfinite(value) || value == noData || (mask != nullptr && (*mask)[i] == 0)) {
                value = std::numeric_limits<double>::quiet_NaN();
            }
        }
    }
}

QImage Compose(const Source& source, Pieces& pieces) {
    DropMissing(source, pieces);
    const std::vector<Samples>& bands = pieces.bands;
    const Range range = source.hasPalette ? Range{0, 255} : RangeOf(source.First(), bands);
    QImage image(source.width, source.height, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    for (std::size_t i = 0; i < bands.front().size(); ++i) {
        if (std::ranges::all_of(bands, [i](const Samples& samples) { return std::isnan(samples[i]); })) {
            continue;
        }
        const auto shade = [&](std::size_t part) {
            return range.Shade(bands[bands.size() < 3 ? 0 : part][i]);
        };
        double alpha = bands.size() > 3 ? bands[3][i] : 255;
        alpha *= source.hasAlpha ? pieces.masks.front()[i] / 255 : 1;
        image.setPixel(static_cast<int>(i) % source.width, static_cast<int>(i) / source.width,
                       qRgba(shade(0), shade(1), shade(2), static_cast<int>(std::lround(alpha))));
    }
    // The painter's own format, so that drawing does not convert it each time.
    return image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

PieceReader::End ReadPieces(const Source& source, const PieceReader& reader, Pieces& pieces) {
    std::vector<std::string> bands;
    std::vector<std::string> masks;
    for (const int number : source.bands) {
        bands.insert(bands.end(), {"-b", std::to_string(number)});
        if (source.hasNoData || (source.hasAlpha && masks.empty())) {
            masks.insert(masks.end(), {"-b", "mask," + std::to_string(number)});
        }
    }
    if (source.hasPalette) {
        bands.insert(bands.end(), {"-expand", "rgba"});
    }
    const PieceReader::End end = reader.Read(bands, pieces.bands);
    return end != PieceReader::End::Finished || masks.empty() ? end : reader.Read(masks, pieces.masks);
}

Thumbnail ReadFrom(GDALDataset& dataset, const GdalErrorScope& errors,
                   const std::function<bool()>& isCancelled, const ThumbnailLimits& limits) {
    Source source = SourceOf(dataset, limits);
    if (!ChooseSampling(source, limits)) {
        return {{}, HostText(text::kOutlineNoOverviews)};
    }
    Pieces pieces;
    switch (ReadPieces(source, PieceReader(source, isCancelled, limits.time), pieces)) {
        case PieceReader::End::Finished:
            return {Compose(source, pieces), {}};
        case PieceReader::End::Cancelled:
            return {};
        case PieceReader::End::TooSlow:
            return {{}, HostText(text::kOutlineTooSlow)};
        default:
            return {{}, HostText(text::kOutlineReason, {FailureReason(errors)})};
    }
}

}  // namespace

Thumbnail ReadThumbnail(const std::wstring& path, const std::function<bool()>& isCancelled,
                        const ThumbnailLimits& limits) {
    SetUpGdal();
    const GdalErrorScope errors;
    const NoNetwork noNetwork;
    std::wstring cause;
    const GDALDatasetUniquePtr dataset = OpenRasterFile(path, cause);
    if (dataset == nullptr || dataset->GetRasterCount() < 1) {
        return {{}, HostText(text::kOutlineReason, {cause})};
    }
    return ReadFrom(*dataset, errors, isCancelled, limits);
}

}  // namespace orvex
