#pragma once
#include <algorithm>
#include <iterator>
#include <utility>

#include "dialog/DialogProgress.h"
#include "dialog/page/FileListPage.h"

namespace orvex {

/// A file page whose rows are in a model derived from FileRowsModel, default-constructible but for a parent.
/// An inspection has a `summary` besides its path.
template <typename RowsModel>
class FileListPageOf : public FileListPage {
  public:
    using Inspection = typename RowsModel::Inspection;
    using Row = typename RowsModel::Row;

    const RowsModel& Model() const { return *model_; }

  protected:
    /// `adder` reads new files, `refresher` those of listed rows again.
    FileListPageOf(const PageContext& context, FileListPageDescription description,
                   FileAdder<Inspection> adder, FileAdder<Inspection> refresher, QWidget* parent)
        : FileListPage(context, std::move(description), parent),
          model_(new RowsModel(this)),
          adder_(std::move(adder)),
          refresher_(std::move(refresher)) {}

    RowsModel& EditModel() { return *model_; }

    AddingSummary AddRows(AddingRequest request, const std::function<void()>& appended) override {
        const auto deliver = [&](std::vector<Inspection> batch) {
            model_->Append(std::move(batch));
            appended();
        };
        return adder_.Add(std::move(request), deliver, Services().prompts, Progress());
    }

    bool RereadRows() override {
        AddingRequest request{model_->Paths(), {}, 0};
        std::ranges::reverse(request.paths);
        std::vector<Inspection> fresh;  // of the last rows, last first; fewer than rows when stopped
        const auto keep = [&](std::vector<Inspection> batch) {
            std::ranges::move(batch, std::back_inserter(fresh));
        };
        refresher_.Add(std::move(request), keep, Services().prompts, Progress());
        bool told = false;
        model_->Change([&](std::vector<Row>& rows) {
            auto row = rows.rbegin();
            for (Inspection& inspection : fresh) {
                told = told || inspection.summary != row->inspection.summary;
                (row++)->inspection = std::move(inspection);
            }
        });
        return told;
    }

  private:
    RowsModel* model_;
    FileAdder<Inspection> adder_;
    FileAdder<Inspection> refresher_;
};

}  // namespace orvex
