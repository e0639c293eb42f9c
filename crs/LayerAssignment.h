#pragma once
// Assignment of a page's files to layers of the project.
#include <functional>
#include <map>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "crs/CrsDescription.h"

namespace orvex {

struct LayerRules {
    bool append = true;      ///< files may go into existing layers of the project
    bool ignoreCrs = false;  ///< files with different CRSs may share a layer
};

/// The layer of one file. Empty for a file that cannot be loaded.
struct LayerPlace {
    std::wstring layer;
    bool exists = false;     ///< an existing layer of the project
    unsigned group = 0;      ///< files with the same number can share a layer; 0: none
    bool inProject = false;  ///< the project has the file already; set when the page reads the file
    bool isAwaited = false;  ///< not read yet: its drive does not answer, while others are read
};

/// Key that files in one layer have in common: the compatibility group of their CRS; its text while the
/// identity of the CRS is not known.
std::string LayerKeyOf(const CrsDescription& crs);

/// What finds the identities that PlaceInLayers needs: of these CRSs and of the project's layers. One call
/// each, safe from any thread.
std::vector<std::function<void()>> IdentificationWork(std::vector<CrsPtr> files,
                                                      const std::map<std::wstring, std::wstring>& existing);

/// Assigns a layer to every file, in one pass and in their order. `files`: the CRS of each, null for one that
/// cannot be loaded. `existing`: the project's layers, name to WKT. Files with one key form a group, numbered
/// from 1, and share a layer: when appending, the first existing one (by name) with that key, else a new one.
/// New layers are named `prefix` and the smallest number from 1 on that no layer uses, in any letter case.
/// With `ignoreCrs` all files share one layer; when appending, preferably one that is compatible with some
/// file.
std::vector<LayerPlace> PlaceInLayers(std::span<const CrsPtr> files,
                                      const std::map<std::wstring, std::wstring>& existing,
                                      const LayerRules& rules, const std::wstring& prefix);

/// Gives rows (each with a `place`) their new places, in their order. What reading has set stays.
template <typename Rows>
void TakePlaces(Rows& rows, std::vector<LayerPlace> places) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        places[i].inProject = rows[i].place.inProject;
        places[i].isAwaited = rows[i].place.isAwaited;
        rows[i].place = std::move(places[i]);
    }
}

}  // namespace orvex
