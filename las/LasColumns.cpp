#include "las/LasColumns.h"

#include <bit>
#include <cmath>

#include "las/LasText.h"
#include "support/Format.h"
#include "support/LasFormat.h"

namespace orvex {
namespace {

/// A cell of a row's file; empty for a row without one.
template <auto Function>
GridCell OfFile(const LasRow& row) {
    return row.file == nullptr ? GridCell() : GridCell(Function(*row.file));
}

template <auto Function>
GridCell OfCrs(const LasRow& row) {
    return row.file == nullptr ? GridCell() : GridCell(Function(*row.crs));
}

std::wstring YesNo(bool value) {
    return Text(value ? text::kCellYes : text::kCellNo);
}

GridCell FiniteNumber(double value) {
    return std::isfinite(value) ? GridCell(value) : GridCell();
}

template <auto Triple, std::size_t Axis>
GridCell NumberOf(const LasRow& row) {
    return row.file == nullptr ? GridCell() : FiniteNumber((row.file->Header().*Triple)()[Axis]);
}

template <auto Triple, std::size_t Axis>
GridCell ShortestOf(const LasRow& row) {
    if (row.file == nullptr) {
        return {};
    }
    // Adding zero turns a negative zero into zero.
    return FormatText(L"%.15g", {(row.file->Header().*Triple)()[Axis] + 0.0});
}

template <auto Getter>
GridCell CountOf(const LasRow& row) {
    if (row.file == nullptr) {
        return {};
    }
    return std::to_wstring((row.file->Header().*Getter)());
}

GridCell LoadFlagCell(const LasRow& row) {
    return LoadFlagNumber(LoadFlagOf(row));
}

GridCell Address(const LasRow& row) {
    const auto address = std::bit_cast<std::uintptr_t>(row.file.get());
    return std::to_wstring(address);
}

/// Path of a file; of one at a URL, without its parameters.
std::wstring_view PathAlone(const LasRow& row) {
    const std::wstring_view path = row.path;
    return path.find(L"://") == std::wstring_view::npos ? path : path.substr(0, path.find(L'?'));
}

GridCell Modified(const LasRow& row) {
    const std::int64_t time = row.modifiedMs;
    return time == 0 ? GridCell() : GridCell(UtcTimeText(time));
}

GridCell Size(const LasRow& row) {
    return row.fileSize == 0 ? GridCell() : GridCell(static_cast<double>(row.fileSize) * 1e-6);
}

std::wstring Version(const LASFile& file) {
    const LasHeader& header = file.Header();
    return FormatText(L"%u.%u", {header.VersionMajor(), header.VersionMinor()});
}

std::wstring Epsg(const CrsDescription& crs) {
    return crs.Epsg() == 0 ? std::wstring() : FormatText(L"EPSG:%d", {crs.Epsg()});
}

std::wstring Units(const CrsDescription& crs) {
    return crs.isGeographic ? crs.angularUnits : crs.linearUnits;
}

GridCell Group(const LasRow& row) {
    return row.place.group == 0 ? GridCell() : GridCell(std::to_wstring(row.place.group));
}

GridCell Companion(const LasRow& row) {
    if (row.file == nullptr) {
        return {};
    }
    switch (static_cast<CompanionStatus>(row.file->GetCompanionStatus())) {
        case CompanionStatus::QvrFile:
            return Text(row.companion == CompanionState::Stale        ? text::kIndexQvrStale
                        : row.companion == CompanionState::Unreadable ? text::kIndexQvrUnreadable
                        : row.companion == CompanionState::OfOther    ? text::kIndexQvrOther
                                                                      : text::kIndexQvr);
        case CompanionStatus::IndexRecord:
        case CompanionStatus::ExtendedRecord:
            return Text(text::kIndexOrvexLas);
        default:
            return Text(text::kCellNone);
    }
}

std::wstring Compressed(const LASFile& file) {
    return IsCopc(file) ? Text(text::kCompressedCopc) : YesNo(file.Header().IsCompressed());
}

std::wstring Returns(const LASFile& file) {
    int most = 0;
    for (int number = 1; number <= file.Header().ReturnCount(); ++number) {
        most = file.Header().PointsOfReturn(number) > 0 ? number : most;
    }
    return most == 0 ? std::wstring() : std::to_wstring(most);
}

std::wstring PointsByReturn(const LASFile& file) {
    return LasPointsByReturnText(file, L"%u");
}

std::wstring ExtraBytesNames(const LASFile& file) {
    std::wstring text;
    for (const ExtraBytesAttribute& attribute : file.GetExtraBytes().Attributes()) {
        text += (text.empty() ? L"" : L", ") + attribute.name;
    }
    return text;
}

std::wstring Created(const LASFile& file) {
    const LasHeader& header = file.Header();
    if (header.IsCreationDateImpossible()) {
        return FormatText(Text(text::kLasStoredDate), {header.CreationDay(), header.CreationYear()});
    }
    if (const auto date = header.CreationDate()) {
        return FormatText(L"%04d-%02u-%02u",
                          {static_cast<int>(date->year()), static_cast<unsigned>(date->month()),
                           static_cast<unsigned>(date->day())});
    }
    return header.CreationYear() == 0 ? std::wstring() : std::to_wstring(header.CreationYear());
}

std::wstring ExtraBytesTooltip(const LasRow& row) {
    std::wstring text;
    if (row.file != nullptr) {
        for (const ExtraBytesAttribute& attribute : row.file->GetExtraBytes().Attributes()) {
            text += (text.empty() ? L"" : L"\n") +
                    FormatText(Text(text::kLasExtraBytesPlace),
                               {attribute.name, FromUtf8(ExtraBytesType(attribute)), attribute.pointOffset});
        }
    }
    return text;
}

std::wstring GlobalEncoding(const LASFile& file) {
    return FormatText(L"0x%04X", {file.Header().GlobalEncoding()});
}

GridCell CrsSource(const LasRow& row) {
    if (row.file == nullptr) {
        return {};
    }
    constexpr StringId kNames[] = {text::kCellNone, text::kCrsSourceWkt, text::kCrsSourceGeoKeys};
    return Text(kNames[static_cast<int>(row.crsSource)]);
}

std::wstring Waveform(const LASFile& file) {
    if (file.Header().HasInternalWaveform()) {
        return Text(text::kWaveformInternal);
    }
    return Text(file.Header().HasExternalWaveform() ? text::kWaveformExternal : text::kCellNone);
}

std::wstring Attributes(const LASFile& file) {
    const las::PointFormatFacts* facts = las::FindPointFormat(file.PointFormat());
    if (facts == nullptr) {
        return {};
    }
    std::wstring text;
    const auto add = [&text](bool has, StringId name) {
        if (has) {
            text += (text.empty() ? L"" : L", ") + Text(name);
        }
    };
    add(facts->hasGpsTime, text::kLasGpsTime);
    add(facts->hasColor, text::kAttributeRgb);
    add(facts->hasNearInfrared, text::kAttributeNir);
    add(facts->hasWaveform, text::kLasWaveform);
    return text;
}

/// Square units that the extent covers; 0 when that means nothing (degrees, inverted or not finite).
double AreaOf(const LasRow& row) {
    if (row.file == nullptr || row.crs->isGeographic) {
        return 0;
    }
    const auto minimum = row.file->Minimum();
    const auto maximum = row.file->Maximum();
    const double width = maximum[0] - minimum[0];
    const double height = maximum[1] - minimum[1];
    const double area = width * height;
    return width > 0 && height > 0 && std::isfinite(area) ? area : 0;
}

GridCell Density(const LasRow& row) {
    const double area = AreaOf(row);
    return area > 0 ? FiniteNumber(static_cast<double>(row.file->GetPointCount()) / area) : GridCell();
}

GridCell Spacing(const LasRow& row) {
    const double area = AreaOf(row);
    if (!(area > 0) || row.file->GetPointCount() == 0) {
        return {};
    }
    return FiniteNumber(std::sqrt(area / static_cast<double>(row.file->GetPointCount())));
}

template <auto Getter>
std::wstring HeaderText(const LASFile& file) {
    return FromUtf8((file.Header().*Getter)());
}

double PointCount(const LASFile& file) {
    return static_cast<double>(file.GetPointCount());
}

std::wstring PointFormat(const LASFile& file) {
    return std::to_wstring(file.PointFormat());
}

std::wstring PathText(const LasRow& row) {
    return row.path;
}

/// Sparse clouds need more digits.
const wchar_t* DensityFormat(const LasRow& row) {
    constexpr double kSparse = 0.1;
    const GridCell density = Density(row);
    const auto* number = std::get_if<double>(&density);
    return number != nullptr && *number < kSparse ? L"%.6f" : nullptr;
}

/// Degrees need more digits than metres.
const wchar_t* HorizontalFormat(const LasRow& row) {
    return row.crs->isGeographic ? L"%.8lf" : nullptr;
}

constexpr const wchar_t* kCount = L"%.0f";
constexpr const wchar_t* kMegabytes = L"%.2f";
constexpr const wchar_t* kCoordinate = L"%.3f";
constexpr auto kRight = HeaderAlign::Right;

constexpr Column<LasRow> kColumns[] = {
    {{.name = "loadFlag",
      .width = 24,
      .kind = CellKind::Flag,
      .basic = true,
      .frozen = true,
      .resizable = false},
     LoadFlagCell,
     {.tooltip = FindingsText,
      .icon = [](const LasRow& row) { return LoadFlagImage(LoadFlagOf(row)); },
      .words = [](const LasRow& row) { return LoadFlagText(LoadFlagOf(row)); }}},
    {{.name = "path", .caption = text::kPath, .hidden = true},
     [](const LasRow& row) { return GridCell(row.path); }},
    {{.name = "details", .hidden = true}, Address},
    {{.name = "fileName",
      .caption = text::kLasFileName,
      .basic = true,
      .frozen = true,
      .footer = FooterKind::Count},
     [](const LasRow& row) { return GridCell(FileNameOf(PathAlone(row))); },
     {.tooltip = PathText}},
    {{.name = "folder", .caption = text::kLasFolder, .maximumWidth = 400},
     [](const LasRow& row) { return GridCell(FolderOf(PathAlone(row))); },
     {.tooltip = PathText}},
    {{.name = "size",
      .caption = text::kLasSizeMegabytes,
      .kind = CellKind::Number,
      .format = kMegabytes,
      .tooltip = text::kSizeTooltip,
      .basic = true,
      .footer = FooterKind::Sum},
     Size},
    {{.name = "version", .caption = text::kLasVersion, .basic = true}, OfFile<Version>},
    {{.name = "layer",
      .caption = text::kLasLayer,
      .width = 150,
      .tooltip = text::kLayerTooltip,
      .basic = true,
      .minimumWidth = 150},
     [](const LasRow& row) { return GridCell(row.place.layer); }},
    {{.name = "epsg", .alsoKnownAs = "crs", .caption = text::kLasEpsg, .basic = true}, OfCrs<Epsg>},
    {{.name = "state", .caption = text::kLasState, .basic = true, .maximumWidth = 1000, .takesSpare = true},
     [](const LasRow& row) { return GridCell(StateText(row)); },
     {.tooltip = FindingsText}},
    {{.name = "crsName", .alsoKnownAs = "crs", .caption = text::kLasCrs, .basic = true, .maximumWidth = 400},
     OfCrs<[](const CrsDescription& crs) { return crs.name; }>},
    {{.name = "verticalCrs", .caption = text::kVerticalCrs, .maximumWidth = 300},
     OfCrs<[](const CrsDescription& crs) { return crs.verticalName; }>},
    {{.name = "units", .caption = text::kUnits}, OfCrs<Units>},
    {{.name = "group", .caption = text::kLasGroup, .tooltip = text::kLasGroupTooltip}, Group},
    {{.name = "companion", .caption = text::kLasIndex, .tooltip = text::kLasIndexTooltip}, Companion},
    {{.name = "compressed", .caption = text::kLasCompressed, .tooltip = text::kLasCompressedTooltip},
     OfFile<Compressed>},
    {{.name = "returns", .caption = text::kLasReturns, .tooltip = text::kLasReturnsTooltip}, OfFile<Returns>},
    {{.name = "pointFormat",
      .caption = text::kLasPointFormat,
      .align = HeaderAlign::Centre,
      .tooltip = text::kLasPointFormatTooltip,
      .basic = true},
     OfFile<PointFormat>},
    {{.name = "recordLength", .caption = text::kLasRecordLength, .tooltip = text::kLasRecordLengthTooltip},
     CountOf<&LasHeader::PointRecordLength>},
    {{.name = "extraBytes",
      .caption = text::kLasExtraBytes,
      .tooltip = text::kLasExtraBytesTooltip,
      .maximumWidth = 300},
     OfFile<ExtraBytesNames>,
     {.tooltip = ExtraBytesTooltip}},
    {{.name = "systemId", .caption = text::kLasSystemId}, OfFile<HeaderText<&LasHeader::SystemIdentifier>>},
    {{.name = "software", .caption = text::kLasGeneratingSoftware},
     OfFile<HeaderText<&LasHeader::GeneratingSoftware>>},
    {{.name = "created", .caption = text::kLasCreated}, OfFile<Created>},
    {{.name = "sourceId", .caption = text::kLasFileSourceId}, CountOf<&LasHeader::FileSourceId>},
    {{.name = "projectId", .caption = text::kLasProjectId}, OfFile<HeaderText<&LasHeader::ProjectId>>},
    {{.name = "globalEncoding", .caption = text::kLasGlobalEncoding},
     OfFile<GlobalEncoding>,
     {.tooltip = [](const LasRow& row) { return row.file ? LasEncodingText(*row.file) : std::wstring(); }}},
    {{.name = "headerSize", .caption = text::kLasHeaderSize}, CountOf<&LasHeader::HeaderSize>},
    {{.name = "offsetToPoints", .caption = text::kLasOffsetToPoints}, CountOf<&LasHeader::OffsetToPoints>},
    {{.name = "vlrCount", .caption = text::kLasVlrs},
     OfFile<[](const LASFile& file) { return std::to_wstring(file.GetVLRs().size()); }>},
    {{.name = "evlrCount", .caption = text::kLasEvlrs},
     OfFile<[](const LASFile& file) { return std::to_wstring(file.GetEVLRs().size()); }>},
    {{.name = "crsSource", .caption = text::kLasCrsSource, .tooltip = text::kLasCrsSourceTooltip}, CrsSource},
    {{.name = "waveform", .caption = text::kLasWaveform}, OfFile<Waveform>},
    {{.name = "pointsByReturn", .caption = text::kLasPointsByReturn, .maximumWidth = 300},
     OfFile<PointsByReturn>},
    {{.name = "gpsTime", .caption = text::kLasGpsTime, .tooltip = text::kLasGpsTimeTooltip},
     OfFile<LasGpsTimeText>},
    {{.name = "modified", .caption = text::kModifiedUtc}, Modified},
    {{.name = "points",
      .caption = text::kLasPoints,
      .kind = CellKind::Number,
      .format = kCount,
      .align = kRight,
      .basic = true,
      .footer = FooterKind::Sum},
     OfFile<PointCount>},
    {{.name = "density",
      .caption = text::kLasDensity,
      .kind = CellKind::Number,
      .format = L"%.2f",
      .align = kRight,
      .tooltip = text::kLasDensityTooltip},
     Density,
     {.format = DensityFormat}},
    {{.name = "spacing",
      .caption = text::kLasSpacing,
      .kind = CellKind::Number,
      .format = L"%.3f",
      .align = kRight,
      .tooltip = text::kLasSpacingTooltip},
     Spacing},
    {{.name = "scaleX", .caption = text::kLasXScale, .align = kRight}, ShortestOf<&LasHeader::Scale, 0>},
    {{.name = "scaleY", .caption = text::kLasYScale, .align = kRight}, ShortestOf<&LasHeader::Scale, 1>},
    {{.name = "scaleZ", .caption = text::kLasZScale, .align = kRight}, ShortestOf<&LasHeader::Scale, 2>},
    {{.name = "minimumX",
      .caption = text::kLasMinX,
      .kind = CellKind::Number,
      .format = kCoordinate,
      .align = kRight},
     NumberOf<&LasHeader::Minimum, 0>,
     {.format = HorizontalFormat}},
    {{.name = "minimumY",
      .caption = text::kLasMinY,
      .kind = CellKind::Number,
      .format = kCoordinate,
      .align = kRight},
     NumberOf<&LasHeader::Minimum, 1>,
     {.format = HorizontalFormat}},
    {{.name = "minimumZ",
      .caption = text::kLasMinZ,
      .kind = CellKind::Number,
      .format = kCoordinate,
      .align = kRight},
     NumberOf<&LasHeader::Minimum, 2>},
    {{.name = "maximumX",
      .caption = text::kLasMaxX,
      .kind = CellKind::Number,
      .format = kCoordinate,
      .align = kRight},
     NumberOf<&LasHeader::Maximum, 0>,
     {.format = HorizontalFormat}},
    {{.name = "maximumY",
      .caption = text::kLasMaxY,
      .kind = CellKind::Number,
      .format = kCoordinate,
      .align = kRight},
     NumberOf<&LasHeader::Maximum, 1>,
     {.format = HorizontalFormat}},
    {{.name = "maximumZ",
      .caption = text::kLasMaxZ,
      .kind = CellKind::Number,
      .format = kCoordinate,
      .align = kRight},
     NumberOf<&LasHeader::Maximum, 2>},
    {{.name = "offsetX", .caption = text::kLasXOffset}, ShortestOf<&LasHeader::Offset, 0>},
    {{.name = "offsetY", .caption = text::kLasYOffset}, ShortestOf<&LasHeader::Offset, 1>},
    {{.name = "offsetZ", .caption = text::kLasZOffset}, ShortestOf<&LasHeader::Offset, 2>},
    {{.name = "findingCount", .caption = text::kLasFindings},
     [](const LasRow& row) { return GridCell(std::to_wstring(row.findings.size())); },
     {.tooltip = FindingsText}},
    {{.name = "attributes",
      .caption = text::kLasPointAttributes,
      .tooltip = text::kLasPointAttributesTooltip},
     OfFile<Attributes>},
};

}  // namespace

std::span<const Column<LasRow>> LasColumns() {
    return kColumns;
}

}  // namespace orvex
