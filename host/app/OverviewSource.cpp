#include "host/app/OverviewSource.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string_view>

namespace orvex {

namespace {

/// Up to so many source pixels are averaged; of more, single ones are picked.
constexpr std::uint64_t kMostAveraged = 24ULL << 20;

std::uint64_t Product(std::uint64_t a, std::uint64_t b) {
    return a != 0 && b > std::numeric_limits<std::uint64_t>::max() / a
               ? std::numeric_limits<std::uint64_t>::max()
               : a * b;
}

std::uint64_t PixelsOf(GDALRasterBand& band) {
    return Product(static_cast<std::uint64_t>(band.GetXSize()), static_cast<std::uint64_t>(band.GetYSize()));
}

std::uint64_t BytesPerSample(GDALRasterBand& band) {
    return static_cast<std::uint64_t>(std::max(1, GDALGetDataTypeSizeBytes(band.GetRasterDataType())));
}

std::uint64_t BlockBytes(GDALRasterBand& band) {
    int width = 0;
    int height = 0;
    band.GetBlockSize(&width, &height);
    return Product(Product(static_cast<std::uint64_t>(width), static_cast<std::uint64_t>(height)),
                   BytesPerSample(band));
}

/// Whether reaching a pixel means decoding all before it.
bool IsSequential(GDALDataset& dataset) {
    const char* name = dataset.GetDriver() == nullptr ? nullptr : dataset.GetDriver()->GetDescription();
    constexpr std::array<std::string_view, 3> kSequential = {"PNG", "JPEG", "GIF"};
    return name != nullptr && std::ranges::find(kSequential, name) != kSequential.end();
}

/// Bytes that are decoded when single pixels are picked: the blocks that hold them, whole.
std::uint64_t BytesForPicking(GDALRasterBand& band, const OverviewSource& source, bool sequential) {
    int width = 1;
    int height = 1;
    band.GetBlockSize(&width, &height);
    const auto blocks = [](int size, int block, int picked) {
        return static_cast<std::uint64_t>(std::min((size - 1) / std::max(block, 1) + 1, picked));
    };
    const std::uint64_t touched =
        Product(blocks(band.GetXSize(), width, source.width), blocks(band.GetYSize(), height, source.height));
    const std::uint64_t all = Product(PixelsOf(band), BytesPerSample(band));
    return sequential ? all : Product(touched, BlockBytes(band));
}

/// The smallest level that is not coarser than the picture; full resolution when there is none.
int ChooseLevel(GDALRasterBand& band, const OverviewSource& source) {
    int best = -1;
    std::uint64_t bestPixels = PixelsOf(band);
    // A count that a file makes up ends where the first level is missing.
    for (int level = 0; level < std::min(band.GetOverviewCount(), 64); ++level) {
        GDALRasterBand* overview = band.GetOverview(level);
        if (overview == nullptr) {
            break;
        }
        const bool isEnough = overview->GetXSize() >= source.width && overview->GetYSize() >= source.height;
        if (isEnough && PixelsOf(*overview) < bestPixels) {
            best = level;
            bestPixels = PixelsOf(*overview);
        }
    }
    return best;
}

GDALRasterBand* FindBand(GDALDataset& dataset, GDALColorInterp meaning) {
    for (int i = 1; i <= std::min(dataset.GetRasterCount(), 16); ++i) {
        if (dataset.GetRasterBand(i)->GetColorInterpretation() == meaning) {
            return dataset.GetRasterBand(i);
        }
    }
    return nullptr;
}

/// Of a file that does not say what its bands are, the first three make the colours.
std::vector<GDALRasterBand*> ColourBands(GDALDataset& dataset) {
    std::vector<GDALRasterBand*> bands = {FindBand(dataset, GCI_RedBand), FindBand(dataset, GCI_GreenBand),
                                          FindBand(dataset, GCI_BlueBand)};
    if (std::ranges::find(bands, nullptr) == bands.end()) {
        return bands;
    }
    const bool isUnsaid = dataset.GetRasterCount() >= 3 &&
                          dataset.GetRasterBand(2)->GetColorInterpretation() == GCI_Undefined &&
                          dataset.GetRasterBand(3)->GetColorInterpretation() == GCI_Undefined;
    if (!isUnsaid) {
        return {};
    }
    return {dataset.GetRasterBand(1), dataset.GetRasterBand(2), dataset.GetRasterBand(3)};
}

void ChooseBands(GDALDataset& dataset, OverviewSource& source) {
    GDALRasterBand* first = dataset.GetRasterBand(1);
    source.bands = ColourBands(dataset);
    source.colours = OverviewColours::Rgb;
    if (source.bands.empty()) {
        source.bands = {first};
        source.colours = first->GetColorTable() == nullptr ? OverviewColours::Grey : OverviewColours::Palette;
    }
    source.alpha = FindBand(dataset, GCI_AlphaBand);
    if (source.alpha == nullptr && (first->GetMaskFlags() & GMF_PER_DATASET) != 0) {
        source.alpha = first->GetMaskBand();
    }
}

void ChooseSize(GDALDataset& dataset, const OverviewLimits& limits, OverviewSource& source) {
    const double longest = std::max(dataset.GetRasterXSize(), dataset.GetRasterYSize());
    const double share = std::min(1.0, limits.longSide / longest);
    source.width = std::max(1, static_cast<int>(std::lround(dataset.GetRasterXSize() * share)));
    source.height = std::max(1, static_cast<int>(std::lround(dataset.GetRasterYSize() * share)));
}

}  // namespace

GDALRasterBand* OverviewSource::AtLevel(GDALRasterBand* band) const {
    GDALRasterBand* overview = level < 0 ? nullptr : band->GetOverview(level);
    return overview == nullptr ? band : overview;
}

std::optional<OverviewSource> ChooseOverviewSource(GDALDataset& dataset, const OverviewLimits& limits) {
    OverviewSource source;
    ChooseSize(dataset, limits, source);
    ChooseBands(dataset, source);
    source.level = ChooseLevel(*source.bands.front(), source);
    std::vector<GDALRasterBand*> read = source.bands;
    if (source.alpha != nullptr) {
        read.push_back(source.alpha);
    }
    std::uint64_t bytes = 0;
    std::uint64_t pixels = 0;
    for (GDALRasterBand* band : read) {
        GDALRasterBand& reduced = *source.AtLevel(band);
        if (BlockBytes(reduced) > limits.mostBlockBytes) {
            return std::nullopt;
        }
        pixels = std::max(pixels, PixelsOf(reduced));
        const std::uint64_t more = BytesForPicking(reduced, source, IsSequential(dataset));
        bytes = more > limits.mostBytes ? more : bytes + more;
        if (bytes > limits.mostBytes) {
            return std::nullopt;
        }
    }
    source.averages = source.colours != OverviewColours::Palette && pixels <= kMostAveraged;
    return source;
}

}  // namespace orvex
