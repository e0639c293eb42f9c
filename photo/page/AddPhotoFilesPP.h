#pragma once
#include "dialog/page/FileListPage.h"
#include "photo/PhotoRow.h"

namespace orvex {

class FilePreview;

/// The photo files page.
class AddPhotoFilesPP final : public TypedFileListPage<PhotoRow> {
    Q_OBJECT

  public:
    explicit AddPhotoFilesPP(const PageContext& context, QWidget* parent = nullptr);

  protected:
    AddingSummary AddRows(AddingRequest request, const std::function<void()>& appended) override;
    Rereading RereadRows() override;
    std::vector<std::function<void()>> LateWork() const override;
    void RowsChanged() override;
    DetailsContent Details(std::span<const std::size_t> records) const override;
    bool Store() override;

  private:
    void OnBrowseLayer();
    void TellIfNoneWasRead() const;
    std::vector<std::size_t> RecordsToAdd() const;
    bool StorePhotos(std::span<const std::size_t> records);
    bool ConfirmPositions(std::span<const std::size_t> records);

    FilePreview* preview_;
};

}  // namespace orvex
