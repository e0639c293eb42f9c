#pragma once
#include <windows.h>

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
    /// The handle; the caller closes it.
    HANDLE Release() { return std::exchange(handle_, INVALID_HANDLE_VALUE); }
    explicit operator bool() const { return handle_ != INVALID_HANDLE_VALUE; }

  private:
    HANDLE handle_ = INVALID_HANDLE_VALUE;
};

}  // namespace orvex
