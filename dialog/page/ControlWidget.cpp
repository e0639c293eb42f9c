#include "dialog/page/ControlWidget.h"

#include <QButtonGroup>
#include <QGroupBox>
#include <QPushButton>
#include <QRadioButton>
#include <QToolButton>

namespace orvex {

QPushButton* MakeButton(int id, StringId caption, StringId tooltip, ButtonImage image) {
    auto* button = MakeControl<QPushButton>(id, caption, tooltip);
    button->setIcon(ButtonIcon(image));
    button->setAutoDefault(false);
    return button;
}

QToolButton* MakeIconButton(int id, StringId tooltip, ButtonImage image) {
    auto* button = MakeControl<QToolButton>(id, {}, tooltip);
    button->setIcon(ButtonIcon(image));
    button->setAccessibleName(button->toolTip());
    button->setFocusPolicy(Qt::StrongFocus);
    return button;
}

QRadioButton* MakeRadio(QButtonGroup* group, int value, int id, StringId caption, StringId tooltip) {
    auto* button = MakeControl<QRadioButton>(id, caption, tooltip);
    group->addButton(button, value);
    return button;
}

QGroupBox* MakeGroup(int id, StringId caption, QBoxLayout::Direction direction,
                     std::initializer_list<QWidget*> controls) {
    auto* group = MakeControl<QGroupBox>(id, caption);
    auto* layout = new QBoxLayout(direction, group);
    layout->setContentsMargins(kGroupMargins);
    layout->setSpacing(direction == QBoxLayout::LeftToRight ? 6 : kGroupRowSpacing);
    for (QWidget* widget : controls) {
        layout->addWidget(widget);
    }
    layout->addStretch();
    return group;
}

}  // namespace orvex
