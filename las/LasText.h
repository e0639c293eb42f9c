#pragma once
#include <string>

namespace orvex {

class LASFile;

/// Records of a file for the details pane. "\n" ends each field and each eight bytes; long lists are
/// truncated and end with a line that says so.
std::wstring LasVlrText(const LASFile& file);
std::wstring LasEvlrText(const LASFile& file);

/// "Standard GPS Time", "GPS-Week-Seconds", or the text for formats without GPS time; empty before LAS 1.2.
std::wstring LasGpsTimeText(const LASFile& file);

}  // namespace orvex
