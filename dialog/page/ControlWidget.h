#pragma once
// Making the controls of a page: each is named "c" and its id, and tells its tooltip to context help too. The
// caller gives them a parent.
#include <QString>
#include <concepts>

#include "dialog/Images.h"
#include "dialog/page/FixedText.h"
#include "support/QtText.h"

class QPushButton;
class QToolButton;

namespace orvex {

/// Name of the widget of a control id.
inline QString ControlName(int id) {
    return QStringLiteral("c%1").arg(id);
}

/// A control with its caption (or text) and its tooltip.
template <typename Widget>
Widget* MakeControl(int id, const FixedText& caption, StringId tooltip = {}) {
    auto* widget = new Widget;
    widget->setObjectName(ControlName(id));
    const QString text = ToQString(caption.Get());
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

/// The same with the mark of a button that opens a menu; its click opens it.
QPushButton* MakeMenuButton(int id, StringId caption, StringId tooltip, ButtonImage image);

/// A button that shows its image only; screen readers say its tooltip.
QToolButton* MakeIconButton(int id, StringId tooltip, ButtonImage image);

}  // namespace orvex
