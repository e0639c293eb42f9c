#include "dialog/page/ControlWidget.h"

#include <QPushButton>
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

}  // namespace orvex
