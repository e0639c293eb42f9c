// The CRS of a LAS file's GeoTIFF keys: GDAL reads it from a TIFF file of one pixel that exists in memory
// only.
#include <cpl_conv.h>
#include <cpl_vsi.h>
#include <gdal_frmts.h>
#include <gdal_priv.h>
#include <proj.h>

#include <atomic>

#include "host/utilities/CrsReading.h"
#include "host/utilities/GeoKeys.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/GdalErrorScope.h"
#include "support/LasFormat.h"
#include "support/SpatialReference.h"
#include "support/Text.h"

using namespace orvex;

namespace {

/// A file in GDAL's memory, under a name that no other thread uses; gone with this object.
class MemoryFile {
  public:
    explicit MemoryFile(std::string& bytes) {
        static std::atomic<unsigned long long> counter{0};
        // A folder of its own: GDAL looks for side files in the folder of what it opens.
        folder_ = "/vsimem/orvex-geokeys-" + std::to_string(++counter);
        path_ = folder_ + "/keys.tif";
        // The bytes stay the caller's.
        VSIFCloseL(
            VSIFileFromMemBuffer(path_.c_str(), reinterpret_cast<GByte*>(bytes.data()), bytes.size(), FALSE));
    }
    ~MemoryFile() {
        VSIUnlink(path_.c_str());
        VSIRmdir(folder_.c_str());
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    const std::string& Path() const { return path_; }

  private:
    std::string folder_;
    std::string path_;
};

/// What reading keys needs of GDAL and PROJ, once in the process.
void PrepareReading() {
    static const bool prepared = [] {
        // Harmless when the driver is there already; a host may ask before GDAL is set up.
        GDALRegister_GTiff();
        // The reader of the keys asks PROJ through a context of its own, a copy of the default one, which
        // would write what it does not find to the console.
        proj_log_level(nullptr, PJ_LOG_NONE);
        return true;
    }();
    (void)prepared;
}

/// True for what GDAL makes of keys that give units but no CRS: a local system without a name.
bool SaysNothing(const OGRSpatialReference& crs) {
    const OGRSpatialReference horizontal = HorizontalPart(crs);
    const OGR_SRSNode* vertical = VerticalNode(crs);
    return horizontal.IsLocal() && EQUAL(horizontal.GetName(), "unnamed") &&
           (vertical == nullptr || EpsgCode(crs, vertical->GetValue()) == 0);
}

/// True for keys that give a CRS by its code or as one of their own.
bool NamesCrs(const GeoKeys& keys) {
    for (std::size_t i = 4; i + 4 <= keys.directory.size(); i += 4) {
        if (keys.directory[i] == las::geo_key::kGeographicType ||
            keys.directory[i] == las::geo_key::kProjectedType) {
            return true;
        }
    }
    return false;
}

/// The WKT of the file's CRS; empty when it has none.
std::string WktOfTiff(const std::string& path) {
    // GDAL leaves the vertical part out for this version of the keys unless told otherwise.
    const CPLConfigOptionSetter compound("GTIFF_REPORT_COMPD_CS", "YES", false);
    // GDAL passes the CRS on as text; a process may be set to one that loses heights.
    const CPLConfigOptionSetter format("OSR_WKT_FORMAT", "WKT2_2019", false);
    const char* const drivers[] = {"GTiff", nullptr};
    const GDALDatasetUniquePtr dataset(
        GDALDataset::Open(path.c_str(), GDAL_OF_RASTER | GDAL_OF_INTERNAL, drivers, nullptr, nullptr));
    const OGRSpatialReference* crs = dataset ? dataset->GetSpatialRef() : nullptr;
    if (crs == nullptr || crs->IsEmpty() || SaysNothing(*crs)) {
        return {};
    }
    std::string wkt = ExportWkt(*crs, "WKT1_GDAL");
    return wkt.empty() ? ExportWkt(*crs, "WKT2_2019") : wkt;
}

}  // namespace

std::string OrvexUtilities::CrsWktFromGeoKeys(const std::string& directory, const std::string& doubles,
                                              const std::string& text, std::string& reason) {
    reason.clear();
    const GdalErrorScope errors;
    std::wstring findings;
    const GeoKeys keys = ReadGeoKeys(directory, doubles, text, findings);
    std::string wkt;
    if (!keys.directory.empty()) {
        PrepareReading();
        std::string tiff = GeoKeysToTiff(keys);
        const MemoryFile file(tiff);
        wkt = WktOfTiff(file.Path());
    }
    if (wkt.empty() && findings.empty() && NamesCrs(keys)) {
        findings = Text(text::kGeoKeysNameUnknownCrs);
    }
    if (wkt.empty() && !findings.empty()) {
        reason = ToUtf8(findings) + (errors.Messages().empty() ? "" : " ") + errors.Text();
    }
    return wkt;
}
