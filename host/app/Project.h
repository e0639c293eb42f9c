#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

class AddFilesParams;

namespace orvex {

/// How the project holds its LiDAR data.
enum class LidarAccess { ReadOnly, ReadWrite, NotAtAll };

/// One file of a layer: what the footprint view and the tree tell of it without opening it.
struct LayerFile {
    std::wstring path;
    std::uint64_t points = 0;
    std::array<double, 3> min{};  ///< in the units of the layer's CRS
    std::array<double, 3> max{};
    int version = 0;  ///< 14 for LAS 1.4
    int pointFormat = 0;
    bool readOnly = true;
    bool footprintOnly = false;

    friend bool operator==(const LayerFile&, const LayerFile&) = default;
};

/// Files that share a CRS and are shown together.
struct Layer {
    std::wstring name;
    std::string wkt;  ///< UTF-8; empty when the files carry no CRS
    std::vector<LayerFile> files;

    friend bool operator==(const Layer&, const Layer&) = default;
};

/// What became of a record.
struct AddedFiles {
    std::size_t files = 0;      ///< taken into the project
    std::size_t newLayers = 0;  ///< made for them
    /// Place of the layer that got the most of them; one with a CRS before one without.
    std::size_t mainLayer = 0;
};

/// The open project: layers in the order of their making.
struct Project {
    std::vector<Layer> layers;
    LidarAccess lidarAccess = LidarAccess::ReadOnly;

    bool IsEmpty() const { return layers.empty(); }
    std::size_t FileCount() const;
    /// Layer name to WKT, as the Add Files dialog wants to know the layers that files can be appended to.
    std::map<std::wstring, std::wstring> LayersForDialog() const;

    /// Takes the LAS files of a record into the layers that the dialog assigned them to, but not those whose
    /// full path is in `skipped`.
    AddedFiles Add(const AddFilesParams& record, const std::set<std::wstring>& skipped);
    /// Takes files (layer and place in it) and whole layers away; a layer goes with its last file.
    void Remove(const std::set<std::pair<std::size_t, std::size_t>>& files,
                const std::set<std::size_t>& wholeLayers);

    friend bool operator==(const Project&, const Project&) = default;
};

/// The details objects of a record belong to the host once the dialog ended with OK; this deletes them.
void DeleteDetails(AddFilesParams& record);

/// A folder and a name as a full path.
std::wstring JoinPath(const std::wstring& folder, const std::wstring& name);

}  // namespace orvex
