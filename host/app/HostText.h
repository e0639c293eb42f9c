#pragma once
// Texts of the host for Qt.
#include <QString>
#include <initializer_list>

#include "support/Format.h"
#include "support/QtText.h"
#include "support/Text.h"

namespace orvex {

/// A text of the string library.
inline QString HostText(StringId id) {
    return ToQString(Text(id));
}

/// A format of the string library, filled in.
inline QString HostText(StringId id, std::initializer_list<FormatArg> arguments) {
    return ToQString(FormatText(Text(id), arguments));
}

}  // namespace orvex
