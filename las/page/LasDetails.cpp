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
        {40636_lsid,
         {LasColumn::Size, LasColumn::Modified, LasColumn::Version, LasColumn::Compressed,
          LasColumn::Companion, LasColumn::Layer}},
        {40637_lsid,
         {LasColumn::Points, LasColumn::PointFormat, LasColumn::Attributes, LasColumn::RecordLength,
          LasColumn::ExtraBytes, LasColumn::GpsTime, LasColumn::PointsByReturn, LasColumn::Density,
          LasColumn::Spacing}},
        {40639_lsid,
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
    const std::wstring shown = text.empty() ? Text(40651_lsid) : text;
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
    DetailSection section{40638_lsid, {}};
    AddField(section.fields, 40660_lsid, Joined(row, LasColumn::MinimumX, kTo, {0, kToMaximum}));
    AddField(section.fields, 40661_lsid, Joined(row, LasColumn::MinimumY, kTo, {0, kToMaximum}));
    AddField(section.fields, 40662_lsid, Joined(row, LasColumn::MinimumZ, kTo, {0, kToMaximum}));
    AddField(section.fields, 40663_lsid, Triple(row, LasColumn::ScaleX));
    AddField(section.fields, 40664_lsid, Triple(row, LasColumn::OffsetX));
    AddField(section.fields, 40559_lsid, LasCellText(row, LasColumn::Units));
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
                value += L" " + Text(40658_lsid);
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
    AddField(fields, 40642_lsid, crs.name);
    AddField(fields, 40555_lsid, LasCellText(row, LasColumn::Epsg));
    AddField(fields, 40643_lsid, Text(crs.isGeographic ? 40644_lsid : 40645_lsid));
    AddField(fields, 40646_lsid, crs.linearUnits);
    AddField(fields, 40647_lsid, crs.angularUnits);
    AddField(fields, 40558_lsid, crs.verticalName);
    AddField(fields, 40577_lsid, LasCellText(row, LasColumn::CrsSource));
    return fields;
}

std::wstring LasRecordsText(const LasRow& row) {
    if (row.inspection.file == nullptr) {
        return Text(40659_lsid);
    }
    const LASFile& file = *row.inspection.file;
    std::wstring text;
    if (const std::wstring time = LasGpsTimeText(file); !time.empty()) {
        text = Text(40580_lsid) + L": " + time + L"\n\n";
    }
    text += RecordsBlock(40649_lsid, LasVlrText(file)) + L"\n";
    return text + RecordsBlock(40650_lsid, LasEvlrText(file));
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
    DetailSection section{40665_lsid, {}};
    auto& fields = section.fields;
    AddField(fields, 40652_lsid, std::to_wstring(totals.files));
    AddField(fields, 40552_lsid, FormatText(L"%.2f", {static_cast<double>(totals.bytes) * 1e-6}));
    AddField(fields, 40582_lsid, std::to_wstring(totals.points));
    AddField(fields, 40653_lsid, std::to_wstring(totals.layers));
    AddField(fields, 40655_lsid, count(totals.withFindings));
    AddField(fields, 40656_lsid, count(totals.notReadable));
    for (const std::wstring& name : totals.crsNames) {
        AddField(fields, 40654_lsid, name.empty() ? Text(40612_lsid) : name);
    }
    if (totals.extent.has_value()) {
        constexpr std::array kCaptions{40588_lsid, 40589_lsid, 40590_lsid,
                                       40591_lsid, 40592_lsid, 40593_lsid};
        for (std::size_t i = 0; i < kCaptions.size(); ++i) {
            const bool degrees = totals.isGeographic && i % 3 != 2;
            AddField(fields, kCaptions[i], FormatText(degrees ? L"%.8lf" : L"%.3f", {(*totals.extent)[i]}));
        }
    }
    return section;
}

}  // namespace orvex
