#pragma once
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "cloud/CloudListing.h"
#include "cloud/CloudRow.h"
#include "cloud/RemoteLas.h"
#include "dialog/page/ListModel.h"
#include "dialog/page/ListPage.h"

class QMenu;
class QTimer;

namespace orvex {

/// What the cloud page asks of the user, the network and the clock.
struct CloudSources {
    /// Layers picked in the browser; none if it was cancelled.
    std::function<std::vector<CloudLayer>()> browse;
    /// A URL, trimmed and not empty; `typed` is in the field already. nullopt if cancelled.
    std::function<std::optional<std::wstring>(const std::wstring& typed)> askUrl;
    /// Another name for a layer; nullopt if cancelled.
    std::function<std::optional<std::wstring>(const std::wstring& name)> askName;
    /// On worker threads, several at a time; may outlive the page.
    std::function<RemoteLas(const std::wstring& url, const CloudCall& call)> inspect;
    std::function<std::int64_t()> now;  ///< milliseconds since 1970-01-01 UTC
};

/// The page of layers in the cloud.
class AddCloudLASFilesPP final : public ListPage {
    Q_OBJECT

  public:
    explicit AddCloudLASFilesPP(const PageContext& context, QWidget* parent = nullptr);
    /// `sources`: those that are empty are the real ones.
    AddCloudLASFilesPP(const PageContext& context, CloudSources sources, QWidget* parent = nullptr);

    const ListModel<CloudRow>& Model() const { return *model_; }

    /// Layers have no files here.
    void AddPaths(const std::vector<std::wstring>& /*paths*/) override {}
    bool Accepts(const std::wstring& /*path*/) const override { return false; }
    void Release() override;

  protected:
    std::vector<PageButton> Buttons() override;
    void BeforeRemoval(std::span<const std::size_t> records) override;
    void RowsChanged() override;
    DetailsContent Details(std::span<const std::size_t> records) const override;
    bool Store() override;

  private:
    /// One removal, that can be undone.
    struct Removed {
        std::vector<std::size_t> places;  ///< ascending, in the order of adding
        std::vector<CloudRow> rows;
    };

    /// The real ones in place of those that are empty.
    void FillSources();
    std::vector<CloudLayer> Browse();
    void MakeAddMenu();
    void MakeRowActions();
    QAction* AddRowAction(const char* name, StringId caption, const QKeySequence& key, const wchar_t* handler,
                          void (AddCloudLASFilesPP::*run)());
    void AdaptRowMenu();
    void EnableRowActions();
    void OnAdd();
    void OnBrowseLayersInOrvexCloud();
    void OnPresignedUrl();
    void OnBrowsePackagesInOrvexCloud();
    void OnImportLayerPackageFile();
    void OnRename();
    void OnLookInside();
    void OnUndo();

    void Append(std::vector<CloudRow> rows);
    bool HasUrlIgnoringCase(const std::wstring& url) const;
    std::vector<std::size_t> RecordsToInspect() const;

    static constexpr int kAddButton = 351;

    CloudSources sources_;
    ListModel<CloudRow>* model_;
    QMenu* addMenu_ = nullptr;
    QTimer* expiry_;  ///< until a link changes its state
    QAction* rename_ = nullptr;
    QAction* lookInside_ = nullptr;
    QAction* undo_ = nullptr;
    std::vector<Removed> removed_;
};

}  // namespace orvex
