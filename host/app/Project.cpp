#include "host/app/Project.h"

#include <algorithm>
#include <tuple>

#include "orvexcommon/OrvexUtilities.h"
#include "support/NaturalOrder.h"
#include "support/PathSet.h"
#include "support/Text.h"

namespace orvex {

namespace {

/// Files of a kind by path; URLs in other letters are others.
class KnownFiles {
  public:
    explicit KnownFiles(LayerKind kind) : isCloud_(kind == LayerKind::Cloud) {}

    /// False if the file is known already.
    bool Insert(const std::wstring& path) {
        return isCloud_ ? urls_.insert(path).second : paths_.Insert(path);
    }

  private:
    bool isCloud_;
    PathSet paths_;
    std::set<std::wstring> urls_;
};

/// Adds the layers that the files go to and the project lacks, by name and number.
void MakeMissingLayers(std::vector<Layer>& layers, LayerKind kind, const std::vector<NewFile>& files) {
    std::map<std::wstring, std::string, decltype(&NaturalLess)> wktOfLayer(&NaturalLess);
    for (const NewFile& file : files) {
        const auto isMeant = [&](const Layer& layer) {
            return layer.kind == kind && layer.name == file.layer;
        };
        if (std::none_of(layers.begin(), layers.end(), isMeant)) {
            wktOfLayer.emplace(file.layer, file.wkt);
        }
    }
    for (const auto& [name, wkt] : wktOfLayer) {
        layers.push_back({name, wkt, {}, kind});
    }
}

/// Of `layers`, the one that got the most files; one with a CRS before one without.
std::size_t LayerOfMost(const std::vector<Layer>& layers, const std::vector<std::size_t>& addedTo) {
    const auto rank = [&](std::size_t i) {
        return std::tuple(addedTo[i] > 0, !layers[i].wkt.empty(), addedTo[i]);
    };
    std::size_t main = 0;
    for (std::size_t i = 1; i < layers.size(); ++i) {
        main = rank(i) > rank(main) ? i : main;
    }
    return main;
}

}  // namespace

std::optional<std::array<double, 6>> RasterInfo::PixelToWorld() const {
    if (transform || !extent || width < 1 || height < 1) {
        return transform;
    }
    const auto& [minX, minY, maxX, maxY] = *extent;
    return std::array<double, 6>{minX, (maxX - minX) / width, 0, maxY, 0, (minY - maxY) / height};
}

const std::string& CrsGroups::Of(const std::string& wkt) {
    const auto known = groupOfWkt_.find(wkt);
    return known != groupOfWkt_.end()
               ? known->second
               : groupOfWkt_.emplace(wkt, OrvexUtilities::GetCompatibilityGroup(wkt)).first->second;
}

std::size_t Project::FileCount() const {
    std::size_t count = 0;
    for (const Layer& layer : layers) {
        count += layer.files.size();
    }
    return count;
}

std::map<std::wstring, std::wstring> Project::LayersForDialog(LayerKind kind) const {
    std::map<std::wstring, std::wstring> byName;
    for (const Layer& layer : layers) {
        if (layer.kind == kind) {
            byName.emplace(layer.name, FromUtf8(layer.wkt));
        }
    }
    return byName;
}

std::vector<std::wstring> Project::PathsOf(LayerKind kind) const {
    std::vector<std::wstring> paths;
    for (const Layer& layer : layers) {
        if (layer.kind == kind) {
            std::ranges::transform(layer.files, std::back_inserter(paths), &LayerFile::path);
        }
    }
    return paths;
}

AddedFiles Project::Take(LayerKind kind, const std::vector<NewFile>& files) {
    KnownFiles known(kind);
    for (const std::wstring& path : PathsOf(kind)) {
        known.Insert(path);
    }
    AddedFiles added;
    std::vector<NewFile> fresh;
    for (const NewFile& file : files) {
        if (known.Insert(file.file.path)) {
            fresh.push_back(file);
        } else {
            added.others.push_back(file.file.path);
        }
    }
    MakeMissingLayers(layers, kind, fresh);
    std::map<std::wstring, std::size_t> placeOfLayer;
    for (std::size_t i = 0; i < layers.size(); ++i) {
        if (layers[i].kind == kind) {
            placeOfLayer.emplace(layers[i].name, i);
        }
    }
    std::vector<std::size_t> addedTo(layers.size());
    for (NewFile& file : fresh) {
        const std::size_t place = placeOfLayer.at(file.layer);
        added.places.emplace(place, layers[place].files.size());
        layers[place].files.push_back(std::move(file.file));
        ++addedTo[place];
    }
    added.mainLayer = LayerOfMost(layers, addedTo);
    return added;
}

std::optional<std::size_t> Project::MainLayer() const {
    std::vector<std::size_t> placed;
    for (const Layer& layer : layers) {
        placed.push_back(
            static_cast<std::size_t>(std::ranges::count_if(layer.files, [&layer](const LayerFile& file) {
                return layer.kind == LayerKind::Las || file.raster.extent || file.feature.extent ||
                       file.photo.position;
            })));
    }
    return layers.empty() ? std::nullopt : std::optional(LayerOfMost(layers, placed));
}

FilePlaces Project::Update(LayerKind kind, const std::vector<LayerFile>& files) {
    PathMap<const LayerFile*> fileOfPath;
    for (const LayerFile& file : files) {
        fileOfPath.Insert(file.path, &file);
    }
    FilePlaces places;
    for (std::size_t layer = 0; layer < layers.size(); ++layer) {
        for (std::size_t i = 0; layers[layer].kind == kind && i < layers[layer].files.size(); ++i) {
            if (const auto* const found = fileOfPath.Find(layers[layer].files[i].path)) {
                layers[layer].files[i] = **found;
                places.emplace(layer, i);
            }
        }
    }
    return places;
}

void Project::Remove(const FilePlaces& files) {
    std::vector<Layer> kept;
    for (std::size_t layer = 0; layer < layers.size(); ++layer) {
        Layer rest{layers[layer].name, layers[layer].wkt, {}, layers[layer].kind};
        for (std::size_t file = 0; file < layers[layer].files.size(); ++file) {
            if (!files.contains({layer, file})) {
                rest.files.push_back(std::move(layers[layer].files[file]));
            }
        }
        if (!rest.files.empty()) {
            kept.push_back(std::move(rest));
        }
    }
    layers = std::move(kept);
}

}  // namespace orvex
