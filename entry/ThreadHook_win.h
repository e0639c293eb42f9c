#pragma once
#include <windows.h>

namespace orvex {

/// A hook on one thread of this process, removed when destroyed. None for thread 0, which to Windows would
/// mean every thread.
class ThreadHook {
  public:
    ThreadHook(int kind, HOOKPROC procedure, DWORD thread)
        : hook_(thread == 0 ? nullptr : SetWindowsHookExW(kind, procedure, nullptr, thread)) {}
    ~ThreadHook() {
        if (hook_ != nullptr) {
            UnhookWindowsHookEx(hook_);
        }
    }
    ThreadHook(const ThreadHook&) = delete;
    ThreadHook& operator=(const ThreadHook&) = delete;

  private:
    HHOOK hook_;
};

}  // namespace orvex
