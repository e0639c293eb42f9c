#pragma once
#include <string>

namespace orvex {

class LASFile;
struct ExtraBytesAttribute;

/// Records of a file for the details pane. "\n" ends each field and each eight bytes; long lists are
/// truncated and end with a line that says so.
std::wstring LasVlrText(const LASFile& file);
std::wstring LasEvlrText(const LASFile& file);

/// "Standard GPS Time", "GPS-Week-Seconds", or the text for formats without GPS time; empty before LAS 1.2.
std::wstring LasGpsTimeText(const LASFile& file);

/// Bits that are set in the global encoding, by name ("standard GPS time, WKT"); empty for none.
std::wstring LasEncodingText(const LASFile& file);

/// Extra bytes attributes with their types ("amplitude (uint16), raw (3 bytes)").
std::wstring LasExtraBytesText(const LASFile& file);

/// Numbers of points by return ("1: 900, 2: 100"), without the returns that have none. `format`: of one
/// number.
std::wstring LasPointsByReturnText(const LASFile& file, const wchar_t* format);

/// Type of an attribute as programmers write it: "uint16", "double", "3 bytes".
std::string ExtraBytesType(const ExtraBytesAttribute& attribute);

/// True for a cloud-optimized point cloud (COPC): compressed, and ordered as an octree.
bool IsCopc(const LASFile& file);

}  // namespace orvex
