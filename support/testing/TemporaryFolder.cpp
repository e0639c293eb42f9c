#include "support/testing/TemporaryFolder.h"

#include <atomic>
#include <chrono>
#include <fstream>
#include <iterator>

#include "support/Text.h"

namespace orvex::testing {

TemporaryFolder::TemporaryFolder() {
    static std::atomic<unsigned> counter{0};
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    path_ = std::filesystem::temp_directory_path() /
            ("orvex-test-" + std::to_string(now) + "-" + std::to_string(++counter));
    std::filesystem::create_directories(path_);
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code error;
    std::filesystem::remove_all(path_, error);
}

std::wstring TemporaryFolder::Name(const std::wstring& name) const {
    return FromPath(path_ / ToPath(name));
}

std::wstring TemporaryFolder::Write(const std::wstring& name, const std::string& bytes) const {
    const std::filesystem::path file = path_ / ToPath(name);
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << bytes;
    return FromPath(file);
}

std::size_t TemporaryFolder::Entries() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(path_), {}));
}

std::string ReadFile(const std::wstring& path) {
    std::ifstream file(ToPath(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace orvex::testing
