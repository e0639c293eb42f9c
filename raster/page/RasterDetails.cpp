#include "raster/page/RasterDetails.h"

#include <array>
#include <cmath>
#include <numbers>

#include "raster/RasterCells.h"
#include "raster/page/RasterValues.h"
#include "support/Format.h"

namespace orvex {

namespace {

constexpr const wchar_t* kTo = L" \u2013 ";

/// Fields that are added only when there is something to say.
class Section {
  public:
    Section(const RasterRow& row, RasterUse use, StringId title)
        : row_(row), use_(use), section_{title, {}, false} {}

    Section& Add(StringId caption, std::wstring value) {
        AddField(section_.fields, caption, std::move(value));
        return *this;
    }
    /// What the grid shows in a column, under the column's caption.
    Section& Add(RasterColumn column) {
        const auto index = static_cast<std::size_t>(column);
        return Add(RasterColumns(RasterUse::Image)[index].caption, RasterCellText(row_, column, use_));
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
    RasterUse use_;
    DetailSection section_;
};

std::wstring Megabytes(double bytes) {
    return bytes > 0 ? FormatText(L"%.2f", {bytes * 1e-6}) : std::wstring();
}

std::wstring Count(std::int64_t number) {
    return number == 0 ? std::wstring() : std::to_wstring(number);
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
    if (static_cast<std::size_t>(properties.bands) == properties.bandDetails.size()) {
        bits = 0;
        for (const RasterBandProperties& band : properties.bandDetails) {
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
    const auto& transform = row.File().properties.transform;
    if (!transform.has_value() || !IsTurned(*transform)) {
        return {};
    }
    const wchar_t* format = CoordinateFormat(row.File().crs->isGeographic);
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

std::wstring Range(const RasterRow& row, RasterColumn from, RasterColumn to) {
    const std::wstring first = RasterCellText(row, from, RasterUse::Image);
    const std::wstring last = RasterCellText(row, to, RasterUse::Image);
    return first.empty() || last.empty() ? std::wstring() : first + kTo + last;
}

std::wstring Units(const RasterRow& row) {
    return row.File().crs->isGeographic ? row.File().crs->angularUnits : row.File().unit;
}

void AddFile(const RasterRow& row, RasterUse use, std::vector<DetailSection>& sections) {
    const RasterProperties& properties = row.File().properties;
    Section file(row, use, text::kDetailsFile);
    file.Add(RasterColumn::FileType).Add(RasterColumn::Size);
    if (properties.totalBytes > row.File().fileSize) {
        file.Add(text::kRasterTotalSizeMegabytes, Megabytes(static_cast<double>(properties.totalBytes)));
    }
    file.Add(text::kRasterOtherFiles, Sidecars(properties));
    file.Add(text::kModifiedUtc, RasterCellText(row, RasterColumn::Modified, use));
    file.Add(text::kRasterAcquired, properties.acquired);
    file.Add(text::kLayerName, LayerText(row));
    if (use == RasterUse::Dem) {
        file.Add(RasterColumn::GpsTime);
    }
    file.Finish(sections);
}

void AddImage(const RasterRow& row, RasterUse use, std::vector<DetailSection>& sections) {
    Section image(row, use, text::kRasterImageSection);
    image.Add(RasterColumn::ImageSize).Add(RasterColumn::Bands);
    image.Add(text::kRasterDataType, DistinctOfBands(row.File().properties, &RasterBandProperties::dataType));
    image.Add(RasterColumn::BitsPerBand).Add(RasterColumn::ColorModel);
    image.Add(text::kRasterPhotometric, RasterCellText(row, RasterColumn::Photometric, use));
    image.Add(text::kRasterBandColor, Colors(row.File().properties));
    image.Finish(sections);
}

void AddValues(const RasterRow& row, RasterUse use, std::vector<DetailSection>& sections) {
    const RasterProperties& properties = row.File().properties;
    Section values(row, use, text::kRasterValuesSection);
    values.Add(text::kRasterNoDataValue, properties.hasDetails ? DistinctNodata(properties) : std::wstring());
    values.Add(text::kRasterMinimum, LowestMinimum(properties))
        .Add(text::kRasterMaximum, HighestMaximum(properties));
    values.Add(text::kRasterValueUnit, DistinctOfBands(properties, &RasterBandProperties::unit));
    values.Below().Finish(sections);
}

void AddGeoreference(const RasterRow& row, RasterUse use, std::vector<DetailSection>& sections) {
    const RasterProperties& properties = row.File().properties;
    Section georeference(row, use, text::kRasterGeoreferenceSection);
    georeference.Add(text::kExtentX, Range(row, RasterColumn::MinimumX, RasterColumn::MaximumX));
    georeference.Add(text::kExtentY, Range(row, RasterColumn::MinimumY, RasterColumn::MaximumY));
    georeference.Add(RasterColumn::PixelSizes);
    georeference.Add(text::kUnits, Units(row));
    georeference.Add(text::kRasterUpperLeftCorner, Corner(row))
        .Add(text::kRasterRotation, Rotation(properties));
    georeference.Add(text::kRasterPixelStandsFor, PixelMeaning(properties));
    georeference.Add(text::kRasterControlPoints, Count(properties.controlPoints));
    georeference.Add(text::kRasterRpc, properties.hasRpc ? Text(text::kCellYes) : std::wstring());
    georeference.Finish(sections);
}

void AddStorage(const RasterRow& row, RasterUse use, std::vector<DetailSection>& sections) {
    const RasterProperties& properties = row.File().properties;
    Section storage(row, use, text::kRasterStorageSection);
    storage.Add(text::kRasterCompression, Compression(properties))
        .Add(text::kRasterInterleaving, properties.interleave);
    storage.Add(text::kRasterBlockSize, DistinctBlocks(properties)).Add(RasterColumn::Overviews);
    storage.Add(RasterColumn::BigTiff);
    storage.Add(text::kRasterUncompressedMegabytes, Megabytes(PixelBytes(properties)));
    storage.Finish(sections);
}

}  // namespace

std::vector<DetailSection> RasterOverview(const RasterRow& row, RasterUse use) {
    std::vector<DetailSection> sections;
    if (row.IsDescribed()) {
        for (const auto add : {AddFile, AddImage, AddGeoreference, AddStorage, AddValues}) {
            add(row, use, sections);
        }
    }
    return sections;
}

std::vector<DetailField> RasterCrsFields(const RasterRow& row) {
    const CrsDescription& crs = *row.File().crs;
    if (crs.sourceWkt.empty()) {
        return {};
    }
    std::vector<DetailSection> sections;
    Section fields(row, RasterUse::Image, {});
    fields.Add(text::kDetailsCrsName, crs.name);
    fields.Add(RasterColumn::ProjectionCode);
    fields.Add(text::kDetailsCrsKind,
               Text(crs.isGeographic ? text::kCrsGeographic : text::kCrsProjectedOrLocal));
    fields.Add(text::kDetailsLinearUnit, row.File().unit);
    fields.Add(text::kDetailsAngularUnit, crs.angularUnits);
    fields.Add(text::kVerticalCrs, crs.verticalName);
    fields.Finish(sections);
    return sections.empty() ? std::vector<DetailField>() : std::move(sections.front().fields);
}

}  // namespace orvex
