#pragma once
#include <string>

#include "host/utilities/LazLayout.h"

namespace orvex {

/// Checks what the codec trusts blindly: its own record (the kinds and sizes of the items of a point) and the
/// presence of the chunk table. Throws LDataError if they cannot be right. A file without the record is not
/// compressed and passes.
void RequireUsableCodecRecord(const std::wstring& path, const LazLayout& layout);

}  // namespace orvex
