#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "support/HostObjects.h"

namespace orvex {

/// Typed access to the host's settings object, in the section "AddFilesDlg". Made for one use and dropped
/// after it. Throws LDataError "Failed to create OrvexSystemSettings object" when the host cannot make the
/// object.
class SystemSettings {
  public:
    explicit SystemSettings(HostObjects& objects);

    /// True only when -1 is stored; `fallback` when nothing is.
    bool GetBool(const std::wstring& key, bool fallback) const;
    /// Writes of any kind: a failure is logged, the stored value stays.
    void SetBool(const std::wstring& key, bool value);
    /// `fallback` when nothing, or no text, is stored.
    std::wstring GetText(const std::wstring& key, const std::wstring& fallback) const;
    void SetText(const std::wstring& key, const std::wstring& value);
    /// A number of any numeric kind, or digits stored as text; `fallback` for anything else.
    std::int32_t GetNumber(const std::wstring& key, std::int32_t fallback) const;
    /// The same for a number whose fallback reaches the host as a text of digits.
    std::int32_t GetNumber(const std::wstring& key, const std::wstring& fallbackDigits) const;
    void SetInt16(const std::wstring& key, std::int16_t value);

  private:
    std::unique_ptr<OrvexSystemSettings> object_;  ///< never null
};

}  // namespace orvex
