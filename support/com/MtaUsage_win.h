#pragma once
#include <ole2.h>

namespace orvex {

/// Keeps the process's multithreaded apartment while it exists, with whatever is registered or loaded in it,
/// and occupies no thread. May be destroyed on any thread.
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

}  // namespace orvex
