#pragma once
#include <QIcon>
#include <QWidget>
#include <optional>
#include <string>
#include <vector>

#include "dialog/page/RowProperties.h"
#include "support/Text.h"

class QAction;
class QLabel;
class QLineEdit;
class QToolButton;

namespace orvex {

/// The line above a list that says which rows are shown: words and conditions that the user types, and a menu
/// of properties.
class FilterLine : public QWidget {
    Q_OBJECT

  public:
    explicit FilterLine(const std::vector<QIcon>& images, QWidget* parent = nullptr);

    std::wstring Words() const;
    /// Nullopt: all rows.
    std::optional<RowProperty> Property() const { return property_; }
    bool IsInUse() const;
    /// Empties the line and chooses all rows; tells it only when that changes anything.
    void Clear();
    /// Gives the keyboard to what is typed, and selects it.
    void Edit();

    /// A problem with what was typed; empty: none.
    void ShowProblem(const std::wstring& problem);
    /// Numbers of rows, for the menu.
    void ShowCounts(const PropertyCounts& rows, std::size_t all);
    /// For narrow lists whose rows have no properties: no menu, no room for a problem while there is none,
    /// and texts of their own.
    void ShowWordsOnly(StringId placeholder, StringId tooltip);
    /// Where there is no room the line shows only while it is used.
    void SetCrowded(bool crowded);

  signals:
    void Changed();          ///< words or property
    void EditingStarted();   ///< the words have the keyboard
    void MenuAboutToShow();  ///< wants counts
    void LeaveRequested();   ///< the user wants to go on in the list

  protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    struct Choice {
        std::optional<RowProperty> property;
        StringId text;
        QAction* action;
    };

    void MakeWords();
    void MakeMenu(const std::vector<QIcon>& images);
    void Choose(std::optional<RowProperty> property);
    bool PressKey(int key);
    void ArrangeProblem();
    void Arrange();

    QLineEdit* words_;
    QToolButton* show_;
    QLabel* problemIcon_;
    QLabel* problem_;
    QString problemText_;
    std::vector<Choice> choices_;
    std::optional<RowProperty> property_;
    bool crowded_ = false;
    bool isNarrow_ = false;
};

}  // namespace orvex
