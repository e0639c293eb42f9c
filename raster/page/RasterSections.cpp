#include "raster/page/RasterSections.h"

#include <array>
#include <cmath>
#include <numbers>

#include "raster/RasterColumns.h"
#include "raster/page/RasterBandTable.h"
#include "support/Format.h"

namespace orvex {

namespace {

constexpr const wchar_t* kTo = L" \u2013 ";

// The raster page has every column; one differs on the DEM page.
std::wstring ColumnText(const RasterRow& row, const char* name) {
    return CellText(ColumnNamed(RasterColumns(RasterUse::Image), name), row);
}

/// Fields that are added only when there is something to say.
class Section {
  public:
    Section(const RasterRow& row, StringId title) : row_(row), section_{title, {}, false} {}

    Section& Add(StringId caption, std::wstring value) {
        AddField(section_.fields, caption, std::move(value));
        return *this;
    }
    /// A cell of the grid, under the column's caption.
    Section& Add(const char* name, RasterUse page = RasterUse::Image) {
        const Column<RasterRow>& column = ColumnNamed(RasterColumns(page), name);
        return Add(column.caption, LooseCellText(column, row_));
    }
    /// Under the one before it.
    Section& Below() {
        section_.isBelow = true;
        return *this;
    }
    void Finish(std::vector<DetailSection>& sections) {
        if (!section_.fields.empty()) {
            section_.isBelow = section_.isBelow && !sections.empty();
            sections.push_back(std::move(section_));
        }
    }

