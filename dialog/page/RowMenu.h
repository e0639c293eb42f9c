#pragma once
#include <QObject>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "dialog/DialogServices.h"
#include "dialog/page/RowProperties.h"
#include "support/Files.h"
#include "support/Text.h"

class QAction;
class QKeySequence;
class QMenu;

namespace orvex {

class DialogProgress;
class GridView;
class ListRows;
class RowFinder;

/// What the context menu of a list does with its files, beside what every grid does: their paths and folders,
/// a table of what is shown, and selecting by what they have in common with the row that was clicked.
class RowMenu : public QObject {
    Q_OBJECT

  public:
    /// Everything outlives the menu, which is a child of the grid.
    RowMenu(GridView& grid, RowFinder& finder, const DialogServices& services, DialogProgress& progress);

    /// `rows` outlives the menu, or it is not opened any more. `kind`: of data, as exported.
    void Start(const ListRows& rows, const char* kind);

  private:
    QAction* Add(QMenu& menu, const char* name, StringId text, const wchar_t* handler,
                 std::function<void()> run, QAction* before = nullptr);
    void AddFileActions();
    void AddSelectActions();
    void Enable();
    void FillFindings();

    /// Of the row that was clicked.
    std::optional<std::size_t> Record() const;
    std::vector<std::size_t> Selected() const;
    void CopyPaths() const;
    void ShowInFolder() const;
    void ExportList();
    /// 0, or why the file could not be written; nullopt if the user stopped, which leaves nothing behind.
    std::optional<SystemError> WriteList(const std::wstring& path, const std::vector<std::size_t>& records);
    void Warn(std::wstring text) const;
    void Invert();
    void SelectLike(Likeness likeness);

    GridView& grid_;
    RowFinder& finder_;
    DialogServices services_;
    DialogProgress& progress_;
    const ListRows* rows_ = nullptr;
    const char* kind_ = "";
    std::vector<QAction*> needRow_;   ///< enabled with a row that was clicked
    std::vector<QAction*> needRows_;  ///< enabled with any row
    QMenu* findings_ = nullptr;
};

}  // namespace orvex
