#pragma once
#include <string>

namespace orvex {

/// Path, of any length, of the module (program or library) that holds the address; empty if none does.
std::wstring ModuleFile(const void* address);

}  // namespace orvex
