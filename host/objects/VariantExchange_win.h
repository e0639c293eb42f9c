#pragma once
#include "support/com/Variant_win.h"

namespace orvex::host {

/// Lets a call of a host object overwrite the caller's variant. A value that the call leaves alone keeps its
/// type too; a failure changes nothing.
template <typename Call>
HRESULT ExchangeVariant(VARIANT* variant, Call call) {
    if (variant == nullptr) {
        return E_POINTER;
    }
    SettingValue value;
    if (const HRESULT read = ToSettingValue(*variant, value); FAILED(read)) {
        return read;
    }
    const SettingValue before = value;
    const HRESULT result = call(value);
    if (SUCCEEDED(result) && value != before) {
        Variant(value).MoveTo(*variant);
    }
    return result;
}

}  // namespace orvex::host
