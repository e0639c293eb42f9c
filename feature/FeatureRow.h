#pragma once
#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "crs/CrsDescription.h"
#include "crs/LayerAssignment.h"
#include "support/Finding.h"
#include "support/HostObjects.h"

namespace orvex {

/// Option item of the host: true (-1) if KML and KMZ files may be added.
inline constexpr std::int32_t kKmlOptionItem = 1019;

/// Kind of a feature file, as its extension tells it.
enum class FeatureKind { Dwg, Dxf, Dgn, Shp, Kml, Kmz };

/// Kind of a file by its name, in any letter case; nullopt for other names.
std::optional<FeatureKind> FeatureKindOf(std::wstring_view path);

/// "DWG" and the like.
const wchar_t* FeatureKindName(FeatureKind kind);

/// True for the kinds that are converted to shapefiles when they are imported: all but shapefiles.
inline bool IsConverted(FeatureKind kind) {
    return kind != FeatureKind::Shp;
}

struct FeatureLayer {
    std::wstring name;
    std::uint64_t count = 0;  ///< features
};

struct FeatureField {
    std::wstring name;
    std::wstring type;  ///< "Double", "Integer", "String", "Date", "Logical" or "Invalid"
};

/// One feature file as the grid, the details pane and the command line show it, read without its geometries.
/// Cells are computed from it when asked for.
struct FeatureRow {
    std::wstring path;
    FeatureKind kind = FeatureKind::Shp;
    bool isRead = false;            ///< could be read; what the rules of the page say of it does not count
    bool loadable = false;          ///< could be read, and the rules of the page let it pass
    bool threw = false;             ///< an unexpected exception ended the reading
    std::wstring summary;           ///< one line: numbers of layers and features, or why it cannot be loaded
    std::vector<Finding> findings;  ///< everything that is odd about the file, worst first
    std::uint64_t featureCount = 0;
    std::wstring geometry;             ///< of a shapefile, "Polygon"; the word for various of all others
    std::vector<FeatureLayer> layers;  ///< in the order of their names; of a shapefile one with its name
    std::int32_t fieldCount = 0;       ///< of a shapefile as its reader counts them; else 0
    std::vector<FeatureField> fields;  ///< those of them that have a name and a known type
    /// Minimum X, minimum Y, maximum X, maximum Y as the file states them, in units of the CRS; nullopt
    /// without features.
    std::optional<std::array<double, 4>> extent;
    CrsPtr crs;                   ///< never null
    std::uint64_t fileSize = 0;   ///< bytes; 0 when unknown
    std::int64_t modifiedMs = 0;  ///< milliseconds since 1970-01-01 UTC; 0 when unknown
    LayerPlace place;  ///< its `layer` is the key of the file in the record; set by ApplyFeatureRules
};

/// Reads one file: a shapefile with the host's shapefile object, or with the component's own reader where the
/// host has none (or `maker` is empty); the others with the layer-utilities library. What is odd about a
/// shapefile is found by the component's own reader in any case. Never throws: a file that cannot be read is
/// told from an unexpected exception. Safe from any thread; nothing is written, and no files but the sidecars
/// beside it are opened.
FeatureRow InspectFeatureFile(const std::wstring& path, const ShapefileMaker& maker = {});

/// Row of a file whose reading threw.
FeatureRow UnreadFeatureFile(const std::wstring& path, const std::wstring& message);

LoadFlag LoadFlagOf(const FeatureRow& row);

/// "Layers: 2,   Features: 15".
std::wstring FeatureSummary(const FeatureRow& row);

/// File name without extension: the name of a shapefile's layer.
std::wstring FeatureLayerName(const FeatureRow& row);

/// What the page's options and the project ask of the files.
struct FeatureRules {
    /// Layers of the project: name to CRS as WKT. A shapefile with such a name is not loaded.
    const std::map<std::wstring, std::wstring>& existing;
    bool requireCrs = false;  ///< a file without a CRS that can be read is not loaded
};

/// Decides which of the rows can be loaded, and gives these their keys: a shapefile the name of its layer,
/// any other file its name without extension; a key that an earlier row has, in any letter case, gets " (2)"
/// and so on. Follows from what was read, in one pass; may be called again with other rules.
void ApplyFeatureRules(std::vector<FeatureRow>& rows, const FeatureRules& rules);

}  // namespace orvex
