#include "dialog/page/ControlWidget.h"

#include <QPushButton>
#include <QStyleOptionButton>
#include <QToolButton>

namespace orvex {
namespace {

// A button with a menu of its own would choose the menu's place itself.
class MenuButton final : public QPushButton {
  public:
    using QPushButton::QPushButton;

    QSize sizeHint() const override {
        const int mark = style()->pixelMetric(QStyle::PM_MenuButtonIndicator, nullptr, this);
        return QPushButton::sizeHint() + QSize(mark, 0);
    }
    QSize minimumSizeHint() const override { return sizeHint(); }

  protected:
    void initStyleOption(QStyleOptionButton* option) const override {
        QPushButton::initStyleOption(option);
        option->features |= QStyleOptionButton::HasMenu;
    }
};

template <typename Button>
Button* MakeAnyButton(int id, StringId caption, StringId tooltip, ButtonImage image) {
    auto* button = MakeControl<Button>(id, caption, tooltip);
    button->setIcon(ButtonIcon(image));
    button->setAutoDefault(false);
    return button;
}

}  // namespace

QPushButton* MakeButton(int id, StringId caption, StringId tooltip, ButtonImage image) {
    return MakeAnyButton<QPushButton>(id, caption, tooltip, image);
}

QPushButton* MakeMenuButton(int id, StringId caption, StringId tooltip, ButtonImage image) {
    return MakeAnyButton<MenuButton>(id, caption, tooltip, image);
}

QToolButton* MakeIconButton(int id, StringId tooltip, ButtonImage image) {
    auto* button = MakeControl<QToolButton>(id, {}, tooltip);
    button->setIcon(ButtonIcon(image));
    button->setAccessibleName(button->toolTip());
    button->setFocusPolicy(Qt::StrongFocus);
    return button;
}

}  // namespace orvex
