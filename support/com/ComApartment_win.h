#pragma once
#include <ole2.h>

#include <bit>

#include "orvexcommon/HostInterfaces.h"
#include "support/com/ComPtr_win.h"

namespace orvex {

/// Keeps COM initialised on this thread while it exists: in the apartment that the thread is in already, else
/// in one of `kind`. Destroy it on the thread that made it; on another thread the initialisation stays.
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

    /// Failure code if COM cannot be used on this thread.
    HRESULT Result() const { return result_ == RPC_E_CHANGED_MODE ? S_OK : result_; }

  private:
    HRESULT result_;
    DWORD thread_ = GetCurrentThreadId();
};

/// Keeps the process's multithreaded apartment alive, with the classes registered and the libraries loaded in
/// it, without a thread of its own. May be destroyed on any thread.
class MtaUsage {
  public:
    MtaUsage() : result_(CoIncrementMTAUsage(&cookie_)) {}
    ~MtaUsage() {
        if (SUCCEEDED(result_)) {
            CoDecrementMTAUsage(cookie_);
        }
    }
    MtaUsage(const MtaUsage&) = delete;
    MtaUsage& operator=(const MtaUsage&) = delete;

    HRESULT Result() const { return result_; }

  private:
    CO_MTA_USAGE_COOKIE cookie_ = nullptr;
    HRESULT result_;
};

/// COM object together with the apartment that its calls need; empty until created. Lives on one thread.
template <typename Interface>
class ComObject {
  public:
    /// `kind`: the apartment to enter if the thread is in none.
    explicit ComObject(COINIT kind = COINIT_APARTMENTTHREADED) : apartment_(kind) {}

    HRESULT Create(const ClassId& classId) {
        if (FAILED(apartment_.Result())) {
            return apartment_.Result();
        }
        return CoCreateInstance(std::bit_cast<CLSID>(classId), nullptr, CLSCTX_ALL, __uuidof(Interface),
                                object_.ReceiveAny());
    }
    Interface* Get() const { return object_.Get(); }
    Interface* operator->() const { return object_.Get(); }

  private:
    ComApartment apartment_;  ///< destroyed last
    ComPtr<Interface> object_;
};

}  // namespace orvex
