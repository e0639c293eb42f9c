#pragma once
#include <QString>
#include <concepts>

#include "support/QtText.h"
#include "support/Text.h"

namespace orvex {

/// Name of the widget of a control id.
inline QString ControlName(int id) {
    return QStringLiteral("c%1").arg(id);
}

/// A control with its caption and its tooltip, which context help shows too. The caller gives it a parent.
template <typename Widget>
Widget* MakeControl(int id, StringId caption, StringId tooltip = {}) {
    auto* widget = new Widget;
    widget->setObjectName(ControlName(id));
    const QString text = ToQString(Text(caption));
    if constexpr (requires { widget->setTitle(text); }) {
        widget->setTitle(text);
    } else {
        widget->setText(text);
    }
    widget->setToolTip(ToQString(Text(tooltip)));
    widget->setWhatsThis(widget->toolTip());
    return widget;
}

}  // namespace orvex
