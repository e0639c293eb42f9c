#include "host/dem/DemConversion.h"

#include <gdal_priv.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <string_view>

#include "host/dem/DemCrs.h"
#include "host/dem/DemEncoder.h"
#include "host/dem/DemRaster.h"
#include "host/dem/LasWriter.h"
#include "support/DataKinds.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/LasFormat.h"
#include "support/TemporaryFile.h"
#include "support/Text.h"

namespace orvex {
namespace {

// Two megabytes of heights at a time: more than any usual block, and still within reach of a processor's
// cache.
constexpr int kMostPixels = 1 << 18;
constexpr std::uint64_t kMostLegacyPoints = std::numeric_limits<std::uint32_t>::max();
constexpr int kFirstLargeVersion = 4;
constexpr int kFirstSyntheticVersion = 3;
constexpr int kMostNames = 100000;

/// A record with everything but its place: the only return of its pulse, never classified, and marked as made
/// by other means than a laser where the version knows that mark.
std::string BareRecord(int minorVersion, int pointFormat) {
    std::string record(las::FindPointFormat(pointFormat)->minimumLength, '\0');
    if (pointFormat >= las::kFirstExtendedFormat) {
        record[las::point_at::kReturns] = las::kOnlyReturn;
        record[las::point_at::kClassificationFlags] = las::kSyntheticFlag;
    } else {
        record[las::point_at::kReturns] = las::kLegacyOnlyReturn;
        record[las::point_at::kLegacyClassification] = minorVersion > 0 ? las::kLegacySyntheticFlag : 0;
    }
    return record;
}

struct CreationDate {
    std::uint16_t day, year;
};

CreationDate Today() {
    using namespace std::chrono;
    const auto today = floor<days>(system_clock::now());
    const year_month_day date(today);
    const auto day = (today - sys_days(date.year() / January / 1)).count() + 1;
    return {static_cast<std::uint16_t>(day), static_cast<std::uint16_t>(static_cast<int>(date.year()))};
}

void RequireFormat(const DemConversionOptions& options) {
    const auto* const version =
        std::ranges::find(las::kVersions, options.versionMinor, &las::VersionFacts::minor);
    if (version == las::kVersions.end() || options.pointFormat < 0 ||
        options.pointFormat > version->lastDemFormat) {
        throw LDataError(
            FormatText(Text(text::kDemPointFormatUnknown), {options.versionMinor, options.pointFormat}));
    }
}

/// One conversion; use once.
class DemConverter {
  public:
    DemConverter(const std::wstring& demPath, const DemConversionOptions& options, Kst::ProgressIf& progress);

    std::optional<DemConversionResult> Run();

  private:
    void DescribeCrs();
    void AdaptHeights();
    void MakeFolder() const;
    void RequireRoom() const;
    void RequirePoints(const LasPointWriter& writer) const;
    void RequireCountable(std::uint64_t points) const;
    bool WritePoints(DemEncoder& encoder, LasPointWriter& writer);
    std::optional<LasPointWriter> WriteFitting(const std::wstring& path);
    LasHeaderFields Header() const;
    std::string FrontOf(const LasHeaderFields& header) const;
    void Complete(LasPointWriter& writer);
    std::wstring Target(int number) const;
    void Commit(TemporaryFile& temporary);

