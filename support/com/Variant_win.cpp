#include "support/com/Variant_win.h"

#include <limits>
#include <new>
#include <optional>
#include <utility>

namespace orvex {
namespace {

template <typename Integer>
SettingValue WholeNumber(Integer number) {
    if (std::in_range<std::int32_t>(number)) {
        return static_cast<std::int32_t>(number);
    }
    return static_cast<double>(number);
}

double DecimalNumber(DECIMAL decimal) {
    double number = 0;
    VarR8FromDec(&decimal, &number);
    return number;
}

/// nullopt for types that do not stand for a single value.
std::optional<SettingValue> ValueOf(const VARIANT& variant) {
    constexpr double kCurrencyUnits = 10000;
    switch (variant.vt) {
        case VT_EMPTY:
        case VT_NULL:
            return std::monostate();
        case VT_BOOL:  // some hosts put C++'s true there, which is 1
            return static_cast<std::int16_t>(variant.boolVal == VARIANT_FALSE ? 0 : -1);
        case VT_I1:
            return static_cast<std::int16_t>(static_cast<signed char>(variant.cVal));
        case VT_UI1:
            return static_cast<std::int16_t>(variant.bVal);
        case VT_I2:
            return static_cast<std::int16_t>(variant.iVal);
        case VT_UI2:
            return WholeNumber(variant.uiVal);
        case VT_I4:
        case VT_INT:
            return WholeNumber(variant.lVal);
        case VT_UI4:
        case VT_UINT:
            return WholeNumber(variant.ulVal);
        case VT_I8:
            return WholeNumber(variant.llVal);
        case VT_UI8:
            return WholeNumber(variant.ullVal);
        case VT_R4:
            return static_cast<double>(variant.fltVal);
        case VT_R8:
        case VT_DATE:
            return variant.dblVal;
        case VT_CY:
            return static_cast<double>(variant.cyVal.int64) / kCurrencyUnits;
        case VT_DECIMAL:
            return DecimalNumber(variant.decVal);
        case VT_BSTR:
            return TextOf(variant.bstrVal);
        default:
            return std::nullopt;
    }
}

struct VariantFiller {
    VARIANT& target;

    void operator()(std::monostate) const { target.vt = VT_EMPTY; }
    void operator()(std::int16_t number) const {
        target.vt = VT_I2;
        target.iVal = number;
    }
    void operator()(std::int32_t number) const {
        target.vt = VT_I4;
        target.lVal = number;
    }
    void operator()(double number) const {
        target.vt = VT_R8;
        target.dblVal = number;
    }
    void operator()(const std::wstring& text) const {
        target.bstrVal = BString(text).Detach();
        target.vt = VT_BSTR;
    }
};

}  // namespace

BString::BString(std::wstring_view text) {
    if (text.size() <= std::numeric_limits<UINT>::max() / sizeof(wchar_t)) {
        text_ = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    }
    if (text_ == nullptr) {
        throw std::bad_alloc();
    }
}

BSTR* BString::Receive() {
    SysFreeString(Detach());
    return &text_;
}

BSTR BString::Detach() {
    return std::exchange(text_, nullptr);
}

std::wstring TextOf(BSTR text) {
    return text == nullptr ? std::wstring() : std::wstring(text, SysStringLen(text));
}

Variant::Variant(const SettingValue& value) {
    VariantInit(&value_);
    std::visit(VariantFiller{value_}, value);
}

void Variant::MoveTo(VARIANT& target) {
    VariantClear(&target);
    target = value_;
    VariantInit(&value_);
}

HRESULT ToSettingValue(const VARIANT& variant, SettingValue& value) {
    Variant plain;
    // The header's own declaration only lacks the const.
    const HRESULT copied = VariantCopyInd(plain.InOut(), const_cast<VARIANT*>(&variant));
    if (FAILED(copied)) {
        return copied;
    }
    std::optional<SettingValue> read = ValueOf(plain.Get());
    if (!read) {
        return DISP_E_TYPEMISMATCH;
    }
    value = *std::move(read);
    return S_OK;
}

}  // namespace orvex
