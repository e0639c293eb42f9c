#include "dialog/details/FileDetails.h"

#include "support/Format.h"

namespace orvex {
namespace {

std::wstring Count(std::size_t number) {
    return number == 0 ? std::wstring() : GroupedNumber(number);
}

}  // namespace

void Unite(DetailExtent& extent, const DetailExtent& other) {
    if (!other.has_value() || !std::ranges::all_of(*other, [](double edge) { return std::isfinite(edge); })) {
        return;
    }
    if (!extent.has_value()) {
        extent = other;
        return;
    }
    for (std::size_t edge = 0; edge < 2; ++edge) {
        (*extent)[edge] = std::min((*extent)[edge], (*other)[edge]);
        (*extent)[edge + 2] = std::max((*extent)[edge + 2], (*other)[edge + 2]);
    }
}

DetailSection TotalsSection(const FileTotals& totals, std::vector<DetailField> own) {
    DetailSection section{text::kTotalsSelection, {}};
    auto& fields = section.fields;
    AddField(fields, text::kTotalsFiles, GroupedNumber(totals.files));
    AddField(fields, text::kSizeMegabytes, FormatText(L"%'.2f", {static_cast<double>(totals.bytes) * 1e-6}));
    std::ranges::move(own, std::back_inserter(fields));
    AddField(fields, text::kTotalsFilesWithFindings, Count(totals.withFindings));
    AddField(fields, text::kTotalsUnloadableFiles, Count(totals.notLoadable));
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
