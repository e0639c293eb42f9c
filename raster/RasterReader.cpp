#include "raster/RasterReader.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <utility>

#include "raster/GdalMetadata.h"
#include "raster/Georeference.h"
#include "raster/RasterBands.h"
#include "raster/RasterDrivers.h"
#include "raster/RasterFindings.h"
#include "raster/RasterSidecars.h"
#include "raster/TiffStructure.h"
#include "support/Files.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::size_t kFoldersKept = 4;
constexpr std::size_t kStartBytes = 4096;
constexpr std::size_t kRootWithin = 1024;  ///< bytes in which GDAL looks for the root element of a VRT

/// The first bytes of a regular file that is not empty.
std::string ReadStart(const std::wstring& path) {
    const FileKind kind = KindOf(path);
    if (kind == FileKind::Folder) {
        throw LDataError(Text(text::kRasterIsFolder));
    }
    if (kind != FileKind::File) {
        throw LDataError(
            Text(kind == FileKind::Missing ? text::kRasterFileMissing : text::kRasterNotRegularFile));
    }
    std::ifstream file(ToPath(path), std::ios::binary);
    std::array<char, kStartBytes> bytes{};
    file.read(bytes.data(), bytes.size());
    if (!file.is_open() || file.bad()) {
        throw LDataError(Text(text::kRasterOpenRefused));
    }
    if (file.gcount() == 0) {
        throw LDataError(Text(text::kRasterFileEmpty));
    }
    return {bytes.data(), static_cast<std::size_t>(file.gcount())};
}

/// True if GDAL would take the file for a VRT of a subclass (such as a warped one), which opens the files it
/// names as soon as it is opened. A plain mosaic does not.
bool IsComputedVrt(std::string_view start) {
    const std::size_t root = start.substr(0, kRootWithin).find("<VRTDataset");
    if (root == std::string_view::npos) {
        return false;
    }
    const std::size_t end = start.find('>', root);
    const std::string_view tag = start.substr(root, end - root);
    return tag.find("subClass") != std::string_view::npos || end == std::string_view::npos;
}

/// An absolute path that GDAL takes for a local file: "WMS:a" and "/vsicurl/a" mean more to it.
std::string GdalName(const std::wstring& path) {
    const std::filesystem::path given = ToPath(path);
    std::string name = ToUtf8(given.is_absolute() ? path : FromPath(std::filesystem::absolute(given)));
    return name.starts_with("/vsi") ? "/." + name : name;
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

void ReadFormat(GDALDatasetH dataset, RasterProperties& properties) {
    GDALDriverH driver = GDALGetDatasetDriver(dataset);
    properties.driver = GdalText(GDALGetDriverShortName(driver));
    properties.format = GdalText(GDALGetDriverLongName(driver));
    properties.compression = MetadataText(dataset, "COMPRESSION", "IMAGE_STRUCTURE");
    properties.interleave = MetadataText(dataset, "INTERLEAVE", "IMAGE_STRUCTURE");
    properties.pixelIs = MetadataText(dataset, "AREA_OR_POINT", nullptr);
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

RasterProperties Describe(GDALDatasetH dataset, const std::wstring& path) {
    RasterProperties properties;
    ReadSize(dataset, properties);
    ReadFormat(dataset, properties);
    // Asking a VRT for more than it states opens the files that it names, wherever they are.
    const bool isVrt = properties.driver == L"VRT";
    ReadBands(dataset, isVrt, properties);
    ReadColors(dataset, path, properties);
    ReadGeoreference(dataset, properties);
    const std::uint64_t fileSize = FileSizeOf(path).value_or(0);
    properties.totalBytes = fileSize;
    if (!isVrt) {
        ReadSidecars(dataset, path, properties);
    }
    if (std::wstring fault = CheckTiffBlocks(dataset, fileSize); !fault.empty()) {
        properties.warnings.insert(properties.warnings.begin(), std::move(fault));
    }
    properties.hasDetails = true;
    return properties;
}

}  // namespace

GdalDataset OpenRaster(const std::wstring& path, const GdalErrorScope& errors) {
    // Never destroyed: a worker may still ask while the process ends.
    static auto* const folders = new FolderListing(kFoldersKept);
    if (IsComputedVrt(ReadStart(path))) {
        throw LDataError(Text(text::kRasterIsVrt));
    }
    const GdalListPtr drivers = RasterDrivers();
    const GdalListPtr siblings = folders->Beside(path);
    GdalDataset dataset(GDALOpenEx(GdalName(path).c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY, drivers->Get(),
                                   nullptr, siblings ? siblings->Get() : nullptr));
    if (!dataset) {
        const std::wstring reason = PlainReason(errors.Messages());
        throw LDataError(reason.empty() ? MissingDriverReason(path) : reason);
    }
    return dataset;
}

RasterProperties ReadRasterProperties(const std::wstring& path) {
    const GdalErrorScope errors;
    const NoNetwork noNetwork;
    // The TIFF driver ignores the list of siblings and lists the folder of each file anew, unless it holds
    // more files than this; then it looks for each possible sidecar by name.
    const GdalOption fewListed("GDAL_READDIR_LIMIT_ON_OPEN", "64");
    const GdalDataset dataset = OpenRaster(path, errors);
    RasterProperties properties = Describe(dataset.get(), path);
    for (std::wstring& text : PlainMessages(errors.Messages())) {
        properties.warnings.push_back(std::move(text));
    }
    return properties;
}

}  // namespace orvex
