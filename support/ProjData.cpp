#include "support/ProjData.h"

#include <cpl_string.h>
#include <ogr_srs_api.h>

#include <string>

#include "support/Files.h"
#include "support/Text.h"

namespace orvex {

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
