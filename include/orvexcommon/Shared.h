#pragma once
#include <memory>
#include <utility>

namespace orvex {

/// A value that its copies share and nobody changes: long texts and lists that many files have in common.
/// Never null; a default one holds a default T.
template <typename T>
class Shared {
  public:
    Shared() : value_(Default()) {}
    Shared(T value) : value_(std::make_shared<const T>(std::move(value))) {}
    /// `value`: not null.
    explicit Shared(std::shared_ptr<const T> value) : value_(std::move(value)) {}

    const T& operator*() const { return *value_; }
    const T* operator->() const { return value_.get(); }
    operator const T&() const { return *value_; }

    bool operator==(const Shared& other) const { return value_ == other.value_ || *value_ == *other.value_; }

  private:
    static const std::shared_ptr<const T>& Default() {
        static const auto* const value = new std::shared_ptr<const T>(std::make_shared<const T>());
        return *value;
    }

    std::shared_ptr<const T> value_;
};

}  // namespace orvex
