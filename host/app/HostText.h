#pragma once
// The host's own texts.
#include <QByteArray>
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

/// The bytes of a path as the file system has them, and back.
QByteArray PathBytes(const std::wstring& path);
std::wstring PathFromBytes(const QByteArray& bytes);

/// A number with its thousands apart, as the user's language has it.
QString GroupedNumber(std::uint64_t number);

}  // namespace orvex
