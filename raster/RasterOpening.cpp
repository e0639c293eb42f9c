#include "raster/RasterOpening.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <string_view>

#include "raster/FolderListing.h"
#include "raster/MissingReader.h"
#include "raster/RasterDrivers.h"
#include "raster/RasterWarnings.h"
#include "support/Files.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::size_t kFoldersKept = 4;
constexpr std::size_t kStartBytes = 4096;
constexpr std::size_t kRootWithin = 1024;  ///< where GDAL looks for the root of a VRT

/// The first bytes of a file that is there and can be read.
std::string ReadStart(const std::wstring& path) {
    const FileKind kind = KindOf(path);
    if (kind == FileKind::Folder) {
        throw LDataError(Text(41201_lsid));
    }
    if (kind != FileKind::File) {
        throw LDataError(Text(kind == FileKind::Missing ? 41202_lsid : 41204_lsid));
    }
    std::ifstream file(ToPath(path), std::ios::binary);
    std::array<char, kStartBytes> bytes{};
    file.read(bytes.data(), bytes.size());
    if (!file.is_open() || file.bad()) {
        throw LDataError(Text(41203_lsid));
    }
    if (file.gcount() == 0) {
        throw LDataError(Text(41200_lsid));
    }
    return {bytes.data(), static_cast<std::size_t>(file.gcount())};
}

/// Whether GDAL would take the file for a VRT of a kind that opens the files it names while it is opened
/// itself (a warped one does; a plain mosaic does not).
bool IsComputedVrt(std::string_view start) {
    const std::size_t root = start.substr(0, kRootWithin).find("<VRTDataset");
    if (root == std::string_view::npos) {
        return false;
    }
    const std::string_view tag = start.substr(root, start.find('>', root) - root);
    return tag.find("subClass") != std::string_view::npos || start.find('>', root) == std::string_view::npos;
}

/// The name that means the file and nothing else to GDAL, to which "WMS:a" and "/vsicurl/a" mean more.
std::string GdalName(const std::wstring& path) {
    const std::filesystem::path given = ToPath(path);
    std::string name = ToUtf8(given.is_absolute() ? path : FromPath(std::filesystem::absolute(given)));
    return name.starts_with("/vsi") ? "/." + name : name;
}

}  // namespace

GdalDataset OpenRaster(const std::wstring& path) {
    // Never destroyed: a worker may still ask while the process ends.
    static auto* const folders = new FolderListing(kFoldersKept);
    if (IsComputedVrt(ReadStart(path))) {
        throw LDataError(Text(41207_lsid));
    }
    const GdalListPtr drivers = RasterDrivers();
    const GdalListPtr siblings = folders->Beside(path);
    return GdalDataset(GDALOpenEx(GdalName(path).c_str(), GDAL_OF_RASTER | GDAL_OF_READONLY, drivers->Get(),
                                  nullptr, siblings ? siblings->Get() : nullptr));
}

std::wstring WhyNotOpened(const std::wstring& path, const std::vector<std::string>& messages) {
    const std::wstring reason = PlainReason(messages);
    return reason.empty() ? MissingReaderReason(path) : reason;
}

bool IsPutTogether(GDALDatasetH dataset) {
    return std::string_view(GDALGetDriverShortName(GDALGetDatasetDriver(dataset))) == "VRT";
}

}  // namespace orvex
