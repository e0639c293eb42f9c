#pragma once
#include <memory>

#include "orvexcommon/HostInterfaces.h"

namespace orvex {
class ValueFile;
}

namespace orvex::host {

/// The reference host's settings object: named values in sections, kept in a file that several hosts may use
/// at once. Section and key are compared without regard to the case of ASCII letters.
class HostSettings final : public OrvexSystemSettings {
  public:
    explicit HostSettings(std::shared_ptr<ValueFile> file) : file_(std::move(file)) {}

    /// kHostFail when the file cannot be read.
    std::int32_t Get(const std::wstring& section, const std::wstring& key, SettingValue& value) override;
    /// kHostFail when the file cannot be written. An empty value takes the setting back.
    std::int32_t Set(const std::wstring& section, const std::wstring& key,
                     const SettingValue& value) override;

  private:
    std::shared_ptr<ValueFile> file_;
};

}  // namespace orvex::host
