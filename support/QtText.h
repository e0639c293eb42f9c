#pragma once
// Conversions between the component's wide texts and QString.
#include <QString>
#include <string>
#include <string_view>

namespace orvex {

/// The same text as a QString. Lone surrogates stay as they are, so any file name comes back unchanged from
/// ToWide; values that are no code point become U+FFFD.
QString ToQString(std::wstring_view text);

/// The same text as the component's wide text. Lossless for every QString, well formed or not.
std::wstring ToWide(const QString& text);

/// The text as a tooltip shows it unchanged: Qt takes what looks like HTML, as names of files may, for HTML.
QString TooltipText(const QString& text);

/// A path as Qt has it, with "/" everywhere, as users know it: with the system's own separators.
std::wstring ToWidePath(const QString& path);

}  // namespace orvex
