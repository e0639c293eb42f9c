#include "raster/TiffBlocks.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <optional>
#include <string_view>

#include "support/Format.h"
#include "support/GdalErrorScope.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::int64_t kMostChecked = 16;
constexpr int kMostLevels = 32;

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

std::optional<std::uint64_t> Ask(GDALRasterBandH band, const char* item, std::int64_t column,
                                 std::int64_t row) {
    const char* text = GDALGetMetadataItem(band, fmt::format("{}_{}_{}", item, column, row).c_str(), "TIFF");
    std::uint64_t number = 0;
    if (text == nullptr || std::from_chars(text, text + std::strlen(text), number).ec != std::errc()) {
        return std::nullopt;
    }
    return number;
}

/// What is wrong with one block; empty for a sparse one, which has no bytes.
std::wstring CheckBlock(GDALRasterBandH band, std::int64_t column, std::int64_t row, std::uint64_t fileSize) {
    const GdalErrorScope errors;
    const auto offset = Ask(band, "BLOCK_OFFSET", column, row);
    const auto size = Ask(band, "BLOCK_SIZE", column, row);
    if (!errors.Messages().empty()) {
        return Text(41212_lsid);
    }
    if (!offset || !size || (*offset <= fileSize && *size <= fileSize - *offset)) {
        return {};
    }
    const std::uint64_t end = *size > UINT64_MAX - *offset ? UINT64_MAX : *offset + *size;
    return FormatText(Text(41211_lsid), {end, fileSize});
}

/// Whether a reduced-resolution level lies in the file itself and not in one beside it.
bool IsInside(GDALRasterBandH level) {
    GDALDatasetH dataset = level == nullptr ? nullptr : GDALGetBandDataset(level);
    return dataset != nullptr && !std::string_view(GDALGetDescription(dataset)).ends_with(".ovr");
}

std::wstring CheckBlocks(GDALRasterBandH band, std::uint64_t fileSize) {
    const BlockGrid grid = GridOf(band);
    const std::int64_t count = grid.columns * grid.rows;
    const std::int64_t checked = std::min(count, kMostChecked);
    // From the end, where a file is cut off.
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
    // With bands apart the last band's blocks come last.
    GDALRasterBandH band = GDALGetRasterBand(dataset, GDALGetRasterCount(dataset));
    if (band == nullptr) {
        return {};
    }
    std::wstring fault = CheckBlocks(band, fileSize);
    const int levels = std::min(GDALGetOverviewCount(band), kMostLevels);
    for (int i = 0; fault.empty() && i < levels; ++i) {
        GDALRasterBandH level = GDALGetOverview(band, i);
        if (IsInside(level)) {
            fault = CheckBlocks(level, fileSize);
        }
    }
    return fault;
}

}  // namespace orvex
