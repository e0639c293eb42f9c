#include "cloud/CloudBrowserRows.h"

#include "support/Format.h"
#include "support/Text.h"

namespace orvex {
namespace {

using Row = CloudLayerRow;

template <std::string Row::*Member>
GridCell Of(const Row& row) {
    return FromUtf8(row.*Member);
}

template <SharedTexts::Shared Row::*Member>
GridCell Of(const Row& row) {
    return *(row.*Member);
}

GridCell Size(const Row& row) {
    return row.bytes ? GridCell(Gibibytes(*row.bytes)) : Text(text::kUnknown);
}

std::wstring NameTooltip(const Row& row) {
    const std::wstring name = FromUtf8(row.name);
    return row.CanBeAdded() ? name : FormatText(Text(text::kCloudLayerWithoutUrl), {name});
}

std::optional<std::uint32_t> Colour(const Row& row) {
    constexpr std::uint32_t kGrey = 0x707070;
    return row.CanBeAdded() ? std::nullopt : std::optional(kGrey);
}

constexpr Column<CloudProjectRow> kProjectColumns[] = {
    {{.name = "project",
      .caption = text::kCloudBrowserProject,
      .width = 200,
      .align = HeaderAlign::Centre,
      .basic = true},
     [](const CloudProjectRow& row) { return GridCell(row.name); }},
    {{.name = "projectId", .caption = text::kCloudBrowserProjectKey, .width = 100, .hidden = true},
     [](const CloudProjectRow& row) { return GridCell(FromUtf8(row.id)); }},
};

constexpr Column<Row> kLayerColumns[] = {
    {{.name = "name", .caption = text::kCloudBrowserLayerName, .width = 200, .basic = true},
     Of<&Row::name>,
     {.tooltip = NameTooltip, .colour = Colour}},
    {{.name = "type", .caption = text::kCloudBrowserType, .width = 100, .basic = true},
     Of<&Row::type>,
     {.colour = Colour}},
    {{.name = "wkt", .caption = text::kCloudBrowserWkt, .width = 200, .basic = true},
     Of<&Row::wkt>,
     {.colour = Colour}},
    {{.name = "size",
      .caption = text::kCloudBrowserSizeGibibytes,
      .width = 100,
      .kind = CellKind::Number,
      .format = kGibibytesFormat,
      .basic = true},
     Size,
     {.colour = Colour}},
    {{.name = "points", .caption = text::kCloudBrowserPoints, .width = 100, .basic = true},
     Of<&Row::points>,
     {.colour = Colour}},
    {{.name = "crs", .caption = text::kCloudBrowserCrs, .width = 100, .basic = true},
     Of<&Row::crs>,
     {.colour = Colour}},
    {{.name = "modified", .caption = text::kCloudBrowserModified, .width = 100, .basic = true},
     Of<&Row::modified>,
     {.colour = Colour}},
    {{.name = "url", .caption = text::kCloudBrowserUrl, .width = 100, .hidden = true}, Of<&Row::url>},
    {{.name = "layerId", .caption = text::kCloudBrowserLayerId, .width = 100, .hidden = true}, Of<&Row::id>},
    {{.name = "projectId", .caption = text::kCloudBrowserProjectId, .width = 100, .hidden = true},
     Of<&Row::project>},
};

}  // namespace

SharedTexts::Shared SharedTexts::Of(const std::wstring& text) {
    const auto found = texts_.find(text);
    if (found != texts_.end()) {
        return found->second;
    }
    auto shared = std::make_shared<const std::wstring>(text);
    texts_.emplace(*shared, shared);
    return shared;
}

CloudLayerRow::CloudLayerRow(const CloudLayer& layer, SharedTexts& texts)
    : name(ToUtf8(layer.name)),
      points(ToUtf8(layer.points)),
      modified(ToUtf8(layer.modified)),
      url(ToUtf8(layer.url)),
      id(ToUtf8(layer.id)),
      type(texts.Of(layer.type)),
      wkt(texts.Of(layer.wkt)),
      crs(texts.Of(layer.crs)),
      project(texts.Of(layer.project)),
      bytes(layer.bytes) {}

CloudLayer CloudLayerRow::Layer() const {
    return {.name = FromUtf8(name),
            .type = *type,
            .wkt = *wkt,
            .size = FormatCell(Size(*this), kGibibytesFormat),
            .points = FromUtf8(points),
            .crs = *crs,
            .modified = FromUtf8(modified),
            .url = FromUtf8(url),
            .id = FromUtf8(id),
            .project = *project,
            .bytes = bytes};
}

std::string CloudLayerRow::Key() const {
    return id + '\n' + url.substr(0, url.find('?'));
}

void KeptLayers::Keep(const std::string& project, const CloudLayerRow& layer) {
    layers_[project].emplace(layer.Key(), layer);
}

bool KeptLayers::Take(const std::string& project, const CloudLayerRow& layer) {
    const auto found = layers_.find(project);
    if (found == layers_.end()) {
        return false;
    }
    const auto kept = found->second.find(layer.Key());
    if (kept == found->second.end()) {
        return false;
    }
    found->second.erase(kept);
    return true;
}

std::size_t KeptLayers::Count() const {
    std::size_t count = 0;
    for (const auto& [project, layers] : layers_) {
        count += layers.size();
    }
    return count;
}

std::vector<CloudLayer> KeptLayers::All() const {
    std::vector<CloudLayer> all;
    for (const auto& [project, layers] : layers_) {
        for (const auto& [key, layer] : layers) {
            all.push_back(layer.Layer());
        }
    }
    return all;
}

std::span<const Column<CloudProjectRow>> CloudProjectColumns() {
    return kProjectColumns;
}

std::span<const Column<CloudLayerRow>> CloudLayerColumns() {
    return kLayerColumns;
}

}  // namespace orvex
