#pragma once
#include <filesystem>
#include <string>

#include "dialog/testing/PageFixture.h"
#include "raster/RasterRow.h"
#include "raster/testing/GeoTiff.h"

namespace orvex::testing {

/// Writes a georeferenced image of 20 x 10 pixels; `name` may be in a subfolder. EPSG code 0: without a CRS.
inline std::wstring WriteTif(const TemporaryFolder& folder, const std::wstring& name, int epsg = 25832) {
    std::filesystem::create_directories(ToPath(folder.Name(name)).parent_path());
    const GeoTiff tif{.crs = epsg == 0 ? "" : "EPSG:" + std::to_string(epsg)};
    return tif.Write(folder, name);
}

/// The raster page or the DEM page in the dialog.
class RasterPageFixture : public PageFixture {
  protected:
    using PageFixture::PageFixture;

    std::wstring Tif(const std::wstring& name, int epsg = 25832) const {
        return WriteTif(folder, name, epsg);
    }
    std::wstring BadTif(const std::wstring& name) const { return folder.Write(name, "no raster"); }
    /// The WKT of a code as a project stores it.
    std::wstring Wkt(int epsg) const {
        return FromUtf8(InspectRasterFile(Tif(L"wkt.tif", epsg), RasterUse::Image).Properties().wkt);
    }
};

}  // namespace orvex::testing
