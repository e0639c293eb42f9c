#include <dlfcn.h>

#include "support/ModuleFolder.h"

namespace orvex {

std::filesystem::path ModuleFolder() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&ModuleFolder), &info) == 0 || info.dli_fname == nullptr) {
        return std::filesystem::current_path();
    }
    std::error_code error;
    // A program's own name may be relative to the folder it was started in; the kernel knows the full one.
    std::filesystem::path file = std::filesystem::canonical(info.dli_fname, error);
    if (error) {
        file = std::filesystem::read_symlink("/proc/self/exe", error);
    }
    return file.parent_path();
}

}  // namespace orvex
