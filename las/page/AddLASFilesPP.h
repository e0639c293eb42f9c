#pragma once
#include <vector>

#include "dialog/page/FileListPageOf.h"
#include "las/page/AddLASFilesModel.h"
#include "las/page/LasPageOptions.h"
#include "las/page/LasPageStore.h"

namespace orvex {

class LasOptionsWidget;

/// The LAS files page. Every control is named "c" and its id.
class AddLASFilesPP final : public FileListPageOf<AddLASFilesModel> {
    Q_OBJECT

  public:
    explicit AddLASFilesPP(const PageContext& context, QWidget* parent = nullptr);
    ~AddLASFilesPP() override;

    bool NeedsCompanionFiles() const override;

  protected:
    void BeforeRowsChange() override { store_.Withdraw(); }
    void RowsChanged() override;
    DetailsContent Details(std::span<const std::size_t> records) const override;
    std::vector<ControlState> ControlStates(const FileListState& state) const override;
    bool Store() override;

  private:
    LasReopened StoreRows(const LasPageOptions& options);

    LasPageStore store_;
    LasPageOptions options_;
    LasOptionsWidget* optionGroups_;
};

}  // namespace orvex
