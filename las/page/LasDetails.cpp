#include "las/page/LasDetails.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "las/LasCells.h"
#include "las/LasText.h"
#include "support/Format.h"

namespace orvex {

namespace {

struct SectionColumns {
    StringId title;
    std::vector<LasColumn> columns;
};

const std::vector<SectionColumns>& Sections() {
    static const std::vector<SectionColumns> sections{
        {text::kDetailsFile,
         {LasColumn::Size, LasColumn::Modified, LasColumn::Version, LasColumn::Compressed,
          LasColumn::Companion, LasColumn::Layer}},
        {text::kDetailsPoints,
         {LasColumn::Points, LasColumn::PointFormat, LasColumn::Attributes, LasColumn::RecordLength,
          LasColumn::ExtraBytes, LasColumn::GpsTime, LasColumn::PointsByReturn, LasColumn::Density,
          LasColumn::Spacing}},
        {text::kDetailsOrigin,
         {LasColumn::SystemId, LasColumn::Software, LasColumn::Created, LasColumn::SourceId,
          LasColumn::ProjectId, LasColumn::GlobalEncoding, LasColumn::Waveform, LasColumn::HeaderSize,
          LasColumn::OffsetToPoints, LasColumn::VlrCount, LasColumn::EvlrCount}},
    };
    return sections;
}

/// Grows a box by a file's; a box that is not finite, or inverted, says nothing.
void Unite(std::optional<std::array<double, 6>>& box, const LASFile& file) {
    const auto minimum = file.Minimum();
    const auto maximum = file.Maximum();
    for (std::size_t axis = 0; axis < 3; ++axis) {
        if (!std::isfinite(minimum[axis]) || !std::isfinite(maximum[axis]) || minimum[axis] > maximum[axis]) {
            return;
        }
    }
    if (!box.has_value()) {
        box = {minimum[0], minimum[1], minimum[2], maximum[0], maximum[1], maximum[2]};
        return;
    }
    for (std::size_t axis = 0; axis < 3; ++axis) {
        (*box)[axis] = std::min((*box)[axis], minimum[axis]);
        (*box)[axis + 3] = std::max((*box)[axis + 3], maximum[axis]);
    }
}

std::wstring RecordsBlock(StringId title, const std::wstring& text) {
    const std::wstring heading = Text(title);
    const std::wstring shown = text.empty() ? Text(text::kDetailsNoRecords) : text;
    const bool isEnded = shown.ends_with(L'\n');
    return heading + L"\n" + std::wstring(heading.size(), L'=') + L"\n" + shown + (isEnded ? L"" : L"\n");
}

std::wstring Joined(const LasRow& row, LasColumn first, const wchar_t* separator,
                    std::initializer_list<int> steps) {
    std::wstring text;
    for (const int step : steps) {
        const std::wstring cell = LasCellText(row, static_cast<LasColumn>(IndexOf(first) + step));
        text += (text.empty() ? L"" : separator) + (cell.empty() ? L"?" : cell);
    }
    return text;
}

// Offsets of many digits stand below each other; in one line they would push the next section out of sight.
std::wstring Triple(const LasRow& row, LasColumn x) {
    constexpr std::size_t kLongLine = 30;
    std::wstring line = Joined(row, x, L" / ", {0, 1, 2});
    return line.size() <= kLongLine ? line : Joined(row, x, L"\n", {0, 1, 2});
}

DetailSection ExtentSection(const LasRow& row) {
    constexpr int kToMaximum = IndexOf(LasColumn::MaximumX) - IndexOf(LasColumn::MinimumX);
    constexpr const wchar_t* kTo = L" \u2013 ";
    DetailSection section{text::kDetailsExtent, {}};
    AddField(section.fields, text::kExtentX, Joined(row, LasColumn::MinimumX, kTo, {0, kToMaximum}));
    AddField(section.fields, text::kExtentY, Joined(row, LasColumn::MinimumY, kTo, {0, kToMaximum}));
    AddField(section.fields, text::kExtentZ, Joined(row, LasColumn::MinimumZ, kTo, {0, kToMaximum}));
    AddField(section.fields, text::kLasDetailsScale, Triple(row, LasColumn::ScaleX));
    AddField(section.fields, text::kLasDetailsOffset, Triple(row, LasColumn::OffsetX));
    AddField(section.fields, text::kUnits, LasCellText(row, LasColumn::Units));
    return section;
}

}  // namespace

std::vector<DetailSection> LasOverview(const LasRow& row) {
    std::vector<DetailSection> sections;
    for (const SectionColumns& section : Sections()) {
        DetailSection shown{section.title, {}};
        for (const LasColumn column : section.columns) {
            std::wstring value = LasCellText(row, column);
            if (column == LasColumn::Layer && row.layerExists) {
                value += L" " + Text(text::kLayerExistsSuffix);
            }
            AddField(shown.fields, LasColumns()[static_cast<std::size_t>(column)].caption, std::move(value));
        }
        if (!shown.fields.empty()) {
            sections.push_back(std::move(shown));
        }
    }
    if (row.inspection.file != nullptr) {
        sections.insert(
            sections.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(2, sections.size())),
            ExtentSection(row));
    }
    return sections;
}

