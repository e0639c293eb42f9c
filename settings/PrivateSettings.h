#pragma once
#include <filesystem>

namespace orvex {

/// While this lives, the settings of this process are others than the user's: none at first, gone in the end.
/// One at a time, made before anything reads settings.
class PrivateSettings {
  public:
    /// `folder` takes the files; it belongs to the caller, and is made when something is stored.
    explicit PrivateSettings(const std::filesystem::path& folder);
    ~PrivateSettings();
    PrivateSettings(const PrivateSettings&) = delete;
    PrivateSettings& operator=(const PrivateSettings&) = delete;
};

}  // namespace orvex
