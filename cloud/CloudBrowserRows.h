#pragma once
// The rows and columns of the cloud layer browser.
#include <map>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>

#include "cloud/CloudListing.h"
#include "support/Column.h"

namespace orvex {

struct CloudProjectRow {
    std::wstring name;  ///< as shown
    std::string id;
};

/// Texts that many rows have in common, each kept once.
class SharedTexts {
  public:
    using Shared = std::shared_ptr<const std::wstring>;

    Shared Of(const std::wstring& text);

  private:
    std::unordered_map<std::wstring_view, Shared> texts_;  ///< keys are views of the values
};

/// A layer in a few hundred bytes, since projects have up to hundreds of thousands.
struct CloudLayerRow {
    CloudLayerRow() = default;
    CloudLayerRow(const CloudLayer& layer, SharedTexts& texts);

    CloudLayer Layer() const;
    /// False for a layer that the listing names without a URL.
    bool CanBeAdded() const { return !url.empty(); }
    /// What makes a layer the same when its project is read again: a URL may have another signature then.
    std::string Key() const;

    std::string name, points, modified, url, id;  ///< UTF-8
    SharedTexts::Shared type, wkt, crs, project;
    std::optional<std::uint64_t> bytes;
};

/// Layers that were selected in projects which are not shown now.
class KeptLayers {
  public:
    void Keep(const std::string& project, const CloudLayerRow& layer);
    /// True if the project's layer was kept; it no longer is.
    bool Take(const std::string& project, const CloudLayerRow& layer);
    void Forget(const std::string& project) { layers_.erase(project); }
    void Clear() { layers_.clear(); }
    std::size_t Count() const;
    std::vector<CloudLayer> All() const;

  private:
    std::map<std::string, std::multimap<std::string, CloudLayerRow>> layers_;  ///< by project and key
};

std::span<const Column<CloudProjectRow>> CloudProjectColumns();
std::span<const Column<CloudLayerRow>> CloudLayerColumns();

}  // namespace orvex
