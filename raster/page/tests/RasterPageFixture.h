#pragma once
#include <string>
#include <vector>

#include "dialog/testing/PageFixture.h"
#include "raster/RasterCells.h"
#include "raster/testing/GeoTiff.h"

namespace orvex::testing {

/// One of the two pages by itself, with everything around it scripted.
template <typename Page, RasterUse Use>
class RasterPageFixture : public PageFixture<Page> {
  protected:
    explicit RasterPageFixture(FileListControls controls) : PageFixture<Page>(controls) { this->MakePage(); }

    std::wstring Tif(const std::wstring& name, int epsg = 25832) const {
        GeoTiff tif;
        tif.crs = epsg == 0 ? "" : "EPSG:" + std::to_string(epsg);
        return tif.Write(this->folder, name);
    }

    std::vector<std::wstring> Shown(RasterColumn column) const {
        std::vector<std::wstring> texts;
        for (const RasterRow& row : this->page->Model().Rows()) {
            texts.push_back(RasterCellText(row, column, Use));
        }
        return texts;
    }
    std::vector<std::wstring> Names() const { return Shown(RasterColumn::FileName); }
    std::vector<std::wstring> Layers() const { return Shown(RasterColumn::Layer); }
    /// The WKT of a code as a project stores it.
    std::wstring Wkt(int epsg) const {
        return FromUtf8(
            InspectRasterFile(Tif(L"wkt" + std::to_wstring(epsg) + L".tif", epsg), Use).properties.wkt);
    }
};

}  // namespace orvex::testing
