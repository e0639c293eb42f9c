#pragma once
// The host's own texts.
#include <QString>
#include <initializer_list>
#include <string>

#include "support/Format.h"
#include "support/QtText.h"
#include "support/Text.h"

namespace orvex {

/// A text of the string library.
QString HostText(StringId id);
/// A format of the string library, filled in.
QString HostText(StringId id, std::initializer_list<FormatArg> arguments);

/// A number with its thousands apart, as the user's language has it.
QString GroupedNumber(std::uint64_t number);

}  // namespace orvex
