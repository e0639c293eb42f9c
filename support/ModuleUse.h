#pragma once
#include <atomic>

namespace orvex {

/// Counts one use of the component's code: a running call, a worker, an object that the host holds. The
/// component must stay loaded while there is any. A copy counts as another use. Any thread.
class ModuleUse {
  public:
    ModuleUse() noexcept { ++count_; }
    ModuleUse(const ModuleUse&) noexcept : ModuleUse() {}
    ModuleUse& operator=(const ModuleUse&) noexcept { return *this; }
    ~ModuleUse() { --count_; }

    static bool Any() noexcept { return count_ != 0; }

  private:
    inline static std::atomic<int> count_ = 0;
};

}  // namespace orvex
