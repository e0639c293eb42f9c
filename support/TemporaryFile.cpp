#include "support/TemporaryFile.h"

#include <algorithm>
#include <mutex>
#include <random>
#include <set>
#include <vector>

#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::wstring_view kStart = L".orvex-";
constexpr std::wstring_view kEnd = L".tmp";
constexpr int kMostNames = 8;

/// The path up to the end of a temporary file's name; empty for any other file.
std::wstring TemporaryPart(const std::wstring& path) {
    const std::wstring name = FileNameOf(path);
    const std::size_t end = name.find(kEnd);
    if (!name.starts_with(kStart) || end == std::wstring::npos || end == kStart.size() ||
        name.find_first_not_of(L"0123456789", kStart.size()) != end) {
        return {};
    }
    return path.substr(0, path.size() - name.size() + end + kEnd.size());
}

void RemoveLeftovers(const std::wstring& folder) {
    std::vector<std::wstring> owned;
    std::vector<std::wstring> others;
    ListFolder(folder, [&](const FolderEntry& entry) {
        if (const std::wstring part = TemporaryPart(entry.path); !part.empty()) {
            (part == entry.path ? owned : others).push_back(entry.path);
        }
        return true;
    });
    std::ranges::for_each(owned, OwnedFile::RemoveIfAbandoned);
    for (const std::wstring& path : others) {
        if (KindOf(TemporaryPart(path)) == FileKind::Missing) {
            RemoveFile(path);
        }
    }
}

/// Once per folder and process: a conversion writes many files beside each other.
void RemoveLeftoversOnce(const std::wstring& folder) {
    static std::mutex lock;
    static std::set<std::wstring> folders;
    const std::lock_guard guard(lock);
    if (folders.insert(folder).second) {
        RemoveLeftovers(folder);
    }
}

}  // namespace

TemporaryFile::TemporaryFile(const std::wstring& target) : target_(target) {
    // Random, so that two processes that write the same target do not meet; without the target's own name, so
    // that a name of the greatest length allowed still works.
    std::random_device random;
    const std::wstring folder = FolderOf(target);
    RemoveLeftoversOnce(folder.empty() ? L"." : folder);
    for (int i = 0; i < kMostNames; ++i) {
        const std::wstring name = std::wstring(kStart) + std::to_wstring(random()) + std::wstring(kEnd);
        path_ = FromPath(ToPath(folder) / name);
        creationError_ = file_.Create(path_);
        if (creationError_ == 0) {
            return;
        }
        file_ = {};
    }
}

TemporaryFile::~TemporaryFile() {
    if (!committed_) {
        file_ = {};
        RemoveFile(path_);
    }
}

SystemError TemporaryFile::Commit() {
    return Committed(RenameFile(path_, target_));
}

SystemError TemporaryFile::CommitTo(const std::wstring& freeName, bool& taken) {
    return Committed(RenameToFreeName(path_, freeName, taken));
}

SystemError TemporaryFile::Committed(SystemError error) {
    if (error == 0) {
        committed_ = true;
        file_ = {};
    }
    return error;
}

}  // namespace orvex
