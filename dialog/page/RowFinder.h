#pragma once
#include <QObject>
#include <QString>
#include <QTimer>
#include <span>
#include <vector>

#include "dialog/page/RowProperties.h"

class QIcon;

namespace orvex {

class FilterLine;
class GridView;
class ListStatus;
class UserPrompts;

/// Filtering, counting and selecting the rows of a list by what they have in common.
class RowFinder : public QObject {
    Q_OBJECT

  public:
    /// The finder is a child of the grid; `prompts` outlive it. `images` by ImageIndex.
    RowFinder(GridView& grid, UserPrompts& prompts, const std::vector<QIcon>& images);

    FilterLine* Line() const { return line_; }
    ListStatus* Status() const { return status_; }

    /// `rows` outlives the finder, or Detach is called before it ends. `emptyText`: of the grid without rows.
    void Start(ListRows& rows, const QString& emptyText);
    void Detach();

    /// Selects rows by record and scrolls to the first. The filter goes when it hides one of them.
    void Select(std::span<const std::size_t> records);

  signals:
    void RemoveRequested(const std::vector<std::size_t>& records);

  private:
    void ConnectLine();
    void ConnectStatus();
    void OnRecords();
    void Count();
    void Filter();
    void GoToList();
    bool IsLong() const;

    GridView& grid_;
    UserPrompts& prompts_;
    FilterLine* line_;
    ListStatus* status_;
    ListRows* rows_ = nullptr;
    QString emptyText_;
    std::string mostFrequentCrs_;
    QTimer countLater_;
    QTimer filterLater_;
    QTimer
        readAhead_;  ///< reads the rows' texts in idle time, so that the first key is as fast as the others
};

}  // namespace orvex
