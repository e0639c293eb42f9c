#pragma once
#include <ole2.h>

namespace orvex {

/// Keeps COM initialised on this thread while it exists, in whatever kind of apartment the thread is in
/// already, else in one of the wanted kind. To be destroyed on the thread that made it; on another thread the
/// initialisation stays.
class ComApartment {
  public:
    explicit ComApartment(COINIT kind = COINIT_APARTMENTTHREADED) : result_(CoInitializeEx(nullptr, kind)) {}
    ~ComApartment() {
        if (SUCCEEDED(result_) && thread_ == GetCurrentThreadId()) {
            CoUninitialize();
        }
    }
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;

    /// A failure when COM cannot be used on this thread.
    HRESULT Result() const { return result_ == RPC_E_CHANGED_MODE ? S_OK : result_; }

  private:
    HRESULT result_;
    DWORD thread_ = GetCurrentThreadId();
};

}  // namespace orvex
