#pragma once
#include <ole2.h>

#include <bit>

#include "orvexcommon/HostInterfaces.h"
#include "support/com/ComApartment_win.h"
#include "support/com/ComPtr_win.h"

namespace orvex {

/// A COM object of a class, or none, with the apartment that its calls need. Lives on one thread.
template <typename Interface>
class ComObject {
  public:
    /// `kind`: the apartment of a thread that is in none.
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
    ComApartment apartment_;  ///< the last to go
    ComPtr<Interface> object_;
};

}  // namespace orvex
