#include "host/objects/DualObject_win.h"

#include <string>

#include "support/com/ComGuard_win.h"
#include "support/com/ModuleFile_win.h"

namespace orvex::host {

HRESULT HostTypeInfo(REFIID interfaceId, ComPtr<ITypeInfo>& info) {
    return Guarded([&] {
        const std::wstring file = ModuleFile(reinterpret_cast<const void*>(&HostTypeInfo));
        ComPtr<ITypeLib> library;
        const HRESULT result = LoadTypeLibEx(file.c_str(), REGKIND_NONE, library.Receive());
        return FAILED(result) ? result : library->GetTypeInfoOfGuid(interfaceId, info.Receive());
    });
}

}  // namespace orvex::host
