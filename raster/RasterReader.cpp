#include "raster/RasterReader.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

#include "raster/GdalMetadata.h"
#include "raster/GeoKeys.h"
#include "raster/Georeference.h"
#include "raster/RasterBands.h"
#include "raster/RasterDrivers.h"
#include "raster/RasterFindings.h"
#include "raster/RasterSidecars.h"
#include "raster/TiffStructure.h"
#include "raster/VrtDocument.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/GdalAccess.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::size_t kStartBytes = 4096;

/// The first bytes of a regular file that is not empty.
std::string ReadStart(const std::wstring& path) {
    const FileKind kind = KindOf(path);
    if (kind == FileKind::Folder) {
        throw LDataError(Text(text::kRasterIsFolder));
    }
    if (kind == FileKind::Missing) {
        throw LDataError(Text(text::kFileMissing));
    }
    if (kind == FileKind::Other) {
        throw LDataError(Text(text::kRasterNotRegularFile));
    }
    std::ifstream file(ToPath(path), std::ios::binary);
    std::array<char, kStartBytes> bytes{};
    file.read(bytes.data(), bytes.size());
    if (!file.is_open() || file.bad()) {
        throw LDataError(Text(text::kFileOpenRefused));
    }
    if (file.gcount() == 0) {
        throw LDataError(Text(text::kRasterFileEmpty));
    }
    return {bytes.data(), static_cast<std::size_t>(file.gcount())};
}

/// An absolute path, which GDAL takes for a local file: "WMS:a" means more to it.
std::wstring Absolute(const std::wstring& path) {
    std::error_code ignored;
    const std::filesystem::path given = ToPath(path);
    return given.is_absolute() ? path : FromPath(std::filesystem::absolute(given, ignored));
}

/// Metadata items with the time of acquisition. A TIFF's own time, that of its creation, comes last.
constexpr struct {
    const char* name;
    const char* domain;
} kTimeItems[] = {{"ACQUISITIONDATETIME", "IMAGERY"},
                  {"EXIF_DateTimeOriginal", nullptr},
                  {"NITF_IDATIM", nullptr},
                  {"EXIF_DateTime", nullptr},
                  {"TIFFTAG_DATETIME", nullptr}};

std::wstring Acquired(GDALDatasetH dataset) {
    for (const auto& item : kTimeItems) {
        if (std::wstring time = MetadataText(dataset, item.name, item.domain); !time.empty()) {
            return time;
        }
    }
    return {};
}

void ReadFormat(GDALDatasetH dataset, const GeoKeyFacts* known, RasterProperties& properties) {
    GDALDriverH driver = GDALGetDatasetDriver(dataset);
    properties.driver = GdalText(GDALGetDriverShortName(driver));
    properties.format = GdalText(GDALGetDriverLongName(driver));
    properties.compression = MetadataText(dataset, "COMPRESSION", "IMAGE_STRUCTURE");
    properties.interleave = MetadataText(dataset, "INTERLEAVE", "IMAGE_STRUCTURE");
    properties.pixelIs = known != nullptr ? known->pixelIs : MetadataText(dataset, "AREA_OR_POINT", nullptr);
    properties.acquired = Acquired(dataset);
}

void ReadSize(GDALDatasetH dataset, RasterProperties& properties) {
    properties.width = GDALGetRasterXSize(dataset);
    properties.height = GDALGetRasterYSize(dataset);
    // A container of several images opens without one of its own.
    if (properties.width < 1 || properties.height < 1 || GDALGetRasterCount(dataset) < 1) {
        throw LDataError(Text(text::kRasterNoImage));
    }
}

GdalDataset Open(const std::string& name, const GdalList& drivers) {
    return GdalDataset(
        GDALOpenEx(name.c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY, drivers.Get(), nullptr, nullptr));
}

/// The overview file that a dataset names in its metadata, wherever that lies; empty if none. GDAL opens it
/// with any driver when it is asked for overviews.
std::wstring NamedOverviews(GDALDatasetH dataset) {
    return MetadataText(dataset, "OVERVIEW_FILE", "OVERVIEWS");
}

/// The same for the .aux files in which GDAL looks for overviews.
std::wstring OverviewsNamedBeside(const std::wstring& path) {
    const std::wstring stem = WithExtension(path, {});
    std::wstring named;
    for (const std::wstring& aux : {stem + L".aux", stem + L".AUX", path + L".aux", path + L".AUX"}) {
        if (named.empty() && FileExists(aux)) {
            const GdalErrorScope ignored;
            const GdalAccess access(aux);
            const GdalDataset dataset = Open(access.Name(), GdalList({"HFA"}));
            named = dataset ? NamedOverviews(dataset.get()) : std::wstring();
        }
    }
    return named;
}

/// Levels in an overview file, opened as a raster of its own; 0 if it cannot be read.
int LevelsIn(const std::wstring& path, const char* driver) {
    if (!FileExists(path)) {
        return 0;
    }
    const GdalErrorScope ignored;
    const GdalAccess access(path);
    const GdalDataset dataset = Open(access.Name(), GdalList({driver}));
    if (!dataset || GDALGetRasterCount(dataset.get()) < 1 || !NamedOverviews(dataset.get()).empty()) {
        return 0;
    }
    return 1 + GDALGetOverviewCount(GDALGetRasterBand(dataset.get(), 1));
}

