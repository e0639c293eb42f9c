#pragma once
#include <string>

namespace orvex {

/// The path of the file of the module (program or library) that holds the address; a path of any length.
/// Empty when none does.
std::wstring ModuleFile(const void* address);

}  // namespace orvex
