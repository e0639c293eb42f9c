#pragma once
#include <filesystem>
#include <memory>

#include "orvexcommon/HostInterfaces.h"

namespace orvex {

class ValueFile;

/// "host.sqlite" in the folder of the user's settings: where hosts keep theirs that have no place of their
/// own.
std::filesystem::path UserSettingsFile();

/// Named values in sections, kept in a file that several hosts may use at once. Sections and keys compare
/// without regard to the case of ASCII letters. Copies share what they know of the file: that waiting for it
/// failed, and what was logged.
class FileSettings final : public OrvexSystemSettings {
  public:
    /// The first value that is set creates the file.
    explicit FileSettings(const std::filesystem::path& path);

    std::int32_t Get(const std::wstring& section, const std::wstring& key, SettingValue& value) override;
    /// An empty value removes the setting.
    std::int32_t Set(const std::wstring& section, const std::wstring& key,
                     const SettingValue& value) override;

  private:
    std::shared_ptr<ValueFile> file_;
};

}  // namespace orvex
