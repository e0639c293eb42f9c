#pragma once
#include <filesystem>

#include "host/objects/HostApplication.h"

namespace orvex::host {

/// Option item: KML and KMZ files may be added.
inline constexpr std::int32_t kAcceptKmlOption = 1019;

/// What the host's objects answer from.
struct HostState {
    std::filesystem::path settingsFile;  ///< made when first written; see DefaultSettingsFile
    ProjectFolderProvider projectFolder;
    OptionItems options{{kAcceptKmlOption, std::int16_t{-1}}};
};

/// "host.sqlite" in the folder of the user's settings.
std::filesystem::path DefaultSettingsFile();

/// Makes the settings, application and raster-information objects of this host what the object library hands
/// out, until destroyed. On Windows to be destroyed on the thread that made it.
class HostClasses {
  public:
    explicit HostClasses(HostState state);
    HostClasses(const HostClasses&) = delete;
    HostClasses& operator=(const HostClasses&) = delete;

  private:
    /// One class; taken away at the end.
    class Registration {
      public:
        Registration(const ClassId& classId, HostObjectFactory factory) : classId_(classId) {
            RegisterHostClass(classId, std::move(factory));
        }
        ~Registration() { RegisterHostClass(classId_, nullptr); }
        Registration(const Registration&) = delete;
        Registration& operator=(const Registration&) = delete;

      private:
        ClassId classId_;
    };

    Registration settings_;
    Registration application_;
    Registration rasterInformation_;
};

}  // namespace orvex::host
