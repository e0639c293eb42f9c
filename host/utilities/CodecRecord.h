#pragma once
#include <string>

#include "host/utilities/LazLayout.h"

namespace orvex {

/// Checks what the codec believes unseen: its own record ("laszip encoded", 22204: the kinds and sizes of
/// what a point consists of) and that the table of chunks is there. Throws LDataError when they
/// cannot be right. A file without the record is not compressed and passes.
void RequireUsableCodecRecord(const std::wstring& path, const LazLayout& layout);

}  // namespace orvex
