#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "support/HostObjects.h"

namespace orvex {

/// Typed access to the section "AddFilesDlg" of the host's settings object, for one use. The constructor
/// throws LDataError "Failed to create OrvexSystemSettings object" if the host cannot create the object; the
/// log then says what the host has to register.
class SystemSettings {
  public:
    explicit SystemSettings(HostObjects& objects);

    /// True only if -1 is stored; `fallback` if nothing is.
    bool GetBool(const std::wstring& key, bool fallback) const;
    /// Every setter logs a failure and keeps the stored value.
    void SetBool(const std::wstring& key, bool value);
    /// `fallback` if nothing, or no text, is stored.
    std::wstring GetText(const std::wstring& key, const std::wstring& fallback) const;
    void SetText(const std::wstring& key, const std::wstring& value);
    /// A number of any type, or digits stored as text; `fallback` for anything else.
    std::int32_t GetNumber(const std::wstring& key, std::int32_t fallback) const;
    /// The same, with the fallback passed to the host as a text of digits.
    std::int32_t GetNumber(const std::wstring& key, const std::wstring& fallbackDigits) const;
    void SetInt16(const std::wstring& key, std::int16_t value);

  private:
    std::unique_ptr<OrvexSystemSettings> object_;  ///< never null
};

}  // namespace orvex
