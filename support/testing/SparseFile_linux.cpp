#include <filesystem>

#include "support/Text.h"
#include "support/testing/SparseFile.h"

namespace orvex::testing {

// The file systems here leave out what was never written.
void GrowSparse(const std::wstring& path, std::uint64_t size) {
    std::filesystem::resize_file(ToPath(path), size);
}

}  // namespace orvex::testing
