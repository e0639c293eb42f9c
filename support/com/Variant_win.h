#pragma once
#include <ole2.h>

#include <string>
#include <string_view>

#include "orvexcommon/HostInterfaces.h"

namespace orvex {

/// Owned BSTR, or null.
class BString {
  public:
    BString() = default;
    /// Throws std::bad_alloc.
    explicit BString(std::wstring_view text);
    ~BString() { SysFreeString(text_); }
    BString(const BString&) = delete;
    BString& operator=(const BString&) = delete;

    BSTR Get() const { return text_; }
    /// Out parameter for functions that return a text; the old one is freed first.
    BSTR* Receive();
    /// Passes ownership to the caller.
    BSTR Detach();

  private:
    BSTR text_ = nullptr;
};

/// Text of a BSTR, embedded zeros included; empty for a null pointer.
std::wstring TextOf(BSTR text);

/// Owned VARIANT.
class Variant {
  public:
    Variant() { VariantInit(&value_); }
    /// VT_EMPTY, VT_I2, VT_I4, VT_R8 or VT_BSTR. Throws std::bad_alloc.
    explicit Variant(const SettingValue& value);
    ~Variant() { VariantClear(&value_); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;

    const VARIANT& Get() const { return value_; }
    /// In and out parameter.
    VARIANT* InOut() { return &value_; }
    /// Moves the value to `target`, whose old content is cleared.
    void MoveTo(VARIANT& target);

  private:
    VARIANT value_;
};

/// Reads a variant of any type that stands for a single value, also by reference. Types that SettingValue
/// lacks are widened: integers to 16 or 32 bits, or to a double where they do not fit; other numbers and
/// dates to a double. VT_BOOL gives -1 or 0, VT_NULL std::monostate. DISP_E_TYPEMISMATCH for arrays, objects
/// and records; `value` then stays unchanged.
HRESULT ToSettingValue(const VARIANT& variant, SettingValue& value);

}  // namespace orvex
