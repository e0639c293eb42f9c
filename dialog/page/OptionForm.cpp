#include "dialog/page/OptionForm.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpressionValidator>
#include <QScopedValueRollback>
#include <algorithm>

#include "dialog/page/ControlWidget.h"
#include "support/HandlerGuard.h"

namespace orvex {
namespace {

constexpr QMargins kGroupMargins{8, 4, 8, 4};
constexpr int kLineSpacing = 4;
constexpr int kControlSpacing = 6;
constexpr int kRadioSpacing = 10;
constexpr int kFieldMargin = 16;  // what a frame and the cursor take of a field's width

QBoxLayout* MakeRow(QBoxLayout::Direction direction, int spacing) {
    auto* row = new QBoxLayout(direction);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(spacing);
    return row;
}

QLineEdit* MakeNumberField(const OptionRow& row) {
    auto* field = MakeControl<QLineEdit>(row.id, {}, row.tooltip);
    QString widest = QStringLiteral("000000");
    if (row.mask.value != 0) {
        widest = ToQString(Text(row.mask));
        field->setInputMask(widest);
    } else {
        field->setMaxLength(static_cast<int>(row.digits));
        field->setAlignment(Qt::AlignRight);
        field->setValidator(
            new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]*")), field));
    }
    field->setFixedWidth(field->fontMetrics().horizontalAdvance(widest) + kFieldMargin);
    return field;
}

QLineEdit* MakeTextField(const OptionRow& row) {
    auto* field = MakeControl<QLineEdit>(row.id, {}, row.tooltip);
    field->setMinimumWidth(field->fontMetrics().averageCharWidth() * 24);
    return field;
}

QPushButton* MakeTextButton(const OptionRow& row) {
    auto* button = MakeControl<QPushButton>(row.id, row.caption, row.tooltip);
    button->setAutoDefault(false);
    button->setMinimumWidth(button->sizeHint().width() + 2 * kControlSpacing);
    return button;
}

QLabel* MakeNote(const OptionRow& row) {
    auto* note = MakeControl<QLabel>(row.id, row.caption, row.tooltip);
    note->setWordWrap(true);
    return note;
}

bool IsEnabled(bool (*enabled)(const AddFilesParams&), const AddFilesParams& chosen) {
    return enabled == nullptr || enabled(chosen);
}

}  // namespace

OptionForm::OptionForm(const OptionTable& table, UserPrompts& prompts, QWidget* parent)
    : QWidget(parent), table_(table), prompts_(prompts), values_(DefaultOptions(table)) {
    controls_.reserve(table.rows.size());  // connections refer to them
    auto* columns = new QHBoxLayout(this);
    columns->setContentsMargins(0, 0, 0, 0);
    QBoxLayout* column = nullptr;
    for (const OptionGroup& group : table.groups) {
        if (group.within != 0) {
            continue;
        }
        if (!group.isBelow || column == nullptr) {
            column = MakeRow(QBoxLayout::TopToBottom, columns->spacing());
            columns->addLayout(column, group.takesRoom ? 1 : 0);
        }
        column->addWidget(MakeGroup(group));
    }
    Show(values_);
}

QGroupBox* OptionForm::MakeGroup(const OptionGroup& group) {
    auto* box = MakeControl<QGroupBox>(group.id, group.caption);
    boxes_[&group] = box;
    FillGroup(group, *box);
    return box;
}

void OptionForm::FillGroup(const OptionGroup& group, QGroupBox& box) {
    std::map<int, const OptionGroup*> lines;  // by number; null: of options
    for (const OptionRow& row : table_.rows) {
        if (row.group == group.id) {
            lines.emplace(row.line, nullptr);
        }
    }
    for (const OptionGroup& inner : table_.groups) {
        if (inner.within == group.id) {
            lines[inner.line] = &inner;
        }
    }
    auto* layout = new QGridLayout(&box);
    layout->setContentsMargins(kGroupMargins);
    layout->setHorizontalSpacing(kControlSpacing);
    layout->setVerticalSpacing(kLineSpacing);
    int place = 0;
    for (const auto& [number, inner] : lines) {
        QWidget* caption = nullptr;
        QWidget* line = inner == nullptr ? MakeLine(group, number, caption) : MakeGroup(*inner);
        const int first = group.alignsCaptions ? 1 : 0;
        if (caption != nullptr) {
            layout->addWidget(caption, place, 0);
        }
        layout->addWidget(line, place++, first);
    }
    layout->setRowStretch(place, 1);
}

/// `caption`: receives the caption of the first option where captions stand in a column of their own.
QWidget* OptionForm::MakeLine(const OptionGroup& group, int line, QWidget*& caption) {
    auto* widget = new QWidget;
    QBoxLayout* row = MakeRow(QBoxLayout::LeftToRight, kControlSpacing);
    widget->setLayout(row);
    bool isWide = false;
    for (const OptionRow& option : table_.rows) {
        if (option.group != group.id || option.line != line) {
            continue;
        }
        const Control& control = MakeWidgets(option);
        if (control.caption != nullptr && group.alignsCaptions && row->isEmpty()) {
            caption = control.caption;
        } else if (control.caption != nullptr) {
            control.caption->setIndent(row->isEmpty() ? -1 : 2 * kControlSpacing);
            row->addWidget(control.caption);
        }
        row->addWidget(control.widget);
        isWide = isWide || option.control == OptionControl::Text || option.control == OptionControl::Note;
    }
    if (!isWide) {
        row->addStretch();
    }
    return widget;
}

const OptionForm::Control& OptionForm::MakeWidgets(const OptionRow& row) {
    Control& control = controls_.emplace_back(Control{&row});
    control.widget = MakeWidget(row, control);
    if (row.captionId != 0) {
        control.caption = MakeControl<QLabel>(row.captionId, row.caption, row.tooltip);
        control.caption->setBuddy(control.widget);
    }
    return control;
}

QWidget* OptionForm::MakeWidget(const OptionRow& row, Control& control) {
    const auto changed = Guarded(prompts_, L"OnOptions", [this, &control] { OnChanged(control); });
    switch (row.control) {
        case OptionControl::CheckBox: {
            auto* box = MakeControl<QCheckBox>(row.id, row.caption, row.tooltip);
            connect(box, &QCheckBox::toggled, this, changed);
            return box;
        }
        case OptionControl::Radios:
            return MakeRadios(row, control);
        case OptionControl::List: {
            auto* list = MakeControl<QComboBox>(row.id, {}, row.tooltip);
            connect(list, &QComboBox::currentIndexChanged, this, changed);
            return list;
        }
        case OptionControl::Number:
            return MakeNumberField(row);
        case OptionControl::Text: {
            auto* field = MakeTextField(row);
            connect(field, &QLineEdit::textChanged, this, changed);
            return field;
        }
        case OptionControl::Button:
            return MakeTextButton(row);
        case OptionControl::Note:
            return MakeNote(row);
        case OptionControl::DetailColumns:
            break;
    }
    return nullptr;
}

QWidget* OptionForm::MakeRadios(const OptionRow& row, Control& control) {
    auto* widget = new QWidget;
    QBoxLayout* layout = row.choicesBeside ? MakeRow(QBoxLayout::LeftToRight, kRadioSpacing)
                                           : MakeRow(QBoxLayout::TopToBottom, kLineSpacing);
    widget->setLayout(layout);
    control.radios = new QButtonGroup(this);
    for (const OptionChoice& choice : row.choices) {
        auto* button = MakeControl<QRadioButton>(choice.id, choice.caption, choice.tooltip);
        control.radios->addButton(button, choice.value);
        layout->addWidget(button);
    }
    connect(control.radios, &QButtonGroup::idToggled, this,
            Guarded(prompts_, L"OnOptions", [this, &control](int, bool isOn) {
                if (isOn) {
                    OnChanged(control);
                }
            }));
    return widget;
}

void OptionForm::Show(const OptionValues& values) {
    values_ = values;
    const QScopedValueRollback<bool> showing(isShowing_, true);
    for (const Control& control : controls_) {
        ShowControl(control);
    }
}

void OptionForm::ShowControl(const Control& control) {
    const OptionRow& row = *control.row;
    switch (row.control) {
        case OptionControl::CheckBox:
            static_cast<QCheckBox*>(control.widget)->setChecked(NumberOf(row, values_) != 0);
            break;
        case OptionControl::Radios:
            control.radios->button(NumberOf(row, values_))->setChecked(true);
            break;
        case OptionControl::List:
            FillList(control);
            break;
        case OptionControl::Number:
            static_cast<QLineEdit*>(control.widget)->setText(QString::number(NumberOf(row, values_)));
            break;
        case OptionControl::Text:
            static_cast<QLineEdit*>(control.widget)->setText(ToQString(TextOf(row, values_)));
            static_cast<QLineEdit*>(control.widget)->setCursorPosition(0);
            break;
        case OptionControl::Button:
        case OptionControl::Note:
        case OptionControl::DetailColumns:
            break;
    }
}

/// The choices that there are now; the first is chosen when the value is none of them.
void OptionForm::FillList(const Control& control) {
    auto* list = static_cast<QComboBox*>(control.widget);
    list->clear();
    for (const OptionChoice& choice : ChoicesOf(*control.row, values_.record)) {
        list->addItem(ToQString(choice.caption.Get()), choice.value);
    }
    list->setCurrentIndex(std::max(list->findData(NumberOf(*control.row, values_)), 0));
    ReadControl(control);
}

void OptionForm::ReadControl(const Control& control) {
    const OptionRow& row = *control.row;
    switch (row.control) {
        case OptionControl::CheckBox:
            SetNumber(row, static_cast<QCheckBox*>(control.widget)->isChecked() ? 1 : 0, values_);
            break;
        case OptionControl::Radios:
            SetNumber(row, control.radios->checkedId(), values_);
            break;
        case OptionControl::List:
            SetNumber(row, static_cast<QComboBox*>(control.widget)->currentData().toInt(), values_);
            break;
        case OptionControl::Text:
            SetText(row, ToWide(static_cast<QLineEdit*>(control.widget)->text()), values_);
            break;
        case OptionControl::Number:
        case OptionControl::Button:
        case OptionControl::Note:
        case OptionControl::DetailColumns:
            break;
    }
}

void OptionForm::OnChanged(const Control& control) {
    if (isShowing_) {
        return;
    }
    ReadControl(control);
    if (control.row->control == OptionControl::List) {
        FillDependentLists(control);
    }
    emit Changed(control.row->changesLayers);
}

/// The first choice is chosen anew.
void OptionForm::FillDependentLists(const Control& changed) {
    const QScopedValueRollback<bool> showing(isShowing_, true);
    for (const Control& control : controls_) {
        if (&control != &changed && control.row->choicesFor != nullptr) {
            SetNumber(*control.row, ChoicesOf(*control.row, values_.record).front().value, values_);
            FillList(control);
        }
    }
}

bool OptionForm::ReadNumber(const OptionRow& row) {
    const auto control = std::ranges::find(controls_, &row, &Control::row);
    auto* field = static_cast<QLineEdit*>(control->widget);
    if (const std::optional<std::int32_t> number = ParseNumber(row, ToWide(field->text()))) {
        SetNumber(row, *number, values_);
        return true;
    }
    field->setFocus();
    field->selectAll();
    return false;
}

void OptionForm::TypeText(int id, const std::wstring& text) {
    auto* field = findChild<QLineEdit*>(ControlName(id));
    field->setText(ToQString(text));
    field->setCursorPosition(0);
}

bool OptionForm::IsSwitchedOn(const OptionRow& row) const {
    return row.enabledBy == 0 || findChild<QCheckBox*>(ControlName(row.enabledBy))->isChecked();
}

void OptionForm::Enable(bool busy) {
    for (const Control& control : controls_) {
        const bool usable =
            !busy && IsEnabled(control.row->enabled, values_.record) && IsSwitchedOn(*control.row);
        control.widget->setEnabled(usable);
        if (control.radios != nullptr) {
            for (const OptionChoice& choice : control.row->choices) {
                control.radios->button(choice.value)->setEnabled(IsEnabled(choice.enabled, values_.record));
            }
        }
        if (control.caption != nullptr) {
            control.caption->setEnabled(usable);
        }
    }
    for (const auto& [group, box] : boxes_) {
        if (group->enabled != nullptr) {
            box->setEnabled(!busy && group->enabled(values_.record));
        }
    }
}

}  // namespace orvex
