#include "support/PathSet.h"

#include "support/Files.h"

namespace orvex {

bool IsSameInAnyCase(const std::wstring& a, const std::wstring& b) {
    return KindOf(a) == FileKind::Missing || KindOf(b) == FileKind::Missing || IsSameFile(a, b);
}

}  // namespace orvex