/// Counts the levels of the .ovr file, which GDAL does not see.
void ReadOverviewFile(const std::wstring& path, RasterProperties& properties) {
    // JPEG files of any size can be read at lower resolutions; levels in a file go before that.
    const bool hasOwn = properties.overviews > 0 && properties.driver != L"JPEG";
    const int levels = hasOwn ? 0 : LevelsIn(path + L".ovr", "GTiff");
    if (levels > 0) {
        properties.overviews = levels;
        std::vector<RasterBandProperties> bands = properties.bandDetails;
        for (RasterBandProperties& band : bands) {
            band.overviews = levels;
        }
        properties.bandDetails = std::move(bands);
    }
}

/// The text with the name in it; empty if there is no name.
std::wstring Naming(StringId text, const std::wstring& name) {
    return name.empty() ? name : FormatText(Text(text), {name});
}

GeoKeyFacts GeoKeyFactsOf(const RasterProperties& properties) {
    return {properties.pixelIs, properties.bandDetails->empty() ? L"" : properties.bandDetails->front().unit,
            properties.wkt, properties.linearUnit, properties.projectionCode};
}

RasterProperties Describe(GDALDatasetH dataset, const std::wstring& path, const GdalErrorScope& errors) {
    RasterProperties properties;
    ReadSize(dataset, properties);
    // Asking for overviews opens the files that a VRT, or the overview file that any raster, names; so does
    // asking for the files beside it.
    const std::wstring inFile = NamedOverviews(dataset);
    const std::wstring named = inFile.empty() ? OverviewsNamedBeside(path) : inFile;
    const std::string keys = named.empty() ? ReadGeoKeys(dataset, path) : std::string();
    GeoKeyFacts facts;
    const GeoKeyFacts* const known = FindGeoKeyFacts(keys, facts) ? &facts : nullptr;
    ReadFormat(dataset, known, properties);
    const bool onlyStated = properties.driver == L"VRT" || !named.empty();
    ReadBands(dataset, onlyStated, known, properties);
    ReadColors(dataset, path, properties);
    ReadGeoreference(dataset, known, properties);
    if (known == nullptr && errors.Messages().empty()) {
        KeepGeoKeyFacts(keys, GeoKeyFactsOf(properties));
    }
    properties.totalBytes = FileSizeOf(path).value_or(0);
    if (!onlyStated) {
        std::wstring fault = CheckTiffBlocks(dataset, properties.totalBytes);
        if (!fault.empty()) {
            properties.warnings.insert(properties.warnings.begin(), std::move(fault));
        }
        ReadOverviewFile(path, properties);
        ReadSidecars(dataset, path, properties);
    }
    if (!named.empty()) {
        properties.warnings.push_back(Naming(text::kRasterOverviewsElsewhere, named));
    }
    properties.hasDetails = true;
    return properties;
}

/// Opens the file under the name, which may be its name in a GdalAccess.
GdalDataset Open(const std::wstring& path, const std::string& name, const GdalList& drivers,
                 const GdalErrorScope& errors) {
    GdalDataset dataset = Open(name, drivers);
    if (!dataset) {
        const std::wstring reason = PlainReason(errors.Messages());
        throw LDataError(reason.empty() ? MissingDriverReason(path) : reason);
    }
    return dataset;
}

RasterProperties Read(const std::wstring& path, const GdalAccess& access, const GdalErrorScope& errors) {
    const VrtSources sources = CheckVrt(path, ReadStart(path));
    const GdalDataset dataset = Open(path, access.Name(), *RasterDrivers().describing, errors);
    RasterProperties properties = Describe(dataset.get(), path, errors);
    std::vector<std::wstring> texts{access.Refusal(), Naming(text::kRasterPixelsElsewhere, sources.distant),
                                    Naming(text::kRasterReferencedFileMissing, sources.missing)};
    std::ranges::move(PlainMessages(errors.Messages()), std::back_inserter(texts));
    std::ranges::copy_if(texts, std::back_inserter(properties.warnings),
                         [](const std::wstring& text) { return !text.empty(); });
    return properties;
}

}  // namespace

GdalDataset OpenRaster(const std::wstring& path, const GdalErrorScope& errors) {
    const std::wstring file = Absolute(path);
    // What is refused within the limits is not opened without them.
    ReadRasterProperties(file);
    const std::wstring distant = CheckVrt(file, ReadStart(file)).distant;
    const std::string name = ToUtf8(file);
    GdalDataset dataset =
        Open(path, name.starts_with("/vsi") ? "/." + name : name, *RasterDrivers().reading, errors);
    for (const std::wstring& elsewhere :
         {Naming(text::kRasterPixelsElsewhere, distant),
          Naming(text::kRasterOverviewsElsewhere, NamedOverviews(dataset.get()))}) {
        if (!elsewhere.empty()) {
            throw LDataError(elsewhere);
        }
    }
    return dataset;
}

RasterProperties ReadRasterProperties(const std::wstring& path) {
    const GdalErrorScope errors;
    const GdalAccess access(Absolute(path));
    // GDAL passes some CRSs on as text; a process may be set to a format that loses heights.
    const GdalOption format("OSR_WKT_FORMAT", "WKT2_2019");
    try {
        return Read(Absolute(path), access, errors);
    } catch (const LDataError&) {
        // What GDAL reports then follows from it.
        if (!access.Refusal().empty()) {
            throw LDataError(access.Refusal());
        }
        throw;
    }
}

}  // namespace orvex
