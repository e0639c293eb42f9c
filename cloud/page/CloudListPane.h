#pragma once
#include <QWidget>
#include <string>
#include <vector>

#include "support/Text.h"

class QAbstractButton;
class QIcon;
class QProgressBar;
class QPushButton;
class QToolButton;

namespace orvex {

class FilterLine;
class GridView;
class ListRows;
class RowFinder;
class UserPrompts;

/// How the reading of a list stands.
enum class CloudListState {
    Idle,  ///< read to its end, or nothing to read
    Reading,
    Stopped,  ///< by the user, before the end
    Failed,
};

struct CloudListTexts {
    const char* name;  ///< of the pane, and the beginning of its controls' names
    StringId label, filter;
    StringId one, several, shownOf;  ///< counts
    StringId reading;                ///< in the empty list
};

/// One of the browser's two lists: label, filter line, grid, and a line that says how far it has been read.
class CloudListPane : public QWidget {
    Q_OBJECT

  public:
    /// `rows` and `prompts` outlive the pane.
    CloudListPane(const CloudListTexts& texts, ListRows& rows, UserPrompts& prompts,
                  const std::vector<QIcon>& images);
    ~CloudListPane() override;

    GridView& Grid() const { return *grid_; }
    FilterLine& Filter() const;

    /// Names beside the label whose list it is.
    void SetOwner(const std::wstring& owner);
    /// `message`: why the list is empty (Idle), why reading takes longer (Reading), or the failure.
    /// `canGoOn`: after Stopped or Failed.
    void ShowState(CloudListState state, const std::wstring& message = {}, bool canGoOn = true);
    CloudListState State() const { return state_; }
    /// Selected entries, told in the line below the list; `elsewhere`: those of them that are in other lists.
    void SetSelected(std::size_t selected, std::size_t elsewhere);

  signals:
    void StopRequested();
    void ContinueRequested();  ///< after it was stopped, or has failed
    void DeselectRequested();  ///< what is selected elsewhere

  private:
    class Line;

    QWidget* MakeHead(const CloudListTexts& texts);
    QWidget* MakeFoot(const std::vector<QIcon>& images);
    std::wstring CountText() const;
    std::wstring SelectedText() const;
    std::wstring FootText() const;
    void Arrange();

    const CloudListTexts texts_;
    ListRows& rows_;
    GridView* grid_;
    RowFinder* finder_;
    Line* owner_;
    QProgressBar* busy_;
    QWidget* warning_;
    Line* line_;
    QToolButton* stop_;
    QPushButton* continue_;
    QPushButton* deselect_;
    CloudListState state_ = CloudListState::Idle;
    std::wstring message_;
    bool canGoOn_ = true;
    std::size_t selected_ = 0;
    std::size_t elsewhere_ = 0;
};

}  // namespace orvex
