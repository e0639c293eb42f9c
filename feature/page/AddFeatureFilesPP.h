#pragma once
#include "dialog/page/FileListPage.h"
#include "feature/FeatureRow.h"

namespace orvex {

/// The feature files page.
class AddFeatureFilesPP final : public TypedFileListPage<FeatureRow> {
    Q_OBJECT

  public:
    explicit AddFeatureFilesPP(const PageContext& context, QWidget* parent = nullptr);

  protected:
    std::vector<std::function<void()>> LateWork() const override;
    void RowsChanged() override;
    DetailsContent Details(std::span<const std::size_t> records) const override;
    bool Store() override;

  private:
    void OnRequireCrs();
    /// True if the files of any row have a kind that passes.
    bool HasAny(bool (*test)(FeatureKind kind)) const;
    bool AreKmlFilesAllowed(OrvexApplication* application) const;
    std::wstring OutputFolder(OrvexApplication* application) const;
};

}  // namespace orvex
