#pragma once
#include <ole2.h>

#include <utility>

namespace orvex {

/// A counted reference to a COM object, or none.
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

    /// Takes over a reference that the caller holds.
    static ComPtr Take(Interface* object) {
        ComPtr taken;
        taken.object_ = object;
        return taken;
    }

    /// Hands the reference over to the caller.
    Interface* Detach() { return std::exchange(object_, nullptr); }
    Interface* Get() const { return object_; }
    Interface* operator->() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }

    /// Where a function puts a reference for the caller; what was held is released first.
    Interface** Receive() {
        *this = ComPtr();
        return &object_;
    }
    /// The same for functions that take an interface id.
    void** ReceiveAny() { return reinterpret_cast<void**>(Receive()); }

  private:
    Interface* object_ = nullptr;
};

}  // namespace orvex