  private:
    const RasterRow& row_;
    DetailSection section_;
};

std::wstring Megabytes(double bytes) {
    return bytes > 0 ? FormatText(L"%'.2f", {bytes * 1e-6}) : std::wstring();
}

std::wstring Count(std::int64_t number) {
    return number == 0 ? std::wstring() : GroupedNumber(static_cast<std::uint64_t>(number));
}

std::wstring LayerText(const RasterRow& row) {
    return row.place.layer + (row.place.exists ? L" " + Text(text::kLayerExistsSuffix) : L"");
}

std::wstring Sidecars(const RasterProperties& properties) {
    std::wstring text;
    for (const std::wstring& path : properties.sidecars) {
        text += (text.empty() ? L"" : L"\n") + FileNameOf(path);
    }
    return text;
}

/// Size in memory of all pixels.
double PixelBytes(const RasterProperties& properties) {
    double bits = static_cast<double>(properties.bands) * properties.bitsPerBand;
    if (static_cast<std::size_t>(properties.bands) == properties.bandDetails->size()) {
        bits = 0;
        for (const RasterBandProperties& band : *properties.bandDetails) {
            bits += band.bits;
        }
    }
    return static_cast<double>(properties.width) * properties.height * bits / 8;
}

std::wstring Compression(const RasterProperties& properties) {
    if (!properties.hasDetails) {
        return {};
    }
    return properties.compression.empty() ? Text(text::kCellNone) : properties.compression;
}

std::wstring PixelMeaning(const RasterProperties& properties) {
    if (EqualNoCase(properties.pixelIs, L"Area")) {
        return Text(text::kRasterPixelIsArea);
    }
    return EqualNoCase(properties.pixelIs, L"Point") ? Text(text::kRasterPixelIsPoint) : properties.pixelIs;
}

/// What the bands show; empty when that is undefined.
std::wstring Colors(const RasterProperties& properties) {
    std::wstring colors = DistinctOfBands(properties, &RasterBandProperties::colorInterpretation);
    return colors == L"Undefined" ? std::wstring() : colors;
}

const wchar_t* CoordinateFormat(bool isGeographic) {
    return isGeographic ? L"%.8lf" : L"%.3f";
}

bool IsTurned(const std::array<double, 6>& transform) {
    return transform[2] != 0 || transform[4] != 0;
}

/// Where the first pixel begins; for rows along the X axis the extent says it.
std::wstring Corner(const RasterRow& row) {
    const auto& transform = row.Properties().transform;
    if (!transform.has_value() || !IsTurned(*transform)) {
        return {};
    }
    const wchar_t* format = CoordinateFormat(row.crs->isGeographic);
    return FormatText(format, {(*transform)[0]}) + L" / " + FormatText(format, {(*transform)[3]});
}

/// By how much rows are turned against the X axis, counter-clockwise.
std::wstring Rotation(const RasterProperties& properties) {
    if (!properties.transform.has_value()) {
        return {};
    }
    const auto& transform = *properties.transform;
    if (!IsTurned(transform)) {
        return Text(text::kCellNone);
    }
    return FormatText(L"%.6lf\u00b0", {std::atan2(transform[4], transform[1]) * 180 / std::numbers::pi});
}

std::wstring Range(const RasterRow& row, const char* from, const char* to) {
    const std::wstring first = ColumnText(row, from);
    const std::wstring last = ColumnText(row, to);
    return first.empty() || last.empty() ? std::wstring() : first + kTo + last;
}

std::wstring Units(const RasterRow& row) {
    return row.crs->isGeographic ? row.crs->angularUnits : row.unit;
}

void AddFile(const RasterRow& row, RasterUse use, std::vector<DetailSection>& sections) {
    const RasterProperties& properties = row.Properties();
    Section file(row, text::kDetailsFile);
    file.Add("fileType").Add("size");
    if (properties.totalBytes > row.fileSize) {
        file.Add(text::kRasterTotalSizeMegabytes, Megabytes(static_cast<double>(properties.totalBytes)));
    }
    file.Add(text::kRasterOtherFiles, Sidecars(properties));
    file.Add(text::kModifiedUtc, ColumnText(row, "modified"));
    file.Add(text::kRasterAcquired, properties.acquired);
    file.Add(text::kLayerName, LayerText(row));
    if (use == RasterUse::Dem) {
        file.Add("gpsTime", use);
    }
    file.Finish(sections);
}

void AddImage(const RasterRow& row, std::vector<DetailSection>& sections) {
    Section image(row, text::kRasterImageSection);
    image.Add("imageSize").Add("bands");
    image.Add(text::kRasterDataType, DistinctOfBands(row.Properties(), &RasterBandProperties::dataType));
    image.Add("bitsPerBand").Add("colorModel");
    image.Add(text::kRasterPhotometric, ColumnText(row, "photometric"));
    image.Add(text::kRasterBandColor, Colors(row.Properties()));
    image.Finish(sections);
}

void AddValues(const RasterRow& row, std::vector<DetailSection>& sections) {
    const RasterProperties& properties = row.Properties();
    Section values(row, text::kRasterValuesSection);
    values.Add(text::kRasterNoDataValue, properties.hasDetails ? DistinctNodata(properties) : std::wstring());
    values.Add(text::kRasterMinimum, LowestMinimum(properties))
        .Add(text::kRasterMaximum, HighestMaximum(properties));
    values.Add(text::kRasterValueUnit, DistinctOfBands(properties, &RasterBandProperties::unit));
    values.Below().Finish(sections);
}

void AddGeoreference(const RasterRow& row, std::vector<DetailSection>& sections) {
    const RasterProperties& properties = row.Properties();
    Section georeference(row, text::kRasterGeoreferenceSection);
    georeference.Add(text::kExtentX, Range(row, "minimumX", "maximumX"));
    georeference.Add(text::kExtentY, Range(row, "minimumY", "maximumY"));
    georeference.Add("pixelSizes");
    georeference.Add(text::kUnits, Units(row));
    georeference.Add(text::kRasterUpperLeftCorner, Corner(row))
        .Add(text::kRasterRotation, Rotation(properties));
    georeference.Add(text::kRasterPixelStandsFor, PixelMeaning(properties));
    georeference.Add(text::kRasterControlPoints, Count(properties.controlPoints));
    georeference.Add(text::kRasterRpc, properties.hasRpc ? Text(text::kCellYes) : std::wstring());
    georeference.Finish(sections);
}

void AddStorage(const RasterRow& row, std::vector<DetailSection>& sections) {
    const RasterProperties& properties = row.Properties();
    Section storage(row, text::kRasterStorageSection);
    storage.Add(text::kRasterCompression, Compression(properties))
        .Add(text::kRasterInterleaving, properties.interleave);
    storage.Add(text::kRasterBlockSize, DistinctBlocks(properties)).Add("overviews");
    storage.Add("bigTiff");
    storage.Add(text::kRasterUncompressedMegabytes, Megabytes(PixelBytes(properties)));
    storage.Finish(sections);
}

}  // namespace

std::vector<DetailSection> RasterSections(const RasterRow& row, RasterUse use) {
    std::vector<DetailSection> sections;
    if (row.IsDescribed()) {
        AddFile(row, use, sections);
        for (const auto add : {AddImage, AddGeoreference, AddStorage, AddValues}) {
            add(row, sections);
        }
    }
    return sections;
}

std::vector<DetailField> RasterCrsFields(const RasterRow& row) {
    const CrsDescription& crs = *row.crs;
    if (crs.sourceWkt.empty()) {
        return {};
    }
    std::vector<DetailSection> sections;
    Section fields(row, {});
    fields.Add(text::kDetailsCrsName, crs.name);
    fields.Add("projectionCode");
    fields.Add(text::kDetailsCrsKind,
               Text(crs.isGeographic ? text::kCrsGeographic : text::kCrsProjectedOrLocal));
    fields.Add(text::kDetailsLinearUnit, row.unit);
    fields.Add(text::kDetailsAngularUnit, crs.angularUnits);
    fields.Add(text::kVerticalCrs, crs.verticalName);
    fields.Finish(sections);
    return sections.empty() ? std::vector<DetailField>() : std::move(sections.front().fields);
}

}  // namespace orvex
