#pragma once
#include <atomic>

namespace orvex {

/// One use of the component's code: a call that runs, a worker, an object that the host holds. While there is
/// any, the component must stay loaded. A copy is a further use. Any thread.
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
