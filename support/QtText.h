#pragma once
// Conversions between the component's wide texts and QString.
#include <QString>
#include <string>
#include <string_view>
#include <vector>

class QMimeData;

namespace orvex {

/// The same text as a QString. Lone surrogates are kept, so any file name survives the way back through
/// ToWide; values outside Unicode become U+FFFD.
QString ToQString(std::wstring_view text);

/// The same text as a wide text. Lossless for every QString, well-formed or not.
std::wstring ToWide(const QString& text);

/// Tooltip that shows a text unchanged: Qt would render what looks like HTML, as file names may.
QString TooltipText(const QString& text);

/// Path from Qt ("/" everywhere) with the system's own separators.
std::wstring ToWidePath(const QString& path);

/// Paths of the files and folders of this computer that are dragged.
std::vector<std::wstring> LocalPaths(const QMimeData& data);

}  // namespace orvex
