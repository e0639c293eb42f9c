#pragma once
#include <ole2.h>

#include <utility>

namespace orvex {

/// Owned reference to a COM object, or null.
template <typename Interface>
class ComPtr {
  public:
    ComPtr() = default;
    ComPtr(const ComPtr& other) : object_(other.object_) {
        if (object_ != nullptr) {
            object_->AddRef();
        }
    }
    ComPtr(ComPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    ComPtr& operator=(ComPtr other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~ComPtr() {
        if (object_ != nullptr) {
            object_->Release();
        }
    }

    /// Takes ownership of the caller's reference.
    static ComPtr Take(Interface* object) {
        ComPtr taken;
        taken.object_ = object;
        return taken;
    }

    /// Passes ownership to the caller.
    Interface* Detach() { return std::exchange(object_, nullptr); }
    Interface* Get() const { return object_; }
    Interface* operator->() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }

    /// Out parameter for functions that return a reference; the old one is released first.
    Interface** Receive() {
        *this = ComPtr();
        return &object_;
    }
    /// The same for functions that take an interface id and a void**.
    void** ReceiveAny() { return reinterpret_cast<void**>(Receive()); }

  private:
    Interface* object_ = nullptr;
};

}  // namespace orvex
