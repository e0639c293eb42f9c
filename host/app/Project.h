#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace orvex {

/// How the project holds its LiDAR data.
enum class LidarAccess { ReadOnly, ReadWrite, NotAtAll };

/// What the files of a layer are.
enum class LayerKind { Las, Raster, Feature, Photo, Cloud };

/// What is known of a raster of the project.
struct RasterInfo {
    std::int32_t width = 0;   ///< pixels
    std::int32_t height = 0;  ///< pixels
    std::int32_t bands = 0;
    std::wstring driver;  ///< GDAL's short name: "GTiff"; empty when unknown
    /// minX, minY, maxX, maxY in units of the layer's CRS; none without georeference.
    std::optional<std::array<double, 4>> extent;
    /// X = t[0] + column * t[1] + row * t[2], Y = t[3] + column * t[4] + row * t[5].
    std::optional<std::array<double, 6>> transform;

    /// The transform; from the extent where the file states no more. None without georeference.
    std::optional<std::array<double, 6>> PixelToWorld() const;

    friend bool operator==(const RasterInfo&, const RasterInfo&) = default;
};

/// What is known of a shapefile of the project.
struct FeatureInfo {
    std::int32_t shapeType = 0;  ///< code of the file's header: 1 for points, 3 for lines, 5 for polygons ...
    std::uint64_t count = 0;     ///< features
    /// minX, minY, maxX, maxY in units of the layer's CRS; none without a place.
    std::optional<std::array<double, 4>> extent;

    friend bool operator==(const FeatureInfo&, const FeatureInfo&) = default;
};

/// What is known of a photo of the project.
struct PhotoInfo {
    /// Longitude, latitude (degrees, WGS 84) and altitude (metres); none without a position.
    std::optional<std::array<double, 3>> position;
    std::optional<double> heading;  ///< degrees, clockwise from north
    std::wstring timeUtc;           ///< empty if unknown

    friend bool operator==(const PhotoInfo&, const PhotoInfo&) = default;
};

/// Where a cloud layer comes from.
struct CloudInfo {
    bool isPresigned = false;  ///< entered as a URL; else picked from an account
    std::wstring id, project;  ///< its own and its project's name in the account; empty for a URL

    friend bool operator==(const CloudInfo&, const CloudInfo&) = default;
};

/// One file of a layer: what the footprint view and the tree tell of it without opening it.
struct LayerFile {
    std::wstring path;      ///< of a cloud layer the URL, which may hold a signature: see ShownPath
    RasterInfo raster;      ///< of a raster layer's files
    FeatureInfo feature{};  ///< of a feature layer's shapefiles
    PhotoInfo photo{};      ///< of a photo layer's photos
    CloudInfo cloud{};      ///< of a cloud layer's file; the rest is of LAS files
    std::uint64_t points = 0;
    std::array<double, 3> min{};  ///< in the units of the layer's CRS
    std::array<double, 3> max{};
    int version = 0;  ///< 14 for LAS 1.4
    int pointFormat = 0;
    bool readOnly = true;
    bool footprintOnly = false;
    int thinning = 0;       ///< one of so many points is drawn while the map moves; 0: not stated
    std::wstring opened{};  ///< of a LAZ file that was decompressed: the LAS file; else empty

    /// The file that holds the points, and has the companion.
    const std::wstring& PointsPath() const { return opened.empty() ? path : opened; }

    friend bool operator==(const LayerFile&, const LayerFile&) = default;
};

/// Files that share a CRS and are shown together.
struct Layer {
    std::wstring name;
    std::string wkt;  ///< UTF-8; empty when the files carry no CRS
    std::vector<LayerFile> files;
    LayerKind kind = LayerKind::Las;

    friend bool operator==(const Layer&, const Layer&) = default;
};

/// Files of a project: layer and place in it.
using FilePlaces = std::set<std::pair<std::size_t, std::size_t>>;

/// A file and the layer of its kind that it goes to.
struct AssignedFile {
    std::wstring path;
    std::wstring layer;
};

/// A file that is to be taken into the project.
struct NewFile {
    std::wstring layer;  ///< of its kind: an existing one's name, or a new one's
    std::string wkt;     ///< its CRS, which a new layer gets from its first file
    LayerFile file;
};

/// What became of files that were to be taken in.
struct AddedFiles {
    FilePlaces places;                 ///< of the files taken
    std::vector<std::wstring> others;  ///< left out, because a layer of the kind has them
    /// Place of the layer that got the most of them; one with a CRS before one without.
    std::size_t mainLayer = 0;
};

/// The compatibility groups of WKTs; each text is looked at once.
class CrsGroups {
  public:
    /// The text shared by all WKTs whose files can be shown and kept together; see OrvexUtilities.
    const std::string& Of(const std::string& wkt);

  private:
    std::map<std::string, std::string> groupOfWkt_;
};

/// The open project: layers in the order of their making.
struct Project {
    std::vector<Layer> layers;
    LidarAccess lidarAccess = LidarAccess::ReadOnly;

    bool IsEmpty() const { return layers.empty(); }
    std::size_t FileCount() const;
    /// The layer to be shown first: with the most files that have a place; with a CRS before without; none
    /// when there is no layer.
    std::optional<std::size_t> MainLayer() const;
    /// Layer name to WKT, as the Add Files dialog wants to know the layers that files can be appended to.
    std::map<std::wstring, std::wstring> LayersForDialog(LayerKind kind) const;
    /// Full paths of the files that the layers of a kind have.
    std::vector<std::wstring> PathsOf(LayerKind kind) const;

    /// Takes files into layers of one kind, in their order. Layers that are missing are made, by name and
    /// number; a file that the kind's layers have already is left out.
    AddedFiles Take(LayerKind kind, const std::vector<NewFile>& files);
    /// Gives files of a kind that the project has already what is known of them now. Returns their places.
    FilePlaces Update(LayerKind kind, const std::vector<LayerFile>& files);
    /// Takes files away; a layer goes with its last file.
    void Remove(const FilePlaces& files);

    friend bool operator==(const Project&, const Project&) = default;
};

}  // namespace orvex
