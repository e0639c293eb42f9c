#include "support/testing/TemporaryFolder.h"

#include <atomic>
#include <chrono>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <vector>

#include "support/Files.h"
#include "support/Text.h"

namespace orvex::testing {

namespace {

void RemoveTree(const std::wstring& folder) {
    std::vector<FolderEntry> entries;
    ListFolder(folder, [&entries](FolderEntry entry) {
        entries.push_back(std::move(entry));
        return true;
    });
    for (const FolderEntry& entry : entries) {
        if (entry.kind == FileKind::Folder && !entry.isLink) {
            RemoveTree(entry.path);
        } else {
            RemoveFile(entry.path);
        }
    }
    RemoveFile(folder);
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
    static std::atomic<unsigned> counter{0};
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    path_ = std::filesystem::temp_directory_path() /
            ("orvex-test-" + std::to_string(now) + "-" + std::to_string(++counter));
    std::filesystem::create_directories(path_);
}

TemporaryFolder::~TemporaryFolder() {
    RemoveTree(FromPath(path_));
}

std::wstring TemporaryFolder::Name(const std::wstring& name) const {
    return NativePath(FromPath(path_ / "") + name);
}

std::wstring TemporaryFolder::Write(const std::wstring& name, const std::string& bytes) const {
    std::wstring file = Name(name);
    CreateFolders(FolderOf(file));
    std::ofstream(ToPath(file), std::ios::binary) << bytes;
    return file;
}

std::size_t TemporaryFolder::Entries() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(path_), {}));
}

std::string ReadFile(const std::wstring& path) {
    std::ifstream file(ToPath(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void WriteAt(const std::wstring& path, std::uint64_t offset, const std::string& bytes) {
    std::fstream file(ToPath(path), std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(static_cast<std::streamoff>(offset));
    file << bytes << std::flush;
    if (!file) {
        throw std::runtime_error("WriteAt: " + ToUtf8(path));
    }
}

}  // namespace orvex::testing
