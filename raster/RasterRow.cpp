#include "raster/RasterRow.h"

#include <algorithm>
#include <deque>
#include <mutex>
#include <utility>

#include "crs/GdalSetup.h"
#include "orvexcommon/Geocoding.h"
#include "raster/Georeference.h"
#include "raster/RasterReader.h"
#include "support/Files.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

RasterProperties ReadOurselves(const std::wstring& path) {
    if (!EnsureGdal()) {
        throw LDataError(Text(text::kRasterProgramFilesMissing));
    }
    return ReadRasterProperties(path);
}

/// What the host's object says, with what it leaves out as our own reader finds it.
RasterProperties WithDetails(RasterProperties told, const std::wstring& path) {
    RasterProperties properties;
    try {
        properties = ReadOurselves(path);
    } catch (...) {
        // The host may know formats that we do not.
        return told;
    }
    static_cast<RasterEssentials&>(properties) = std::move(told);
    return properties;
}

RasterProperties Read(const std::wstring& path, const RasterInformationMaker& maker) {
    std::int32_t result = kHostClassNotRegistered;
    const auto object = maker ? maker(result) : nullptr;
    if (!object) {
        return ReadOurselves(path);
    }
    RasterProperties properties;
    std::wstring reason;
    result = object->Describe(path, properties, reason);
    if (result < kHostOk) {
        throw LDataError(reason);
    }
    return properties.hasDetails ? properties : WithDetails(std::move(properties), path);
}

/// The bands of the rasters inspected last. The files of a folder mostly have the same, which would be the
/// most of what a row keeps.
class LatestBands {
  public:
    using Bands = Shared<std::vector<RasterBandProperties>>;

    /// Replaces bands by equal ones that other rows have.
    void Share(Bands& bands) {
        const std::lock_guard guard(lock_);
        const auto known = std::ranges::find(latest_, bands);
        if (known != latest_.end()) {
            bands = *known;
            return;
        }
        latest_.push_front(bands);
        latest_.resize(std::min(latest_.size(), kKept));
    }

  private:
    static constexpr std::size_t kKept = 16;

    std::mutex lock_;
    std::deque<Bands> latest_;
};

/// Has the row share what others have as well: bands, and the text of its CRS.
void ShareWithOthers(RasterRow& row) {
    // Never destroyed: a worker may still ask while the process ends.
    static auto* const latest = new LatestBands;
    RasterProperties& properties = row.file->properties;
    latest->Share(properties.bandDetails);
    if (*properties.wkt == row.crs->sourceWkt) {
        properties.wkt = Shared(std::shared_ptr<const std::string>(row.crs, &row.crs->sourceWkt));
    }
}

void Inspect(RasterRow& row, RasterUse use, const RasterInformationMaker& maker) {
    auto file = std::make_unique<RasterFile>();
    file->path = row.path;
    file->properties = Read(row.path, maker);
    if (file->properties.width < 1 || file->properties.height < 1) {
        throw LDataError(Text(text::kRasterNoImage));
    }
    row.file = std::move(file);
    row.loadable = true;
    row.unit = RasterUnitText(row.Properties().linearUnit);
    row.crs = DescribeCrs(*row.Properties().wkt);
    ShareWithOthers(row);
    std::wstring reason;
    Is_BigTIFF(row.path, row.file->bigTiff, reason);
    row.findings = ValidateRaster(row.Properties(), *row.crs, use);
    row.summary = SummaryOf(row.findings);
}

/// The row of a file that cannot be described: what is wrong with it, and nothing else.
void Refuse(RasterRow& row, const std::wstring& reason) {
    row.loadable = false;
    row.file.reset();
    row.unit.clear();
    row.crs = DescribeCrs({});
    row.summary = Text(text::kRasterCannotBeRead) + L" " +
                  (reason.empty() ? Text(text::kRasterDamagedOrUnsupported) : reason);
    row.findings = {{FindingSeverity::Error, row.summary, "unreadable"}};
}

/// After an exception that says nothing about the file. What was found out before it stays.
void NoteException(RasterRow& row, const std::wstring& message) {
    row.threw = true;
    if (!row.loadable) {
        Refuse(row, message);
        return;
    }
    row.summary = Text(text::kRasterPropertiesFailed) + L": " + message;
    row.findings = {{FindingSeverity::Warning, row.summary, "properties-unreadable"}};
}

}  // namespace

RasterRow InspectRasterFile(const std::wstring& path, RasterUse use, const RasterInformationMaker& maker) {
    RasterRow row;
    row.path = path;
    row.crs = DescribeCrs({});
    row.modifiedMs = ModifiedMs(path);
    row.fileSize = FileSizeOf(path).value_or(0);
    try {
        Inspect(row, use, maker);
    } catch (const LDataError& error) {
        Refuse(row, error.Text());
    } catch (...) {
        NoteException(row, CurrentExceptionText());
    }
    return row;
}

RasterRow UnreadRasterFile(const std::wstring& path, const std::wstring& message) {
    RasterRow row;
    row.path = path;
    NoteException(row, message);
    return row;
}

LoadFlag LoadFlagOf(const RasterRow& row) {
    return LoadFlagFor(row.IsDescribed(), row.findings, row.place);
}

std::wstring FindingsText(const RasterRow& row) {
    return StateLines(row);
}

void AssignLayers(std::vector<RasterRow>& rows, const std::map<std::wstring, std::wstring>& existing,
                  const LayerRules& rules, bool ignoreCrs, const std::wstring& prefix) {
    const CrsPtr none = DescribeCrs({});
    std::vector<CrsPtr> files;
    files.reserve(rows.size());
    for (const RasterRow& row : rows) {
        files.push_back(!row.IsDescribed() ? nullptr : ignoreCrs ? none : row.crs);
    }
    TakePlaces(rows, PlaceInLayers(files, existing, rules, prefix));
}

}  // namespace orvex
