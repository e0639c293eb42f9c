#pragma once
#include <windows.h>

#include <string>

namespace orvex {

/// The module (program or library) that holds the address; null when none does. It is not kept loaded.
HMODULE ModuleOf(const void* address);

/// The path of the file of that module, of any length; empty when there is none.
std::wstring ModuleFile(const void* address);

}  // namespace orvex
