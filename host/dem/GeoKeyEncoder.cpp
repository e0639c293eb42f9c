#include "host/dem/GeoKeyEncoder.h"

#include <cpl_string.h>
#include <cpl_vsi.h>
#include <gdal_priv.h>

#include <atomic>
#include <span>

#include "host/dem/TiffTags.h"
#include "support/LasFormat.h"

namespace orvex {
namespace {

/// A folder in GDAL's memory that no other thread uses; gone with all that lies in it.
class MemoryFolder {
  public:
    MemoryFolder() {
        static std::atomic<unsigned long long> counter{0};
        path_ = "/vsimem/orvex-dem-keys-" + std::to_string(++counter);
    }
    ~MemoryFolder() { VSIRmdirRecursive(path_.c_str()); }
    MemoryFolder(const MemoryFolder&) = delete;
    MemoryFolder& operator=(const MemoryFolder&) = delete;

    std::string Name(const char* name) const { return path_ + "/" + name; }

  private:
    std::string path_;
};

/// Writes a raster of one pixel with the CRS.
bool WriteTiff(const std::string& path, const OGRSpatialReference& crs) {
    GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName("GTiff");
    if (driver == nullptr) {
        return false;
    }
    CPLStringList options;
    options.SetNameValue("PROFILE", "GeoTIFF");
    options.SetNameValue("ENDIANNESS", "LITTLE");
    const GDALDatasetUniquePtr dataset(driver->Create(path.c_str(), 1, 1, 1, GDT_Byte, options.List()));
    return dataset != nullptr && dataset->SetSpatialRef(&crs) == CE_None;
}

}  // namespace

std::optional<GeoKeyPayloads> EncodeGeoKeys(const OGRSpatialReference& crs) {
    const MemoryFolder folder;
    const std::string path = folder.Name("keys.tif");
    if (!WriteTiff(path, crs)) {
        return std::nullopt;
    }
    vsi_l_offset size = 0;
    const GByte* const bytes = VSIGetMemFileBuffer(path.c_str(), &size, FALSE);
    if (bytes == nullptr) {
        return std::nullopt;
    }
    const auto tiff = std::as_bytes(std::span(bytes, static_cast<std::size_t>(size)));
    auto directory = FindTiffTag(tiff, las::kGeoKeyDirectoryRecordId);
    if (!directory) {
        return std::nullopt;
    }
    return GeoKeyPayloads{std::move(*directory), FindTiffTag(tiff, las::kGeoDoublesRecordId).value_or(""),
                          FindTiffTag(tiff, las::kGeoTextRecordId).value_or("")};
}

}  // namespace orvex
