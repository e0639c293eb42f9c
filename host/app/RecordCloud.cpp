#include "host/app/RecordCloud.h"

#include <algorithm>
#include <set>
#include <utility>

#include "orvexcommon/AddFilesParams.h"
#include "support/Format.h"
#include "support/SignedUrl.h"
#include "support/Text.h"

namespace orvex {

namespace {

using TextMap = std::map<std::wstring, std::wstring>;

std::wstring ValueOf(const TextMap& values, const std::wstring& name) {
    const auto found = values.find(name);
    return found == values.end() ? std::wstring() : found->second;
}

/// Every cloud layer under its name in the record. What follows a line break in a name would pass for a line
/// of a report.
std::vector<NewFile> LayersIn(const AddFilesParams& record) {
    std::vector<NewFile> layers;
    const auto add = [&](const std::wstring& name, const std::wstring& url, CloudInfo cloud) {
        NewFile& layer = layers.emplace_back();
        layer.layer = WithoutControls(name);
        layer.file.path = url;
        layer.file.cloud = std::move(cloud);
    };
    for (const auto& [name, url] : record.presignedUrlLayers) {
        add(name, url, {true, {}, {}});
    }
    for (const auto& [name, url] : record.cloudLasLayers) {
        add(name, url,
            {false, ValueOf(record.cloudLasLayerValues2, name), ValueOf(record.cloudLasLayerValues3, name)});
    }
    return layers;
}

/// True for two links to one layer of an account, which signs each link anew.
bool IsSameLayer(const LayerFile& a, const LayerFile& b) {
    const auto addressOf = [](const LayerFile& file) {
        return file.path.substr(0, file.path.find_first_of(L"?#"));
    };
    return !a.cloud.id.empty() && a.cloud == b.cloud && addressOf(a) == addressOf(b);
}

bool IsIn(const Project& project, const LayerFile& file) {
    return std::ranges::any_of(project.layers, [&file](const Layer& layer) {
        return layer.kind == LayerKind::Cloud &&
               std::ranges::any_of(layer.files, [&file](const LayerFile& known) {
                   return known.path != file.path && IsSameLayer(known, file);
               });
    });
}

/// The name, or the first free one with a number behind it.
std::wstring FreeName(const std::wstring& name, const std::set<std::wstring>& taken) {
    std::wstring free = name;
    for (int number = 2; taken.contains(free); ++number) {
        free = name + L" (" + std::to_wstring(number) + L")";
    }
    return free;
}

}  // namespace

CloudLayers CloudLayersOf(const AddFilesParams& record, const Project& project) {
    std::set<std::wstring> names;
    for (const auto& [name, wkt] : project.LayersForDialog(LayerKind::Cloud)) {
        names.insert(name);
    }
    const std::vector<std::wstring> known = project.PathsOf(LayerKind::Cloud);
    CloudLayers layers;
    for (NewFile& layer : LayersIn(record)) {
        if (IsIn(project, layer.file)) {
            layers.renewed.push_back(std::move(layer.file));
        } else {
            layers.files.push_back(std::move(layer));
        }
    }
    for (NewFile& layer : layers.files) {
        if (std::ranges::find(known, layer.file.path) != known.end()) {
            continue;  // it is not going to be taken
        }
        const std::wstring name = FreeName(layer.layer, names);
        if (name != layer.layer) {
            layers.renamed.push_back({layer.layer, FormatText(Text(text::kCloudLayerNewName), {name})});
            layer.layer = name;
        }
        names.insert(name);
    }
    return layers;
}

FilePlaces RenewLinks(Project& project, const std::vector<LayerFile>& renewed) {
    FilePlaces places;
    for (std::size_t layer = 0; layer < project.layers.size(); ++layer) {
        for (std::size_t i = 0; i < project.layers[layer].files.size(); ++i) {
            LayerFile& file = project.layers[layer].files[i];
            const auto link = std::ranges::find_if(
                renewed, [&file](const LayerFile& other) { return IsSameLayer(file, other); });
            if (link != renewed.end()) {
                file.path = link->path;
                places.emplace(layer, i);
            }
        }
    }
    return places;
}

std::wstring CloudText(const AddFilesParams& record) {
    const std::vector<NewFile> layers = LayersIn(record);
    std::wstring text = FormatText(Text(text::kRecordCloudLayers), {layers.size()}) + L"\n";
    for (const NewFile& layer : layers) {
        const CloudInfo& cloud = layer.file.cloud;
        const std::wstring source =
            cloud.isPresigned ? Text(text::kTreePresignedUrl)
                              : FormatText(Text(text::kRecordCloudLayer), {cloud.id, cloud.project});
        text += L"  " + layer.layer + L": " + WithoutControls(ShownUrl(layer.file.path)) + L"\n    " +
                WithoutControls(source) + L"\n";
    }
    return text;
}

std::wstring ShownPath(LayerKind kind, const std::wstring& path) {
    return kind == LayerKind::Cloud ? ShownUrl(path) : NativePath(path);
}

std::wstring FileNameOfUrl(const std::wstring& url) {
    const std::wstring shown = ShownUrl(url);
    return FileNameOf(shown.substr(0, shown.find(L'?')));
}

}  // namespace orvex
