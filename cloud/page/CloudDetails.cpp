#include "cloud/page/CloudDetails.h"

#include <algorithm>
#include <array>
#include <utility>

#include "cloud/CloudColumns.h"
#include "cloud/RemoteLas.h"
#include "dialog/details/FileDetails.h"
#include "las/page/LasDetails.h"
#include "support/Format.h"

namespace orvex {
namespace {

std::wstring Kilobytes(std::uint64_t bytes) {
    return GroupedNumber((bytes + 500) / 1000);
}

std::wstring ReceivedText(const RemoteLas& remote) {
    const std::uint64_t size = remote.row.fileSize;
    if (size == 0) {
        return FormatText(Text(text::kCloudReceivedKilobytes), {Kilobytes(remote.transferred)});
    }
    const std::wstring megabytes = FormatText(L"%'.2f", {static_cast<double>(size) * 1e-6});
    return FormatText(Text(text::kCloudReceivedOf), {Kilobytes(remote.transferred), megabytes});
}

DetailSection LayerSection(const CloudRow& row) {
    DetailSection section{text::kCloudLayerSection, {}};
    auto& fields = section.fields;
    AddCells(fields, CloudColumns(), row,
             {"source", "size", "storedSize", "points", "crs", "modified", "expires"});
    if (row.remote != nullptr) {
        AddField(fields, text::kCloudReceived, ReceivedText(*row.remote));
    }
    return section;
}

/// Those that the file itself does not state.
std::vector<Finding> FindingsOfLink(const CloudRow& row) {
    std::vector<Finding> findings = row.findings;
    if (row.remote != nullptr) {
        constexpr std::array kOfLink{cloud_finding::kExpired.code, cloud_finding::kExpiresSoon.code,
                                     cloud_finding::kDuplicateName.code, cloud_finding::kNoName.code,
                                     cloud_finding::kNoUrl.code};
        std::erase_if(findings, [&](const Finding& finding) {
            return std::ranges::none_of(kOfLink, [&](std::string_view code) { return code == finding.code; });
        });
    }
    return findings;
}

DetailsContent LayerContent(const CloudRow& row, const QString& captionColour) {
    DetailsContent content;
    if (row.remote != nullptr) {
        constexpr std::size_t kOnly = 0;
        content = LasDetailsContent({&row.remote->row, 1}, {&kOnly, 1}, captionColour);
    } else {
        content.tabs = {TextHtml(Text(text::kCloudLookHint))};
    }
    const std::vector<Finding> findings = FindingsOfLink(row);
    const DetailSection section = LayerSection(row);
    QString& overview = content.tabs.front();
    overview = (findings.empty() ? QString() : FindingsHtml(findings, {}, {})) +
               (row.remote == nullptr ? SectionsHtml({&section, 1}, captionColour) + overview
                                      : overview + SectionsHtml({&section, 1}, captionColour));
    content.title = row.name + L" (" + row.path + L")";
    return content;
}

DetailSection Totals(std::span<const CloudRow> rows, std::span<const std::size_t> records) {
    double size = 0;
    std::size_t withFindings = 0;
    std::size_t inspected = 0;
    std::uint64_t received = 0;
    for (const std::size_t record : records) {
        const CloudRow& row = rows[record];
        size += row.sizeGib.value_or(0);
        withFindings += row.findings.empty() ? 0 : 1;
        inspected += row.remote == nullptr ? 0 : 1;
        received += row.remote == nullptr ? 0 : row.remote->transferred;
    }
    const auto count = [](std::size_t number) { return number == 0 ? L"" : GroupedNumber(number); };
    DetailSection section{text::kTotalsSelection, {}};
    auto& fields = section.fields;
    AddField(fields, text::kTotalsLayers, GroupedNumber(records.size()));
    AddField(fields, text::kCloudSizeGibibytes, FormatText(L"%'.3f", {size}));
    AddField(fields, text::kCloudLayersWithFindings, count(withFindings));
    AddField(fields, text::kCloudInspectedLayers, count(inspected));
    if (inspected > 0) {
        AddField(fields, text::kCloudReceived,
                 FormatText(Text(text::kCloudReceivedKilobytes), {Kilobytes(received)}));
    }
    return section;
}

}  // namespace

DetailsContent CloudDetailsContent(std::span<const CloudRow> rows, std::span<const std::size_t> records,
                                   const QString& captionColour) {
    if (records.size() == 1) {
        return LayerContent(rows[records.front()], captionColour);
    }
    const DetailSection section = Totals(rows, records);
    return {FormatText(Text(text::kCloudLayersSelected), {records.size()}),
            {SectionsHtml({&section, 1}, captionColour)}};
}

}  // namespace orvex
