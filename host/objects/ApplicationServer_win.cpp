#include "host/objects/ApplicationServer_win.h"

#include "host/objects/VariantExchange_win.h"
#include "support/com/ComGuard_win.h"

namespace orvex::host {

HRESULT ApplicationServer::GetProjectFolder(BSTR* folder) {
    if (folder == nullptr) {
        return E_POINTER;
    }
    *folder = nullptr;
    return Guarded([&] {
        std::wstring text;
        const HRESULT result = application_->GetProjectFolder(text);
        if (SUCCEEDED(result)) {
            *folder = BString(text).Detach();
        }
        return result;
    });
}

HRESULT ApplicationServer::GetOptionItem(long item, VARIANT* value) {
    return Guarded([&] {
        return ExchangeVariant(
            value, [&](SettingValue& option) { return application_->GetOptionItem(item, option); });
    });
}

}  // namespace orvex::host
