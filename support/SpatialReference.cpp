#include "support/SpatialReference.h"

#include <cpl_conv.h>
#include <cpl_string.h>
#include <ogr_srs_api.h>

#include "support/Files.h"
#include "support/Text.h"

namespace orvex {

std::string ExportWkt(const OGRSpatialReference& crs, const char* format, bool multiLine) {
    const std::string formatOption = std::string("FORMAT=") + format;
    const char* const options[] = {formatOption.c_str(), multiLine ? "MULTILINE=YES" : "MULTILINE=NO",
                                   nullptr};
    char* text = nullptr;
    const OGRErr error = crs.exportToWkt(&text, options);
    std::string wkt = error == OGRERR_NONE && text != nullptr ? text : "";
    CPLFree(text);
    return wkt;
}

void PreferProjData(const std::filesystem::path& folder) {
    if (!FileExists(FromPath(folder / "proj.db"))) {
        return;
    }
    CPLStringList paths;
    paths.AddString(ToUtf8(FromPath(folder)).c_str());
    const CPLStringList known(OSRGetPROJSearchPaths());
    for (int i = 0; i < known.size(); ++i) {
        if (paths.FindString(known[i]) < 0) {
            paths.AddString(known[i]);
        }
    }
    OSRSetPROJSearchPaths(paths.List());
}

}  // namespace orvex
