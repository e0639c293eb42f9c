#pragma once
#include <string>

namespace orvex {

class LASFile;

/// The records of a file as the details view shows them; a "\n" ends every field and every eight bytes; long
/// lists end with a closing line.
std::wstring LasVlrText(const LASFile& file);
std::wstring LasEvlrText(const LASFile& file);

/// "Standard GPS Time", "GPS-Week-Seconds" or the library's text for formats without time; empty before
/// LAS 1.2.
std::wstring LasGpsTimeText(const LASFile& file);

}  // namespace orvex
