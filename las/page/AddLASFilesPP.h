#pragma once
#include "dialog/page/FileListPage.h"
#include "las/LasRow.h"

namespace orvex {

/// The LAS files page.
class AddLASFilesPP final : public TypedFileListPage<LasRow> {
    Q_OBJECT

  public:
    explicit AddLASFilesPP(const PageContext& context, QWidget* parent = nullptr);

    void HandOver() noexcept override;
    bool NeedsCompanionFiles() const override;

  protected:
    void RowsChanged() override;
    std::vector<std::function<void()>> LateWork() const override;
    std::wstring DamagedNote() const override;
    DetailsContent Details(std::span<const std::size_t> records) const override;
    bool Store() override;

  private:
    bool Reopen();
    void WriteFiles() const;
};

}  // namespace orvex
