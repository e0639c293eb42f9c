#include "support/TemporaryFile.h"

#include <random>

#include "support/Text.h"

namespace orvex {

TemporaryFile::TemporaryFile(const std::wstring& target) : target_(target) {
    // Random, so that two processes that write the same target do not meet; without the target's own name, so
    // that a name of the greatest length allowed still works.
    std::random_device random;
    path_ = FromPath(ToPath(FolderOf(target)) / (L".orvex-" + std::to_wstring(random()) + L".tmp"));
}

TemporaryFile::~TemporaryFile() {
    if (!committed_) {
        RemoveFile(path_);
    }
}

SystemError TemporaryFile::Commit() {
    const SystemError error = RenameFile(path_, target_);
    committed_ = error == 0;
    return error;
}

SystemError TemporaryFile::CommitTo(const std::wstring& freeName, bool& taken) {
    const SystemError error = RenameToFreeName(path_, freeName, taken);
    committed_ = error == 0;
    return error;
}

}  // namespace orvex
