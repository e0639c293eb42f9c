#pragma once
#include <QObject>
#include <span>
#include <vector>

#include "dialog/page/RowProperties.h"

class QIcon;

namespace orvex {

class GridView;
class ListStatus;
class UserPrompts;

/// Filtering, counting and selecting the rows of a list by what they have in common.
class RowFinder : public QObject {
    Q_OBJECT

  public:
    /// `grid` and `prompts` outlive the finder; `images` by ImageIndex.
    RowFinder(GridView& grid, UserPrompts& prompts, const std::vector<QIcon>& images);

    ListStatus* Status() const { return status_; }

    /// `rows` outlives the finder, or Detach is called before it ends.
    void Start(ListRows& rows);
    void Detach();

    /// Brings the counts up to date.
    void Update();
    /// Selects rows by record and scrolls to the first. The filter goes when it hides one of them.
    void Select(std::span<const std::size_t> records);
    /// Number of rows that the filter hides.
    std::size_t HiddenCount() const;

  signals:
    void RemoveRequested(const std::vector<std::size_t>& records);

  private:
    void ClearFilter();

    GridView& grid_;
    UserPrompts& prompts_;
    ListStatus* status_;
    ListRows* rows_ = nullptr;
};

}  // namespace orvex
