#pragma once
#include <QWidget>
#include <map>
#include <vector>

#include "dialog/page/Options.h"

class QButtonGroup;
class QGroupBox;
class QLabel;

namespace orvex {

class UserPrompts;

/// The groups of options below a grid, made from the page's table. Every control is named "c" and its id.
class OptionForm final : public QWidget {
    Q_OBJECT

  public:
    /// `table` and what it refers to outlive the form, and so does `prompts`, which tells of a handler that
    /// failed. Shows the values of a fresh machine.
    OptionForm(const OptionTable& table, UserPrompts& prompts, QWidget* parent = nullptr);

    void Show(const OptionValues& values);
    /// The controls' values. Numbers are those shown last by Show or accepted by ReadNumber. The detail
    /// columns, whose button is the page's, keep their value too.
    const OptionValues& Values() const { return values_; }
    void SetDetailColumns(bool shown) { values_.detailColumns = shown; }

    /// Takes over the number that was typed. False, with the cursor in its field, when it is refused.
    bool ReadNumber(const OptionRow& row);
    /// Replaces the text of a field as if it had been typed.
    void TypeText(int id, const std::wstring& text);
    /// Enables what can be used now; nothing while `busy`.
    void Enable(bool busy);

  signals:
    void Changed(bool changesLayers);

  private:
    /// The widgets of one row; those that it has not are null.
    struct Control {
        const OptionRow* row;
        QWidget* widget = nullptr;
        QLabel* caption = nullptr;
        QButtonGroup* radios = nullptr;
    };

    QGroupBox* MakeGroup(const OptionGroup& group);
    void FillGroup(const OptionGroup& group, QGroupBox& box);
    QWidget* MakeLine(const OptionGroup& group, int line, QWidget*& caption);
    const Control& MakeWidgets(const OptionRow& row);
    QWidget* MakeWidget(const OptionRow& row, Control& control);
    QWidget* MakeRadios(const OptionRow& row, Control& control);
    void ShowControl(const Control& control);
    void ReadControl(const Control& control);
    void FillList(const Control& control);
    void FillDependentLists(const Control& changed);
    void OnChanged(const Control& control);
    bool IsSwitchedOn(const OptionRow& row) const;

    const OptionTable& table_;
    UserPrompts& prompts_;
    OptionValues values_;
    std::vector<Control> controls_;
    std::map<const OptionGroup*, QGroupBox*> boxes_;
    bool isShowing_ = false;  ///< controls change because values are shown
};

}  // namespace orvex
