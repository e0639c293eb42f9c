#pragma once
// Owners of what the system hands out: kernel handles, registry keys, memory.
#include <objbase.h>
#include <sddl.h>

#include <memory>
#include <string>
#include <utility>

namespace orvex {

/// A kernel handle, closed when destroyed. Move-only. Empty: INVALID_HANDLE_VALUE; a null handle, which some
/// calls return for failure, becomes that too.
class Handle {
  public:
    Handle() = default;
    explicit Handle(HANDLE handle) : handle_(handle == nullptr ? INVALID_HANDLE_VALUE : handle) {}
    Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, INVALID_HANDLE_VALUE)) {}
    Handle& operator=(Handle&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~Handle() {
        if (*this) {
            CloseHandle(handle_);
        }
    }

    HANDLE Get() const { return handle_; }
    /// Returns the handle; the caller closes it.
    HANDLE Release() { return std::exchange(handle_, INVALID_HANDLE_VALUE); }
    explicit operator bool() const { return handle_ != INVALID_HANDLE_VALUE; }

  private:
    HANDLE handle_ = INVALID_HANDLE_VALUE;
};

/// An open registry key, closed when destroyed. Move-only; empty if none is open.
class OpenKey {
  public:
    OpenKey() = default;
    explicit OpenKey(HKEY key) : key_(key) {}
    OpenKey(OpenKey&& other) noexcept : key_(std::exchange(other.key_, nullptr)) {}
    OpenKey& operator=(OpenKey&& other) noexcept {
        std::swap(key_, other.key_);
        return *this;
    }
    ~OpenKey() {
        if (key_ != nullptr) {
            RegCloseKey(key_);
        }
    }

    HKEY Get() const { return key_; }
    explicit operator bool() const { return key_ != nullptr; }

  private:
    HKEY key_ = nullptr;
};

struct FreeLocalMemory {
    void operator()(void* memory) const { LocalFree(memory); }
};
struct FreeTaskMemory {
    void operator()(void* memory) const { CoTaskMemFree(memory); }
};

/// Memory that a system function allocates and the caller frees with LocalFree.
template <typename T>
using LocalMemory = std::unique_ptr<T, FreeLocalMemory>;

/// Memory that COM or the shell allocates and the caller frees with CoTaskMemFree.
template <typename T>
using TaskMemory = std::unique_ptr<T, FreeTaskMemory>;

/// Security descriptor from its text form (SDDL); null if it cannot be made.
inline LocalMemory<void> SecurityDescriptorOf(const std::wstring& text) {
    void* descriptor = nullptr;
    const bool isMade = ConvertStringSecurityDescriptorToSecurityDescriptorW(text.c_str(), SDDL_REVISION_1,
                                                                             &descriptor, nullptr) != FALSE;
    return LocalMemory<void>(isMade ? descriptor : nullptr);
}

}  // namespace orvex