std::vector<DetailField> LasCrsFields(const LasRow& row) {
    const CrsDescription& crs = *row.inspection.crs;
    std::vector<DetailField> fields;
    if (crs.sourceWkt.empty()) {
        return fields;
    }
    AddField(fields, text::kDetailsCrsName, crs.name);
    AddField(fields, text::kLasEpsg, LasCellText(row, LasColumn::Epsg));
    AddField(fields, text::kDetailsCrsKind,
             Text(crs.isGeographic ? text::kCrsGeographic : text::kCrsProjectedOrLocal));
    AddField(fields, text::kDetailsLinearUnit, crs.linearUnits);
    AddField(fields, text::kDetailsAngularUnit, crs.angularUnits);
    AddField(fields, text::kVerticalCrs, crs.verticalName);
    AddField(fields, text::kLasCrsSource, LasCellText(row, LasColumn::CrsSource));
    return fields;
}

std::wstring LasRecordsText(const LasRow& row) {
    if (row.inspection.file == nullptr) {
        return Text(text::kDetailsFileUnreadable);
    }
    const LASFile& file = *row.inspection.file;
    std::wstring text;
    if (const std::wstring time = LasGpsTimeText(file); !time.empty()) {
        text = Text(text::kLasGpsTime) + L": " + time + L"\n\n";
    }
    text += RecordsBlock(text::kDetailsVlrs, LasVlrText(file)) + L"\n";
    return text + RecordsBlock(text::kDetailsEvlrs, LasEvlrText(file));
}

LasTotals TotalsOf(std::span<const LasRow> rows, std::span<const std::size_t> records) {
    LasTotals totals;
    std::set<std::wstring> layers;
    std::set<std::wstring> crsNames;
    for (const std::size_t record : records) {
        const LasInspection& inspection = rows[record].inspection;
        ++totals.files;
        totals.bytes += inspection.fileSize;
        totals.withFindings += LoadFlagOf(rows[record]) == LoadFlag::Findings ? 1 : 0;
        if (inspection.file == nullptr) {
            ++totals.notReadable;
            continue;
        }
        totals.points += inspection.file->GetPointCount();
        layers.insert(rows[record].layer);
        if (crsNames.insert(inspection.crs->name).second) {
            totals.crsNames.push_back(inspection.crs->name);
        }
        totals.isGeographic = inspection.crs->isGeographic;
        Unite(totals.extent, *inspection.file);
    }
    totals.layers = layers.size();
    if (totals.crsNames.size() != 1) {
        totals.extent.reset();
    }
    return totals;
}

DetailSection TotalsSection(const LasTotals& totals) {
    const auto count = [](std::size_t number) { return number == 0 ? L"" : std::to_wstring(number); };
    DetailSection section{text::kTotalsSelection, {}};
    auto& fields = section.fields;
    AddField(fields, text::kTotalsFiles, std::to_wstring(totals.files));
    AddField(fields, text::kLasSizeMegabytes,
             FormatText(L"%.2f", {static_cast<double>(totals.bytes) * 1e-6}));
    AddField(fields, text::kLasPoints, std::to_wstring(totals.points));
    AddField(fields, text::kTotalsLayers, std::to_wstring(totals.layers));
    AddField(fields, text::kTotalsFilesWithFindings, count(totals.withFindings));
    AddField(fields, text::kTotalsUnreadableFiles, count(totals.notReadable));
    for (const std::wstring& name : totals.crsNames) {
        AddField(fields, text::kTotalsCrs, name.empty() ? Text(text::kCellNone) : name);
    }
    if (totals.extent.has_value()) {
        constexpr std::array kCaptions{text::kLasMinX, text::kLasMinY, text::kLasMinZ,
                                       text::kLasMaxX, text::kLasMaxY, text::kLasMaxZ};
        for (std::size_t i = 0; i < kCaptions.size(); ++i) {
            const bool degrees = totals.isGeographic && i % 3 != 2;
            AddField(fields, kCaptions[i], FormatText(degrees ? L"%.8lf" : L"%.3f", {(*totals.extent)[i]}));
        }
    }
    return section;
}

}  // namespace orvex
