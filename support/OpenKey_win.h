#pragma once
#include <windows.h>

#include <utility>

namespace orvex {

/// An open key of the registry, closed when destroyed. Move-only; empty when none is open.
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

}  // namespace orvex
