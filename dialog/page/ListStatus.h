#pragma once
#include <QIcon>
#include <QWidget>
#include <vector>

#include "dialog/page/RowProperties.h"
#include "support/Text.h"

class QLabel;
class QToolButton;

namespace orvex {

/// The line below a list: how many of all rows have something that the user should know. A count selects its
/// rows when it is pressed; counts of 0 are not shown. The number of rows is in the grid's footer.
class ListStatus : public QWidget {
    Q_OBJECT

  public:
    /// `images` by ImageIndex.
    explicit ListStatus(const std::vector<QIcon>& images, QWidget* parent = nullptr);

    void ShowCounts(const PropertyCounts& rows);
    /// Says that reading ended after `read` of `of` files, and offers to continue.
    void SetStopped(std::size_t read, std::size_t of);
    void ClearStopped();
    /// Says how many files wait for a drive, and offers to skip them; 0: nothing.
    void SetAwaited(std::size_t files);
    /// Where there is no room the line shows only what can be skipped or continued.
    void SetCrowded(bool crowded);

  signals:
    void SelectRequested(RowProperty property);
    void RemoveRequested(RowProperty property);
    void ContinueRequested();
    void SkipRequested();

  private:
    struct Count {
        RowProperty property;
        StringId text;
        QToolButton* button;
    };

    QToolButton* AddButton(const char* name, StringId text, StringId tooltip, const QIcon& icon = {});
    void AddCount(RowProperty property, const char* name, StringId text, const QIcon& icon = {});

    void Arrange();

    QLabel* AddLabel(const char* name);

    QLabel* awaited_;
    QToolButton* skip_;
    QLabel* stopped_;
    QToolButton* continue_;
    std::vector<Count> counts_;
    QToolButton* removeThose_;
    bool crowded_ = false;
    bool isStopped_ = false;
    bool isWaiting_ = false;
};

}  // namespace orvex
