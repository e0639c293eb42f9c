#pragma once
#include <objbase.h>

#include <memory>

namespace orvex {

struct FreeLocalMemory {
    void operator()(void* memory) const { LocalFree(memory); }
};
struct FreeTaskMemory {
    void operator()(void* memory) const { CoTaskMemFree(memory); }
};

/// Memory that a function of the system has made and leaves to the caller, who would free it with LocalFree.
template <typename T>
using LocalMemory = std::unique_ptr<T, FreeLocalMemory>;

/// The same for memory of COM and of the shell, freed with CoTaskMemFree.
template <typename T>
using TaskMemory = std::unique_ptr<T, FreeTaskMemory>;

}  // namespace orvex
