#pragma once
#include <string>

namespace orvex {

enum class CadKind { Dwg, Dxf, Dgn };

/// Tells from a file's first bytes that GDAL can read it as this kind of drawing. Throws LDataError if not:
/// "DWG 2018 (AC1032) cannot be read here; ...", the file is missing, empty or of another kind.
void RequireReadable(const std::wstring& path, CadKind kind);

}  // namespace orvex
