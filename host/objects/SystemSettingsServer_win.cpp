#include "host/objects/SystemSettingsServer_win.h"

#include "host/objects/VariantExchange_win.h"
#include "support/com/ComGuard_win.h"

namespace orvex::host {

HRESULT SystemSettingsServer::Get(BSTR section, BSTR key, VARIANT* value) {
    return Guarded([&] {
        return ExchangeVariant(value, [&](SettingValue& setting) {
            return settings_->Get(TextOf(section), TextOf(key), setting);
        });
    });
}

HRESULT SystemSettingsServer::Set(BSTR section, BSTR key, VARIANT value) {
    return Guarded([&] {
        SettingValue setting;
        const HRESULT read = ToSettingValue(value, setting);
        return FAILED(read) ? read : settings_->Set(TextOf(section), TextOf(key), setting);
    });
}

}  // namespace orvex::host
