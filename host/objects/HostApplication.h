#pragma once
#include <functional>
#include <map>

#include "orvexcommon/HostInterfaces.h"

namespace orvex::host {

/// Says which folder the open project has (a trailing separator is not needed); empty when none is open.
using ProjectFolderProvider = std::function<std::wstring()>;
using OptionItems = std::map<std::int32_t, SettingValue>;

/// The reference host's application object.
class HostApplication final : public OrvexApplication {
  public:
    HostApplication(ProjectFolderProvider projectFolder, OptionItems options)
        : projectFolder_(std::move(projectFolder)), options_(std::move(options)) {}

    /// kHostFail when the provider throws.
    std::int32_t GetProjectFolder(std::wstring& folder) override;
    std::int32_t GetOptionItem(std::int32_t item, SettingValue& value) override;

  private:
    ProjectFolderProvider projectFolder_;
    OptionItems options_;
};

}  // namespace orvex::host
