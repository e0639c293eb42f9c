#include "las/page/LasDetails.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <set>
#include <string_view>

#include "dialog/details/DetailSection.h"
#include "dialog/details/DetailsHtml.h"
#include "las/LasColumns.h"
#include "las/LasText.h"
#include "support/Format.h"
#include "support/QtText.h"

namespace orvex {

namespace {

std::wstring LasCellText(const LasRow& row, const char* column) {
    return CellText(ColumnNamed(LasColumns(), column), row);
}

struct SectionColumns {
    StringId title;
    std::vector<const char*> columns;
};

const std::vector<SectionColumns>& Sections() {
    static const std::vector<SectionColumns> sections{
        {text::kDetailsFile, {"size", "modified", "version", "compressed", "companion", "layer"}},
        {text::kDetailsPoints,
         {"points", "pointFormat", "attributes", "recordLength", "extraBytes", "gpsTime", "pointsByReturn",
          "density", "spacing"}},
        {text::kDetailsOrigin,
         {"systemId", "software", "created", "sourceId", "projectId", "globalEncoding", "waveform",
          "headerSize", "offsetToPoints", "vlrCount", "evlrCount"}},
    };
    return sections;
}

/// Sums over several rows.
struct LasTotals {
    std::size_t files = 0;
    std::size_t notReadable = 0;
    std::size_t withFindings = 0;
    std::uint64_t bytes = 0;
    std::uint64_t points = 0;
    std::size_t layers = 0;
    std::vector<std::wstring> crsNames;  ///< of each group, in order of the rows; "" for files without a CRS
    bool isGeographic = false;
    /// Minimum X, Y, Z and maximum X, Y, Z over all files; none when their CRS differ or no extent is finite.
    std::optional<std::array<double, 6>> extent;
};

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

std::wstring Joined(const LasRow& row, const wchar_t* separator, std::initializer_list<const char*> columns) {
    std::wstring text;
    for (const char* column : columns) {
        const std::wstring cell = LasCellText(row, column);
        text += (text.empty() ? L"" : separator) + (cell.empty() ? L"?" : cell);
    }
    return text;
}

// Offsets of many digits stand below each other; in one line they would push the next section out of sight.
std::wstring Triple(const LasRow& row, const char* x, const char* y, const char* z) {
    constexpr std::size_t kLongLine = 30;
    std::wstring line = Joined(row, L" / ", {x, y, z});
    return line.size() <= kLongLine ? line : Joined(row, L"\n", {x, y, z});
}

DetailSection ExtentSection(const LasRow& row) {
    constexpr const wchar_t* kTo = L" \u2013 ";
    DetailSection section{text::kDetailsExtent, {}};
    AddField(section.fields, text::kExtentX, Joined(row, kTo, {"minimumX", "maximumX"}));
    AddField(section.fields, text::kExtentY, Joined(row, kTo, {"minimumY", "maximumY"}));
    AddField(section.fields, text::kExtentZ, Joined(row, kTo, {"minimumZ", "maximumZ"}));
    AddField(section.fields, text::kLasDetailsScale, Triple(row, "scaleX", "scaleY", "scaleZ"));
    AddField(section.fields, text::kLasDetailsOffset, Triple(row, "offsetX", "offsetY", "offsetZ"));
    AddField(section.fields, text::kUnits, LasCellText(row, "units"));
    return section;
}

/// What the pane has room for beyond the text of a cell.
std::wstring WithMore(const LasRow& row, std::string_view column, std::wstring value) {
    if (column == "layer" && row.place.exists) {
        value += L" " + Text(text::kLayerExistsSuffix);
    } else if (column == "extraBytes" && row.file != nullptr) {
        value = LasExtraBytesText(*row.file);
    } else if (column == "pointsByReturn" && row.file != nullptr) {
        value = LasPointsByReturnText(*row.file, L"%'u");
    } else if (column == "offsetToPoints" && row.file != nullptr) {
        value = GroupedNumber(row.file->Header().OffsetToPoints());
    } else if (column == "globalEncoding" && row.file != nullptr) {
        const std::wstring flags = LasEncodingText(*row.file);
        value += flags.empty() ? L"" : L" (" + flags + L")";
    }
    return value;
}

/// True if the file has a count for older programs beside that of LAS 1.4.
bool HasLegacyCount(const LasRow& row) {
    return row.file != nullptr && row.file->GetVersionCode() == las::kLas14 &&
           row.file->Header().LegacyPointCount() != 0;
}

std::vector<DetailSection> LasOverview(const LasRow& row) {
    std::vector<DetailSection> sections;
    for (const SectionColumns& section : Sections()) {
        DetailSection shown{section.title, {}};
        for (const char* name : section.columns) {
            const Column<LasRow>& column = ColumnNamed(LasColumns(), name);
            std::wstring value = LooseCellText(column, row);
            AddField(shown.fields, column.caption, WithMore(row, name, std::move(value)));
            if (name == std::string_view("points") && HasLegacyCount(row)) {
                AddField(shown.fields, text::kLasLegacyPoints,
                         GroupedNumber(row.file->Header().LegacyPointCount()));
            }
        }
        if (!shown.fields.empty()) {
            sections.push_back(std::move(shown));
        }
    }
    if (row.file != nullptr) {
        sections.insert(
            sections.begin() + static_cast<std::ptrdiff_t>(std::min<std::size_t>(2, sections.size())),
            ExtentSection(row));
    }
    return sections;
}

std::vector<DetailField> LasCrsFields(const LasRow& row) {
    const CrsDescription& crs = *row.crs;
    std::vector<DetailField> fields;
    AddField(fields, text::kDetailsCrsName, crs.name);
    AddField(fields, text::kLasEpsg, LasCellText(row, "epsg"));
    AddField(fields, text::kDetailsCrsKind,
             Text(crs.isGeographic ? text::kCrsGeographic : text::kCrsProjectedOrLocal));
    AddField(fields, text::kDetailsLinearUnit, crs.linearUnits);
    AddField(fields, text::kDetailsAngularUnit, crs.angularUnits);
    AddField(fields, text::kVerticalCrs,
             crs.verticalEpsg == 0 ? crs.verticalName
                                   : FormatText(L"%s (EPSG:%d)", {crs.verticalName, crs.verticalEpsg}));
    AddField(fields, text::kDetailsVerticalUnit, crs.verticalUnits);
    AddField(fields, text::kLasCrsSource, LasCellText(row, "crsSource"));
    return fields;
}

std::wstring LasRecordsText(const LasRow& row) {
    if (row.file == nullptr) {
        return Text(text::kDetailsFileUnreadable);
    }
    const LASFile& file = *row.file;
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
    std::set<std::string> groups;  // different CRSs may have one name
    for (const std::size_t record : records) {
        const LasRow& row = rows[record];
        ++totals.files;
        totals.bytes += row.fileSize;
        totals.withFindings += LoadFlagOf(row) == LoadFlag::Findings ? 1 : 0;
        if (row.file == nullptr) {
            ++totals.notReadable;
            continue;
        }
        totals.points += row.file->GetPointCount();
        layers.insert(row.place.layer);
        if (groups.insert(LayerKeyOf(*row.crs)).second) {
            totals.crsNames.push_back(row.crs->name);
        }
        totals.isGeographic = row.crs->isGeographic;
        Unite(totals.extent, *row.file);
    }
    totals.layers = layers.size();
    if (totals.crsNames.size() != 1) {
        totals.extent.reset();
    }
    return totals;
}

DetailSection TotalsSection(const LasTotals& totals) {
    const auto count = [](std::size_t number) { return number == 0 ? L"" : GroupedNumber(number); };
    DetailSection section{text::kTotalsSelection, {}};
    auto& fields = section.fields;
    AddField(fields, text::kTotalsFiles, GroupedNumber(totals.files));
    AddField(fields, text::kLasSizeMegabytes,
             FormatText(L"%'.2f", {static_cast<double>(totals.bytes) * 1e-6}));
    AddField(fields, text::kLasPoints, GroupedNumber(totals.points));
    AddField(fields, text::kTotalsLayers, GroupedNumber(totals.layers));
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

QString OverviewHtml(const LasRow& row, const QString& captionColour) {
    std::vector<Finding> findings(row.findings.begin(), row.findings.end());
    if (row.file != nullptr && HasErrors(row)) {
        findings.push_back({FindingSeverity::Note, LoadConditionText()});
    }
    if (row.place.inProject) {
        findings.push_back({FindingSeverity::Note, Text(text::kFileInProject)});
    }
    const std::wstring failure = row.file == nullptr ? row.summary : std::wstring();
    return FindingsHtml(findings, failure, Text(text::kLasDetailsConsistent)) +
           SectionsHtml(LasOverview(row), captionColour);
}

/// The text of a WKT record that cannot be read; empty if there is none.
QString UnreadableWktHtml(const LasRow& row) {
    constexpr std::size_t kLongest = 20000;
    const std::string wkt = row.file == nullptr ? std::string() : ReadLasCrs(*row.file).unreadableWkt;
    return wkt.empty() ? QString()
                       : TextHtml(Text(text::kDetailsUnreadableWkt)) +
                             PreformattedHtml(FromUtf8(wkt.substr(0, kLongest)));
}

QString CrsHtml(const LasRow& row, const QString& captionColour) {
    if (row.crsSource == LasCrsSource::None) {
        const auto found = std::ranges::find(row.findings, las_finding::kCrsUnreadable.code, &Finding::code);
        return TextHtml(found == row.findings.end() ? Text(text::kDetailsNoCrs) : found->text) +
               UnreadableWktHtml(row);
    }
    return FieldsHtml(LasCrsFields(row), captionColour) + PreformattedHtml(row.crs->prettyWkt) +
           UnreadableWktHtml(row);
}

}  // namespace

DetailsContent LasDetailsContent(std::span<const LasRow> rows, std::span<const std::size_t> records,
                                 const QString& captionColour) {
    if (records.size() == 1) {
        const LasRow& row = rows[records.front()];
        return {
            row.path,
            {OverviewHtml(row, captionColour), CrsHtml(row, captionColour), ToQString(LasRecordsText(row))}};
    }
    const LasTotals totals = TotalsOf(rows, records);
    const DetailSection section = TotalsSection(totals);
    return {FormatText(Text(text::kDetailsFilesSelected), {totals.files}),
            {SectionsHtml({&section, 1}, captionColour)}};
}

}  // namespace orvex
