#include "support/ModuleFolder.h"

#include "support/com/ModuleFile_win.h"

namespace orvex {

std::filesystem::path ModuleFolder() {
    return std::filesystem::path(ModuleFile(reinterpret_cast<const void*>(&ModuleFolder))).parent_path();
}

}  // namespace orvex
