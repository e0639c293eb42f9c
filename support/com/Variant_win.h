#pragma once
#include <ole2.h>

#include <string>
#include <string_view>

#include "orvexcommon/HostInterfaces.h"

namespace orvex {

/// An owned BSTR, or none.
class BString {
  public:
    BString() = default;
    /// Throws std::bad_alloc.
    explicit BString(std::wstring_view text);
    ~BString() { SysFreeString(text_); }
    BString(const BString&) = delete;
    BString& operator=(const BString&) = delete;

    BSTR Get() const { return text_; }
    /// Where a function puts a text for the caller; what was held is freed first.
    BSTR* Receive();
    /// Hands the text over to the caller.
    BSTR Detach();

  private:
    BSTR text_ = nullptr;
};

/// The text of a BSTR, with the zeros in it; empty for a null pointer.
std::wstring TextOf(BSTR text);

/// An owned VARIANT.
class Variant {
  public:
    Variant() { VariantInit(&value_); }
    /// VT_EMPTY, VT_I2, VT_I4, VT_R8 or VT_BSTR. Throws std::bad_alloc.
    explicit Variant(const SettingValue& value);
    ~Variant() { VariantClear(&value_); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;

    const VARIANT& Get() const { return value_; }
    /// For functions that read and overwrite it.
    VARIANT* InOut() { return &value_; }
    /// Hands the value over to the caller's own, whose old content is cleared.
    void MoveTo(VARIANT& target);

  private:
    VARIANT value_;
};

/// Reads a variant of any type that stands for one value, also by reference. What no SettingValue has becomes
/// the next wider kind: other integers 16 or 32 bits, or a double when they need more; other numbers and
/// dates a double; VT_BOOL -1 or 0; VT_NULL nothing. DISP_E_TYPEMISMATCH for arrays, objects and records;
/// `value` is left as it was then.
HRESULT ToSettingValue(const VARIANT& variant, SettingValue& value);

}  // namespace orvex
