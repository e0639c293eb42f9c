#include "host/utilities/TemporaryFile.h"

#include <random>

namespace orvex {

TemporaryFile::TemporaryFile(const std::filesystem::path& target) : target_(target) {
    // Random, so that two processes that write the same target do not meet; without the target's own name, so
    // that a name of the greatest length allowed still works.
    std::random_device random;
    path_ = target.parent_path() / (".orvex-" + std::to_string(random()) + ".tmp");
}

TemporaryFile::~TemporaryFile() {
    if (!committed_) {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }
}

std::error_code TemporaryFile::Commit() {
    std::error_code error;
    std::filesystem::rename(path_, target_, error);
    committed_ = !error;
    return error;
}

}  // namespace orvex
