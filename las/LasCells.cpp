#include "las/LasCells.h"

#include <array>
#include <bit>
#include <chrono>
#include <cmath>

#include "las/LasText.h"
#include "las/PointFormats.h"
#include "support/Format.h"
#include "support/Text.h"

namespace orvex {

namespace {

using CellFunction = GridCell (*)(const LasRow&);

/// A cell of a row's file; empty for a row without one.
template <auto Function>
GridCell OfFile(const LasRow& row) {
    return row.inspection.file == nullptr ? GridCell() : GridCell(Function(*row.inspection.file));
}

template <auto Function>
GridCell OfCrs(const LasRow& row) {
    return row.inspection.file == nullptr ? GridCell() : GridCell(Function(*row.inspection.crs));
}

std::wstring YesNo(bool value) {
    return Text(value ? text::kCellYes : text::kCellNo);
}

GridCell FiniteNumber(double value) {
    return std::isfinite(value) ? GridCell(value) : GridCell();
}

template <auto Triple, std::size_t Axis>
GridCell NumberOf(const LasRow& row) {
    return row.inspection.file == nullptr ? GridCell()
                                          : FiniteNumber((row.inspection.file->Header().*Triple)()[Axis]);
}

template <auto Triple, std::size_t Axis>
GridCell ShortestOf(const LasRow& row) {
    if (row.inspection.file == nullptr) {
        return {};
    }
    // Adding zero turns a negative zero into zero.
    return FormatText(L"%.15g", {(row.inspection.file->Header().*Triple)()[Axis] + 0.0});
}

template <auto Getter>
GridCell CountOf(const LasRow& row) {
    if (row.inspection.file == nullptr) {
        return {};
    }
    return std::to_wstring((row.inspection.file->Header().*Getter)());
}

/// 0 for a file that cannot be loaded, so that it reads as a flag.
GridCell LoadFlagCell(const LasRow& row) {
    return static_cast<double>(LoadFlag::NotLoadable) - static_cast<double>(LoadFlagOf(row));
}

GridCell Details(const LasRow& row) {
    const auto address = std::bit_cast<std::uintptr_t>(row.inspection.file.get());
    return std::to_wstring(address);
}

GridCell Modified(const LasRow& row) {
    const std::int64_t time = row.inspection.modifiedMs;
    return time == 0 ? GridCell() : GridCell(UtcTimeText(time));
}

GridCell Size(const LasRow& row) {
    return row.inspection.fileSize == 0 ? GridCell()
                                        : GridCell(static_cast<double>(row.inspection.fileSize) * 1e-6);
}

std::wstring Version(const LASFile& file) {
    const LasHeader& header = file.Header();
    return FormatText(L"%u.%u", {header.VersionMajor(), header.VersionMinor()});
}

std::wstring Epsg(const CrsDescription& crs) {
    return crs.epsg == 0 ? std::wstring() : FormatText(L"EPSG:%d", {crs.epsg});
}

std::wstring Units(const CrsDescription& crs) {
    return crs.isGeographic ? crs.angularUnits : crs.linearUnits;
}

GridCell Group(const LasRow& row) {
    return row.group == 0 ? GridCell() : GridCell(std::to_wstring(row.group));
}

std::wstring Companion(const LASFile& file) {
    switch (file.GetCompanionStatus()) {
        case 2:
            return Text(text::kIndexQvr);
        case 3:
        case 6:
            return Text(text::kIndexOrvexLas);
        default:
            return Text(text::kCellNone);
    }
}

std::wstring Compressed(const LASFile& file) {
    return YesNo(file.Header().IsCompressed());
}

std::wstring Returns(const LASFile& file) {
    int most = 0;
    for (int number = 1; number <= file.Header().ReturnCount(); ++number) {
        most = file.Header().PointsOfReturn(number) > 0 ? number : most;
    }
    return most == 0 ? std::wstring() : std::to_wstring(most);
}

std::wstring PointsByReturn(const LASFile& file) {
    std::wstring text;
    for (int number = 1; number <= file.Header().ReturnCount(); ++number) {
        const std::uint64_t points = file.Header().PointsOfReturn(number);
        if (points > 0) {
            text += FormatText(text.empty() ? L"%d: %u" : L", %d: %u", {number, points});
        }
    }
    return text;
}

std::wstring ExtraBytesNames(const LASFile& file) {
    std::wstring text;
    for (const ExtraBytesAttribute& attribute : file.GetExtraBytes().Attributes()) {
        text += (text.empty() ? L"" : L", ") + attribute.name;
    }
    return text;
}

std::wstring Created(const LASFile& file) {
    using namespace std::chrono;
    const int year = file.Header().CreationYear();
    const int day = file.Header().CreationDay();
    if (year == 0) {
        return {};
    }
    if (day < 1 || day > 366) {
        return std::to_wstring(year);
    }
    const year_month_day date{sys_days{std::chrono::year(year) / January / 1} + days(day - 1)};
    return FormatText(L"%04d-%02u-%02u", {static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                                          static_cast<unsigned>(date.day())});
}

std::wstring GlobalEncoding(const LASFile& file) {
    return FormatText(L"0x%04X", {file.Header().GlobalEncoding()});
}

std::wstring CrsSource(const LASFile& file) {
    const bool hasWkt = file.FindWKT().has_value();
    const bool hasGeoKeys = file.FindGeoKeyDirectory().has_value();
    if (hasWkt && (file.Header().HasWktBit() || !hasGeoKeys)) {
        return Text(text::kCrsSourceWkt);
    }
    return Text(hasGeoKeys ? text::kCrsSourceGeoKeys : text::kCellNone);
}

std::wstring Waveform(const LASFile& file) {
    constexpr unsigned kInternal = 0x2;
    constexpr unsigned kExternal = 0x4;
    const unsigned encoding = file.Header().GlobalEncoding();
    if ((encoding & kInternal) != 0) {
        return Text(text::kWaveformInternal);
    }
    return Text((encoding & kExternal) != 0 ? text::kWaveformExternal : text::kCellNone);
}

std::wstring Attributes(const LASFile& file) {
    const PointFormatFacts* facts = FindPointFormat(file.PointFormat());
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
    if (row.inspection.file == nullptr || row.inspection.crs->isGeographic) {
        return 0;
    }
    const auto minimum = row.inspection.file->Minimum();
    const auto maximum = row.inspection.file->Maximum();
    const double width = maximum[0] - minimum[0];
    const double height = maximum[1] - minimum[1];
    const double area = width * height;
    return width > 0 && height > 0 && std::isfinite(area) ? area : 0;
}

GridCell Density(const LasRow& row) {
    const double area = AreaOf(row);
    return area > 0 ? FiniteNumber(static_cast<double>(row.inspection.file->GetPointCount()) / area)
                    : GridCell();
}

GridCell Spacing(const LasRow& row) {
    const double area = AreaOf(row);
    if (!(area > 0) || row.inspection.file->GetPointCount() == 0) {
        return {};
    }
    return FiniteNumber(std::sqrt(area / static_cast<double>(row.inspection.file->GetPointCount())));
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

constexpr std::array<CellFunction, kLasColumnCount> kCells{
    LoadFlagCell,
    [](const LasRow& row) { return GridCell(row.inspection.path); },
    Details,
    [](const LasRow& row) { return GridCell(FileNameOf(row.inspection.path)); },
    [](const LasRow& row) { return GridCell(FolderOf(row.inspection.path)); },
    Size,
    OfFile<Version>,
    [](const LasRow& row) { return GridCell(row.layer); },
    OfCrs<Epsg>,
    [](const LasRow& row) { return GridCell(row.inspection.summary); },
    OfCrs<[](const CrsDescription& crs) { return crs.name; }>,
    OfCrs<[](const CrsDescription& crs) { return crs.verticalName; }>,
    OfCrs<Units>,
    Group,
    OfFile<Companion>,
    OfFile<Compressed>,
    OfFile<Returns>,
    OfFile<PointFormat>,
    CountOf<&LasHeader::PointRecordLength>,
    OfFile<ExtraBytesNames>,
    OfFile<HeaderText<&LasHeader::SystemIdentifier>>,
    OfFile<HeaderText<&LasHeader::GeneratingSoftware>>,
    OfFile<Created>,
    CountOf<&LasHeader::FileSourceId>,
    OfFile<HeaderText<&LasHeader::ProjectId>>,
    OfFile<GlobalEncoding>,
    CountOf<&LasHeader::HeaderSize>,
    CountOf<&LasHeader::OffsetToPoints>,
    OfFile<[](const LASFile& file) { return std::to_wstring(file.GetVLRs().size()); }>,
    OfFile<[](const LASFile& file) { return std::to_wstring(file.GetEVLRs().size()); }>,
    OfFile<CrsSource>,
    OfFile<Waveform>,
    OfFile<PointsByReturn>,
    OfFile<LasGpsTimeText>,
    Modified,
    OfFile<PointCount>,
    Density,
    Spacing,
    ShortestOf<&LasHeader::Scale, 0>,
    ShortestOf<&LasHeader::Scale, 1>,
    ShortestOf<&LasHeader::Scale, 2>,
    NumberOf<&LasHeader::Minimum, 0>,
    NumberOf<&LasHeader::Minimum, 1>,
    NumberOf<&LasHeader::Minimum, 2>,
    NumberOf<&LasHeader::Maximum, 0>,
    NumberOf<&LasHeader::Maximum, 1>,
    NumberOf<&LasHeader::Maximum, 2>,
    ShortestOf<&LasHeader::Offset, 0>,
    ShortestOf<&LasHeader::Offset, 1>,
    ShortestOf<&LasHeader::Offset, 2>,
    [](const LasRow& row) { return GridCell(std::to_wstring(row.inspection.findings.size())); },
    OfFile<Attributes>,
};

}  // namespace

GridCell LasCell(const LasRow& row, LasColumn column) {
    return kCells[static_cast<std::size_t>(column)](row);
}

std::wstring LasCellText(const LasRow& row, LasColumn column) {
    const GridCell cell = LasCell(row, column);
    if (const auto* text = std::get_if<std::wstring>(&cell)) {
        return *text;
    }
    const auto* number = std::get_if<double>(&cell);
    if (number == nullptr) {
        return {};
    }
    const wchar_t* format = LasNumberFormat(row, column);
    return FormatText(format != nullptr ? format : LasColumns()[static_cast<std::size_t>(column)].format,
                      {*number});
}

const wchar_t* LasNumberFormat(const LasRow& row, LasColumn column) {
    constexpr double kSparse = 0.1;
    if (column == LasColumn::Density) {
        const GridCell density = Density(row);
        const auto* number = std::get_if<double>(&density);
        return number != nullptr && *number < kSparse ? L"%.6f" : nullptr;
    }
    const bool horizontal = column == LasColumn::MinimumX || column == LasColumn::MinimumY ||
                            column == LasColumn::MaximumX || column == LasColumn::MaximumY;
    return horizontal && row.inspection.crs != nullptr && row.inspection.crs->isGeographic ? L"%.8lf"
                                                                                           : nullptr;
}

}  // namespace orvex
