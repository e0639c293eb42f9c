#include "raster/TiffStructure.h"

#include <fmt/format.h>

#include <algorithm>
#include <fstream>
#include <limits>
#include <string_view>

#include "raster/GdalMetadata.h"
#include "support/Format.h"
#include "support/GdalErrorScope.h"

namespace orvex {
namespace {

constexpr std::int64_t kMostBlocksChecked = 16;
constexpr int kMostOverviews = 32;

struct BlockGrid {
    std::int64_t columns;
    std::int64_t rows;
};

BlockGrid GridOf(GDALRasterBandH band) {
    int width = 0;
    int height = 0;
    GDALGetBlockSize(band, &width, &height);
    const auto count = [](std::int64_t pixels, std::int64_t block) {
        return block > 0 ? (pixels + block - 1) / block : 0;
    };
    return {count(GDALGetRasterBandXSize(band), width), count(GDALGetRasterBandYSize(band), height)};
}

std::optional<std::uint64_t> BlockItem(GDALRasterBandH band, const char* item, std::int64_t column,
                                       std::int64_t row) {
    return MetadataNumber<std::uint64_t>(band, fmt::format("{}_{}_{}", item, column, row).c_str(), "TIFF");
}

/// Fault of one block as a text; empty if none, and for a sparse block, which has no bytes.
std::wstring CheckBlock(GDALRasterBandH band, std::int64_t column, std::int64_t row, std::uint64_t fileSize) {
    const GdalErrorScope errors;
    const auto offset = BlockItem(band, "BLOCK_OFFSET", column, row);
    const auto size = BlockItem(band, "BLOCK_SIZE", column, row);
    if (!errors.Messages().empty()) {
        return Text(text::kRasterBlockTableUnreadable);
    }
    if (!offset || !size || (*offset <= fileSize && *size <= fileSize - *offset)) {
        return {};
    }
    const std::uint64_t end = *size > UINT64_MAX - *offset ? UINT64_MAX : *offset + *size;
    return FormatText(Text(text::kRasterTruncatedAt), {end, fileSize});
}

/// True for an overview inside the file, false for one in a sidecar.
bool IsInside(GDALRasterBandH overview) {
    GDALDatasetH dataset = overview == nullptr ? nullptr : GDALGetBandDataset(overview);
    return dataset != nullptr && !std::string_view(GDALGetDescription(dataset)).ends_with(".ovr");
}

std::wstring CheckBlocks(GDALRasterBandH band, std::uint64_t fileSize) {
    const BlockGrid grid = GridOf(band);
    const std::int64_t count = grid.columns * grid.rows;
    const std::int64_t checked = std::min(count, kMostBlocksChecked);
    // From the end, where truncation shows first.
    for (std::int64_t i = checked - 1; i >= 0; --i) {
        const std::int64_t block = checked == 1 ? 0 : (count - 1) / (checked - 1) * i;
        const std::int64_t index = i == checked - 1 ? count - 1 : block;
        std::wstring fault = CheckBlock(band, index % grid.columns, index / grid.columns, fileSize);
        if (!fault.empty()) {
            return fault;
        }
    }
    return {};
}

constexpr unsigned kPhotometric = 262;
constexpr unsigned kShort = 3;  ///< the tag's type
constexpr int kClassic = 42;
constexpr int kBig = 43;
/// Tags are in ascending order, so that this one is among the first.
constexpr std::uint64_t kMostTags = 256;

/// Reads numbers of a TIFF in its byte order; 0 beyond its end.
class Tiff {
  public:
    explicit Tiff(const std::wstring& path) : file_(ToPath(path), std::ios::binary) {
        const std::uint64_t order = Number(0, 2);
        isBigEndian_ = order == 0x4D4D;
        isTiff_ = isBigEndian_ || order == 0x4949;
    }

    bool IsTiff() const { return isTiff_; }

    std::uint64_t Number(std::uint64_t at, unsigned size) {
        unsigned char bytes[8] = {};
        if (at > static_cast<std::uint64_t>(std::numeric_limits<std::streamoff>::max())) {
            return 0;
        }
        file_.clear();
        file_.seekg(static_cast<std::streamoff>(at));
        file_.read(reinterpret_cast<char*>(bytes), size);
        if (file_.gcount() != static_cast<std::streamsize>(size)) {
            return 0;
        }
        std::uint64_t number = 0;
        for (unsigned i = 0; i < size; ++i) {
            number = number << 8U | bytes[isBigEndian_ ? i : size - 1 - i];
        }
        return number;
    }

  private:
    std::ifstream file_;
    bool isBigEndian_ = false;
    bool isTiff_ = false;
};

/// Layout of a directory in bytes.
struct Layout {
    std::uint64_t directoryAt;
    unsigned offsetSize;
    unsigned countSize;
    unsigned tagSize;
    unsigned valueIn;  ///< offset within the tag
};
constexpr Layout kClassicLayout{4, 4, 2, 12, 8};
constexpr Layout kBigLayout{8, 8, 8, 20, 12};

}  // namespace

std::wstring CheckTiffBlocks(GDALDatasetH dataset, std::uint64_t fileSize) {
    // In a file that stores its bands one after the other, the blocks of the last one come last.
    GDALRasterBandH band = GDALGetRasterBand(dataset, GDALGetRasterCount(dataset));
    if (band == nullptr) {
        return {};
    }
    std::wstring fault = CheckBlocks(band, fileSize);
    const int overviews = std::min(GDALGetOverviewCount(band), kMostOverviews);
    for (int i = 0; fault.empty() && i < overviews; ++i) {
        GDALRasterBandH overview = GDALGetOverview(band, i);
        if (IsInside(overview)) {
            fault = CheckBlocks(overview, fileSize);
        }
    }
    return fault;
}

std::optional<int> ReadTiffPhotometric(const std::wstring& path) {
    Tiff tiff(path);
    const auto version = static_cast<int>(tiff.Number(2, 2));
    if (!tiff.IsTiff() || (version != kClassic && version != kBig)) {
        return std::nullopt;
    }
    const Layout& layout = version == kBig ? kBigLayout : kClassicLayout;
    const std::uint64_t directory = tiff.Number(layout.directoryAt, layout.offsetSize);
    const std::uint64_t tags = std::min(tiff.Number(directory, layout.countSize), kMostTags);
    if (directory > std::numeric_limits<std::uint64_t>::max() / 2) {
        return std::nullopt;
    }
    for (std::uint64_t i = 0; i < tags; ++i) {
        const std::uint64_t tag = directory + layout.countSize + i * layout.tagSize;
        if (tiff.Number(tag, 2) == kPhotometric) {
            const bool isShort = tiff.Number(tag + 2, 2) == kShort;
            return isShort ? std::optional(static_cast<int>(tiff.Number(tag + layout.valueIn, 2)))
                           : std::nullopt;
        }
    }
    return std::nullopt;
}

}  // namespace orvex