    DemConversionOptions options_;
    Kst::ProgressIf& progress_;
    DemRaster raster_;
    ThinningLattice lattice_;
    std::array<AxisScale, 3> scales_;
    DemCrsRecords crs_;
    DemConversionResult result_;
};

DemConverter::DemConverter(const std::wstring& demPath, const DemConversionOptions& options,
                           Kst::ProgressIf& progress)
    : options_(options), progress_(progress), raster_(demPath), lattice_(options.thinning) {
    if (FileNameOf(options_.outputFolder).empty()) {
        options_.outputFolder = FolderOf(options_.outputFolder);  // ends with a separator
    }
    const auto ground = GroundScales(raster_);
    scales_ = {ground[0], ground[1], FirstHeightScale()};
    if (raster_.Crs() != nullptr && !options.ignoreCrs) {
        DescribeCrs();
        AdaptHeights();
    }
}

std::optional<DemConversionResult> DemConverter::Run() {
    MakeFolder();
    RequireRoom();
    TemporaryFile temporary(Target(1));
    auto writer = WriteFitting(temporary.Path());
    if (!writer) {
        return std::nullopt;
    }
    RequirePoints(*writer);
    if (raster_.ImpossibleHeights() > 0) {
        result_.warnings.push_back(
            FormatText(Text(text::kDemPixelsLeftOut), {raster_.ImpossibleHeights(), raster_.Path()}));
    }
    Complete(*writer);
    Commit(temporary);
    return std::move(result_);
}

void DemConverter::DescribeCrs() {
    crs_ = MakeCrsRecords(*raster_.Crs(), options_.versionMinor, options_.pointFormat, raster_.Path());
    result_.wkt = crs_.wkt;
    result_.warnings = crs_.warnings;
}

void DemConverter::AdaptHeights() {
    const auto metres = MetresIn(raster_.UnitName());
    const HeightUnit unit = HeightUnitOf(*raster_.Crs());
    if (!metres || unit.metres <= 0) {
        return;
    }
    const double factor = *metres / unit.metres;
    if (std::abs(factor - 1) < 1e-9) {
        return;
    }
    raster_.MultiplyHeights(factor);
    result_.warnings.push_back(
        FormatText(Text(text::kDemHeightsConverted),
                   {raster_.Path(), FromUtf8(raster_.UnitName()), FromUtf8(unit.name)}));
}

void DemConverter::MakeFolder() const {
    if (const SystemError error = CreateFolders(options_.outputFolder)) {
        throw LDataError(
            FormatText(Text(text::kDemFolderCreateFailed), {options_.outputFolder, SystemErrorText(error)}));
    }
}

// Only where the file cannot leave anything out: what it leaves out is not known before it is read.
void DemConverter::RequireRoom() const {
    if (!raster_.IsComplete()) {
        return;
    }
    const RasterWindows::Size size = raster_.Size();
    const std::uint64_t points =
        lattice_.LeastOf(static_cast<std::uint64_t>(size.width), static_cast<std::uint64_t>(size.height));
    RequireCountable(points);
    const double needed =
        static_cast<double>(points) * las::FindPointFormat(options_.pointFormat)->minimumLength;
    const auto available = FreeSpaceIn(options_.outputFolder);
    if (available && needed > static_cast<double>(*available)) {
        throw LDataError(FormatText(Text(text::kDemDiskFull),
                                    {Target(1), needed * 1e-6, static_cast<double>(*available) * 1e-6}));
    }
}

void DemConverter::RequirePoints(const LasPointWriter& writer) const {
    if (writer.Points() > 0) {
        return;
    }
    throw LDataError(options_.thinning > 1
                         ? FormatText(Text(text::kDemThinnedAway), {raster_.Path(), options_.thinning})
                         : FormatText(Text(text::kDemNoHeights), {raster_.Path()}));
}

void DemConverter::RequireCountable(std::uint64_t points) const {
    if (options_.versionMinor < kFirstLargeVersion && points > kMostLegacyPoints) {
        throw LDataError(FormatText(Text(text::kDemTooManyPoints),
                                    {raster_.Path(), kMostLegacyPoints, options_.versionMinor}));
    }
}

// The heights of a file are known only when all of it was read. Nearly always the first scale holds them;
// else the file is read a second time.
std::optional<LasPointWriter> DemConverter::WriteFitting(const std::wstring& path) {
    const std::string record = BareRecord(options_.versionMinor, options_.pointFormat);
    while (true) {
        std::optional<LasPointWriter> writer(std::in_place, path, Target(1), FrontOf(Header()), record);
        DemEncoder encoder(raster_.Transform(), scales_, lattice_);
        if (!WritePoints(encoder, *writer)) {
            return std::nullopt;
        }
        const bool hasHeights = encoder.LowestHeight() <= encoder.HighestHeight();
        const AxisScale fitting =
            hasHeights ? HeightScale(encoder.LowestHeight(), encoder.HighestHeight(), raster_.HasFractions())
                       : scales_[2];
        if (!encoder.HasOverflown() && fitting.scale >= scales_[2].scale) {
            return writer;
        }
        scales_[2] = fitting;
    }
}

bool DemConverter::WritePoints(DemEncoder& encoder, LasPointWriter& writer) {
    const RasterWindows::Size size = raster_.Size();
    progress_.SetRange(static_cast<std::uint64_t>(size.width) * static_cast<std::uint64_t>(size.height));
    std::uint64_t done = 0;
    std::vector<double> heights;
    RasterWindows windows = raster_.StartReading(kMostPixels);
    while (const auto window = windows.Next()) {
        if (progress_.IsCancelled()) {
            return false;
        }
        if (raster_.Read(*window, heights)) {
            encoder.Encode(*window, heights, writer);
        }
        RequireCountable(writer.Points());
        done += window->Pixels();
        progress_.SetPosition(done);
    }
    return true;
}

LasHeaderFields DemConverter::Header() const {
    const las::PointFormatFacts& format = *las::FindPointFormat(options_.pointFormat);
    const CreationDate today = Today();
    LasHeaderFields header;
    header.minorVersion = options_.versionMinor;
    header.pointFormat = options_.pointFormat;
    header.recordLength = format.minimumLength;
    header.globalEncoding = static_cast<std::uint16_t>(
        (format.hasGpsTime ? las::encoding::kStandardGpsTime : 0) |
        (options_.versionMinor >= kFirstSyntheticVersion ? las::encoding::kSyntheticReturns : 0) |
        (crs_.isWkt || options_.pointFormat >= las::kFirstExtendedFormat ? las::encoding::kWkt : 0));
    header.systemIdentifier = "Orvex elevation raster";
    header.generatingSoftware = "Orvex DEM to LAS";
    header.creationDay = today.day;
    header.creationYear = today.year;
    header.recordCount = static_cast<std::uint32_t>(crs_.records.size());
    for (std::size_t axis = 0; axis < scales_.size(); ++axis) {
        header.scale[axis] = scales_[axis].scale;
        header.offset[axis] = scales_[axis].offset;
    }
    return header;
}

/// Everything before the points.
std::string DemConverter::FrontOf(const LasHeaderFields& header) const {
    std::string records;
    for (const std::string& record : crs_.records) {
        records += record;
    }
    records += LasPointsMark(options_.versionMinor);
    LasHeaderFields placed = header;
    placed.offsetToPoints = LasHeaderSize(options_.versionMinor) + static_cast<std::uint32_t>(records.size());
    return LasHeaderBytes(placed) + records;
}

void DemConverter::Complete(LasPointWriter& writer) {
    LasHeaderFields header = Header();
    header.points = writer.Points();
    for (std::size_t axis = 0; axis < scales_.size(); ++axis) {
        // The sums that a reader of the points makes.
        header.min[axis] = writer.Low()[axis] * header.scale[axis] + header.offset[axis];
        header.max[axis] = writer.High()[axis] * header.scale[axis] + header.offset[axis];
    }
    writer.Finish(FrontOf(header));
    result_.points = header.points;
    result_.min = header.min;
    result_.max = header.max;
}

std::wstring DemConverter::Target(int number) const {
    const std::wstring& path = raster_.Path();
    const std::wstring name =
        IsNamedByFolder(path) ? FileNameOf(FolderOf(path)) : WithExtension(FileNameOf(path), L"");
    const std::wstring suffix = number > 1 ? L" (" + std::to_wstring(number) + L")" : L"";
    // Joined as paths, long names would lose their folder on Windows.
    return NativePath(options_.outputFolder + L"/" + name + suffix + L".las");
}

void DemConverter::Commit(TemporaryFile& temporary) {
    bool taken = true;
    for (int number = 1; taken; ++number) {
        result_.lasPath = Target(number);
        const SystemError error = temporary.CommitTo(result_.lasPath, taken);
        if (error != 0 && (!taken || number == kMostNames)) {
            throw LDataError(
                FormatText(Text(text::kDemWriteFailed), {result_.lasPath, SystemErrorText(error)}));
        }
    }
}

}  // namespace

int MinorVersionOfItem(std::int32_t demLasVersion) {
    const las::VersionFacts* const version = las::FindVersion(demLasVersion);
    return version == nullptr ? las::kVersions.back().minor : version->minor;
}

std::optional<DemConversionResult> ConvertDem(const std::wstring& demPath,
                                              const DemConversionOptions& options,
                                              Kst::ProgressIf& progress) {
    RequireFormat(options);
    return DemConverter(demPath, options, progress).Run();
}

}  // namespace orvex
