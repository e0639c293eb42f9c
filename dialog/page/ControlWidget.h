#pragma once
// Making the controls of a page: each is named "c" and its id, and tells its tooltip to context help too. The
// caller gives them a parent.
#include <QBoxLayout>
#include <QString>
#include <concepts>
#include <initializer_list>

#include "dialog/Images.h"
#include "support/QtText.h"
#include "support/Text.h"

class QButtonGroup;
class QGroupBox;
class QPushButton;
class QRadioButton;
class QToolButton;

namespace orvex {

/// Name of the widget of a control id.
inline QString ControlName(int id) {
    return QStringLiteral("c%1").arg(id);
}

/// A control with its caption (or text) and its tooltip.
template <typename Widget>
Widget* MakeControl(int id, StringId caption, StringId tooltip = {}) {
    auto* widget = new Widget;
    widget->setObjectName(ControlName(id));
    const QString text = ToQString(Text(caption));
    if constexpr (requires { widget->setTitle(text); }) {
        widget->setTitle(text);
    } else if constexpr (requires { widget->setText(text); }) {
        widget->setText(text);
    }
    widget->setToolTip(ToQString(Text(tooltip)));
    widget->setWhatsThis(widget->toolTip());
    return widget;
}

QPushButton* MakeButton(int id, StringId caption, StringId tooltip, ButtonImage image);

/// A button that shows its image only; screen readers say its tooltip.
QToolButton* MakeIconButton(int id, StringId tooltip, ButtonImage image);

/// A radio button of a group; `value` is what the group's checkedId() then tells.
QRadioButton* MakeRadio(QButtonGroup* group, int value, int id, StringId caption, StringId tooltip);

/// Distances in the groups of options below the grids.
inline constexpr QMargins kGroupMargins{8, 4, 8, 4};
inline constexpr int kGroupRowSpacing = 4;

/// A group whose controls stand in a row or below each other.
QGroupBox* MakeGroup(int id, StringId caption, QBoxLayout::Direction direction,
                     std::initializer_list<QWidget*> controls);

}  // namespace orvex
