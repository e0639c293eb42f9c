#pragma once
#include <ole2.h>

#include <memory>

#include "orvexcommon/HostInterfaces.h"
#include "support/com/ComPtr_win.h"

namespace orvex::host {

/// Wraps a host object in a COM object; null if the object is not of the class expected.
using ServerMaker = ComPtr<IDispatch> (*)(std::unique_ptr<HostObject> object);

/// How a class is offered to COM.
struct ServerKind {
    ServerMaker maker = nullptr;  ///< null for a class that this host does not offer
    bool anyThread = false;       ///< made and used on any thread, not only on the one that registered it
};
ServerKind ServerKindOf(const ClassId& classId);

}  // namespace orvex::host
