#include "support/testing/SparseFile.h"

#include <fstream>
#include <stdexcept>

#include "support/Text.h"

namespace orvex::testing {

void WriteAt(const std::wstring& path, std::uint64_t offset, const std::string& bytes) {
    std::fstream file(ToPath(path), std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(static_cast<std::streamoff>(offset));
    file << bytes << std::flush;
    if (!file) {
        throw std::runtime_error("WriteAt: " + ToUtf8(path));
    }
}

}  // namespace orvex::testing
