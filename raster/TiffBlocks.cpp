#include "raster/TiffBlocks.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <optional>

#include "support/Format.h"
#include "support/GdalErrorScope.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::int64_t kMostChecked = 16;

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

}  // namespace

std::wstring CheckTiffBlocks(GDALDatasetH dataset, std::uint64_t fileSize) {
    // With bands apart the last band's blocks come last.
    GDALRasterBandH band = GDALGetRasterBand(dataset, GDALGetRasterCount(dataset));
    if (band == nullptr) {
        return {};
    }
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

}  // namespace orvex
