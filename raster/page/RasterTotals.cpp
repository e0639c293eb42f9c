#include "raster/page/RasterTotals.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "support/Format.h"

namespace orvex {

namespace {

/// Grows a box by another; one that is not finite says nothing.
void Unite(std::optional<std::array<double, 4>>& box, const std::optional<std::array<double, 4>>& other) {
    if (!other.has_value() || !std::ranges::all_of(*other, [](double edge) { return std::isfinite(edge); })) {
        return;
    }
    if (!box.has_value()) {
        box = other;
        return;
    }
    for (std::size_t edge = 0; edge < 2; ++edge) {
        (*box)[edge] = std::min((*box)[edge], (*other)[edge]);
        (*box)[edge + 2] = std::max((*box)[edge + 2], (*other)[edge + 2]);
    }
}

std::wstring Megabytes(std::uint64_t bytes) {
    return FormatText(L"%.2f", {static_cast<double>(bytes) * 1e-6});
}

std::wstring Count(std::size_t number) {
    return number == 0 ? std::wstring() : std::to_wstring(number);
}

}  // namespace

RasterTotals RasterTotalsOf(std::span<const RasterRow> rows, std::span<const std::size_t> records) {
    RasterTotals totals;
    std::set<std::wstring> layers;
    std::set<std::wstring> crsNames;
    for (const std::size_t record : records) {
        const RasterRow& row = rows[record];
        const RasterInspection& file = row.File();
        ++totals.files;
        totals.bytes += file.fileSize;
        totals.totalBytes += std::max(file.fileSize, file.properties.totalBytes);
        totals.withFindings += LoadFlagOf(row) == LoadFlag::Findings ? 1 : 0;
        if (!row.IsDescribed()) {
            ++totals.notReadable;
            continue;
        }
        totals.pixels += static_cast<double>(file.properties.width) * file.properties.height;
        layers.insert(row.place.layer);
        if (crsNames.insert(file.crs->name).second) {
            totals.crsNames.push_back(file.crs->name);
        }
        totals.isGeographic = file.crs->isGeographic;
        Unite(totals.extent, file.properties.extent);
    }
    totals.layers = layers.size();
    if (totals.crsNames.size() != 1) {
        totals.extent.reset();
    }
    return totals;
}

DetailSection RasterTotalsSection(const RasterTotals& totals) {
    DetailSection section{text::kTotalsSelection, {}};
    auto& fields = section.fields;
    AddField(fields, text::kTotalsFiles, std::to_wstring(totals.files));
    AddField(fields, text::kSizeMegabytes, Megabytes(totals.bytes));
    if (totals.totalBytes > totals.bytes) {
        AddField(fields, text::kRasterTotalSizeMegabytes, Megabytes(totals.totalBytes));
    }
    AddField(fields, text::kRasterMegapixels, FormatText(L"%.3f", {totals.pixels * 1e-6}));
    AddField(fields, text::kTotalsLayers, Count(totals.layers));
    AddField(fields, text::kTotalsFilesWithFindings, Count(totals.withFindings));
    AddField(fields, text::kTotalsUnreadableFiles, Count(totals.notReadable));
    for (const std::wstring& name : totals.crsNames) {
        AddField(fields, text::kTotalsCrs, name.empty() ? Text(text::kCellNone) : name);
    }
    if (totals.extent.has_value()) {
        constexpr std::array kCaptions{text::kMinX, text::kMinY, text::kMaxX, text::kMaxY};
        for (std::size_t edge = 0; edge < kCaptions.size(); ++edge) {
            AddField(fields, kCaptions[edge],
                     FormatText(totals.isGeographic ? L"%.8lf" : L"%.3f", {(*totals.extent)[edge]}));
        }
    }
    return section;
}

}  // namespace orvex
