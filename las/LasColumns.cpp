#include "las/LasColumns.h"

#include <bit>
#include <chrono>
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
    return Text(value ? 40610_lsid : 40611_lsid);
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
    return crs.epsg == 0 ? std::wstring() : FormatText(L"EPSG:%d", {crs.epsg});
}

std::wstring Units(const CrsDescription& crs) {
    return crs.isGeographic ? crs.angularUnits : crs.linearUnits;
}

GridCell Group(const LasRow& row) {
    return row.place.group == 0 ? GridCell() : GridCell(std::to_wstring(row.place.group));
}

std::wstring Companion(const LASFile& file) {
    switch (file.GetCompanionStatus()) {
        case 2:
            return Text(40613_lsid);
        case 3:
        case 6:
            return Text(40614_lsid);
        default:
            return Text(40612_lsid);
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
        return Text(40615_lsid);
    }
    return Text(hasGeoKeys ? 40616_lsid : 40612_lsid);
}

std::wstring Waveform(const LASFile& file) {
    constexpr unsigned kInternal = 0x2;
    constexpr unsigned kExternal = 0x4;
    const unsigned encoding = file.Header().GlobalEncoding();
    if ((encoding & kInternal) != 0) {
        return Text(40617_lsid);
    }
    return Text((encoding & kExternal) != 0 ? 40618_lsid : 40612_lsid);
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
    add(facts->hasGpsTime, 40580_lsid);
    add(facts->hasColor, 40619_lsid);
    add(facts->hasNearInfrared, 40620_lsid);
    add(facts->hasWaveform, 40578_lsid);
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
     {.tooltip = FindingsText, .icon = [](const LasRow& row) { return LoadFlagImage(LoadFlagOf(row)); }}},
    {{.name = "path", .hidden = true}, [](const LasRow& row) { return GridCell(row.path); }},
    {{.name = "details", .hidden = true}, Address},
    {{.name = "fileName", .caption = 40550_lsid, .basic = true, .frozen = true, .footer = FooterKind::Count},
     [](const LasRow& row) { return GridCell(FileNameOf(row.path)); },
     {.tooltip = PathText}},
    {{.name = "folder", .caption = 40551_lsid, .maximumWidth = 400},
     [](const LasRow& row) { return GridCell(FolderOf(row.path)); },
     {.tooltip = PathText}},
    {{.name = "size",
      .caption = 40552_lsid,
      .kind = CellKind::Number,
      .format = kMegabytes,
      .tooltip = 13481_lsid,
      .basic = true,
      .footer = FooterKind::Sum},
     Size},
    {{.name = "version", .caption = 40553_lsid, .basic = true}, OfFile<Version>},
    {{.name = "layer",
      .caption = 40554_lsid,
      .width = 150,
      .tooltip = 40599_lsid,
      .basic = true,
      .minimumWidth = 150},
     [](const LasRow& row) { return GridCell(row.place.layer); }},
    {{.name = "epsg", .caption = 40555_lsid, .basic = true}, OfCrs<Epsg>},
    {{.name = "state", .caption = 40556_lsid, .basic = true, .maximumWidth = 1000},
     [](const LasRow& row) { return GridCell(row.summary); },
     {.tooltip = FindingsText}},
    {{.name = "crsName", .caption = 40557_lsid, .basic = true, .maximumWidth = 400},
     OfCrs<[](const CrsDescription& crs) { return crs.name; }>},
    {{.name = "verticalCrs", .caption = 40558_lsid, .maximumWidth = 300},
     OfCrs<[](const CrsDescription& crs) { return crs.verticalName; }>},
    {{.name = "units", .caption = 40559_lsid}, OfCrs<Units>},
    {{.name = "group", .caption = 40560_lsid, .tooltip = 13480_lsid}, Group},
    {{.name = "companion", .caption = 40561_lsid, .tooltip = 3378_lsid}, OfFile<Companion>},
    {{.name = "compressed", .caption = 40562_lsid, .tooltip = 3212_lsid}, OfFile<Compressed>},
    {{.name = "returns", .caption = 40563_lsid, .tooltip = 40600_lsid}, OfFile<Returns>},
    {{.name = "pointFormat",
      .caption = 40564_lsid,
      .align = HeaderAlign::Centre,
      .tooltip = 40601_lsid,
      .basic = true},
     OfFile<PointFormat>},
    {{.name = "recordLength", .caption = 40565_lsid, .tooltip = 40602_lsid},
     CountOf<&LasHeader::PointRecordLength>},
    {{.name = "extraBytes", .caption = 40566_lsid, .tooltip = 40603_lsid, .maximumWidth = 300},
     OfFile<ExtraBytesNames>},
    {{.name = "systemId", .caption = 40567_lsid}, OfFile<HeaderText<&LasHeader::SystemIdentifier>>},
    {{.name = "software", .caption = 40568_lsid}, OfFile<HeaderText<&LasHeader::GeneratingSoftware>>},
    {{.name = "created", .caption = 40569_lsid}, OfFile<Created>},
    {{.name = "sourceId", .caption = 40570_lsid}, CountOf<&LasHeader::FileSourceId>},
    {{.name = "projectId", .caption = 40571_lsid}, OfFile<HeaderText<&LasHeader::ProjectId>>},
    {{.name = "globalEncoding", .caption = 40572_lsid}, OfFile<GlobalEncoding>},
    {{.name = "headerSize", .caption = 40573_lsid}, CountOf<&LasHeader::HeaderSize>},
    {{.name = "offsetToPoints", .caption = 40574_lsid}, CountOf<&LasHeader::OffsetToPoints>},
    {{.name = "vlrCount", .caption = 40575_lsid},
     OfFile<[](const LASFile& file) { return std::to_wstring(file.GetVLRs().size()); }>},
    {{.name = "evlrCount", .caption = 40576_lsid},
     OfFile<[](const LASFile& file) { return std::to_wstring(file.GetEVLRs().size()); }>},
    {{.name = "crsSource", .caption = 40577_lsid, .tooltip = 40604_lsid}, OfFile<CrsSource>},
    {{.name = "waveform", .caption = 40578_lsid}, OfFile<Waveform>},
    {{.name = "pointsByReturn", .caption = 40579_lsid, .maximumWidth = 300}, OfFile<PointsByReturn>},
    {{.name = "gpsTime", .caption = 40580_lsid, .tooltip = 13482_lsid}, OfFile<LasGpsTimeText>},
    {{.name = "modified", .caption = 40581_lsid}, Modified},
    {{.name = "points",
      .caption = 40582_lsid,
      .kind = CellKind::Number,
      .format = kCount,
      .align = kRight,
      .basic = true,
      .footer = FooterKind::Sum},
     OfFile<PointCount>},
    {{.name = "density",
      .caption = 40583_lsid,
      .kind = CellKind::Number,
      .format = L"%.2f",
      .align = kRight,
      .tooltip = 40605_lsid},
     Density,
     {.format = DensityFormat}},
    {{.name = "spacing",
      .caption = 40584_lsid,
      .kind = CellKind::Number,
      .format = L"%.3f",
      .align = kRight,
      .tooltip = 40606_lsid},
     Spacing},
    {{.name = "scaleX", .caption = 40585_lsid, .align = kRight}, ShortestOf<&LasHeader::Scale, 0>},
    {{.name = "scaleY", .caption = 40586_lsid, .align = kRight}, ShortestOf<&LasHeader::Scale, 1>},
    {{.name = "scaleZ", .caption = 40587_lsid, .align = kRight}, ShortestOf<&LasHeader::Scale, 2>},
    {{.name = "minimumX",
      .caption = 40588_lsid,
      .kind = CellKind::Number,
      .format = kCoordinate,
      .align = kRight},
     NumberOf<&LasHeader::Minimum, 0>,
     {.format = HorizontalFormat}},
    {{.name = "minimumY",
      .caption = 40589_lsid,
      .kind = CellKind::Number,
      .format = kCoordinate,
      .align = kRight},
     NumberOf<&LasHeader::Minimum, 1>,
     {.format = HorizontalFormat}},
    {{.name = "minimumZ",
      .caption = 40590_lsid,
      .kind = CellKind::Number,
      .format = kCoordinate,
      .align = kRight},
     NumberOf<&LasHeader::Minimum, 2>},
    {{.name = "maximumX",
      .caption = 40591_lsid,
      .kind = CellKind::Number,
      .format = kCoordinate,
      .align = kRight},
     NumberOf<&LasHeader::Maximum, 0>,
     {.format = HorizontalFormat}},
    {{.name = "maximumY",
      .caption = 40592_lsid,
      .kind = CellKind::Number,
      .format = kCoordinate,
      .align = kRight},
     NumberOf<&LasHeader::Maximum, 1>,
     {.format = HorizontalFormat}},
    {{.name = "maximumZ",
      .caption = 40593_lsid,
      .kind = CellKind::Number,
      .format = kCoordinate,
      .align = kRight},
     NumberOf<&LasHeader::Maximum, 2>},
    {{.name = "offsetX", .caption = 40594_lsid}, ShortestOf<&LasHeader::Offset, 0>},
    {{.name = "offsetY", .caption = 40595_lsid}, ShortestOf<&LasHeader::Offset, 1>},
    {{.name = "offsetZ", .caption = 40596_lsid}, ShortestOf<&LasHeader::Offset, 2>},
    {{.name = "findingCount", .caption = 40597_lsid},
     [](const LasRow& row) { return GridCell(std::to_wstring(row.findings.size())); },
     {.tooltip = FindingsText}},
    {{.name = "attributes", .caption = 40598_lsid, .tooltip = 40607_lsid}, OfFile<Attributes>},
};

}  // namespace

std::span<const Column<LasRow>> LasColumns() {
    return kColumns;
}

}  // namespace orvex
