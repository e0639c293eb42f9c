#pragma once
#include <filesystem>

namespace orvex {

/// The folder that the file of this component lies in (the shared library's, or the program's when it is
/// linked into one). Found from the address of a function of it, so a moved folder is found where it is now.
/// Empty on Windows when the file's path is longer than 260 characters.
std::filesystem::path ModuleFolder();

}  // namespace orvex
