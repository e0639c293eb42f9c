#include "raster/TiffStructure.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

#include "raster/GdalMetadata.h"
#include "raster/TiffTags.h"
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
    constexpr std::uint16_t kPhotometric = 262;
    TiffTags tiff(path);
    const std::optional<TiffTag> tag = tiff.Find(kPhotometric);
    return tag && tag->type == TiffTag::kShort ? std::optional(static_cast<int>(tiff.Number(tag->valueAt, 2)))
                                               : std::nullopt;
}

}  // namespace orvex
