#pragma once
#include <filesystem>
#include <string>

#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex::testing {

/// A DXF file with one line on the layer "roads"; `name` has no extension.
inline std::wstring WriteDrawing(const TemporaryFolder& folder, const std::wstring& name) {
    return folder.Write(
        name + L".dxf",
        "0\nSECTION\n2\nENTITIES\n0\nLINE\n8\nroads\n10\n500000\n20\n5300000\n11\n500100\n21\n"
        "5300100\n0\nENDSEC\n0\nEOF\n");
}

/// The CRS beside a file (`name` without its extension).
inline void WritePrj(const TemporaryFolder& folder, const std::wstring& name) {
    folder.Write(
        name + L".prj",
        "PROJCS[\"WGS 84 / UTM zone 33N\",GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\",SPHEROID[\"WGS 84\",6378137,"
        "298.257223563]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],PROJECTION["
        "\"Transverse_Mercator\"],PARAMETER[\"latitude_of_origin\",0],PARAMETER[\"central_meridian\",15],"
        "PARAMETER[\"scale_factor\",0.9996],PARAMETER[\"false_easting\",500000],PARAMETER[\"false_northing\","
        "0],UNIT[\"metre\",1]]");
}

}  // namespace orvex::testing
