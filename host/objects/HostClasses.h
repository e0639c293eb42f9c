#pragma once
#include <filesystem>
#include <functional>
#include <map>
#include <optional>

#include "orvexcommon/CloudAccount.h"
#include "orvexcommon/HostInterfaces.h"
#include "settings/RegistryKey.h"  // PrivateSettings, for programs that are this host

namespace orvex::host {

/// Returns the folder of the open project, with or without a trailing separator; empty if none is open.
using ProjectFolderProvider = std::function<std::wstring()>;
using OptionItems = std::map<std::int32_t, SettingValue>;
/// Returns the folder that photo layers are written to; empty if there is none.
using PhotoFolderProvider = std::function<std::wstring()>;
/// Opens the layer that the user named. Throws if it cannot be read.
using LayerOpener = std::function<std::unique_ptr<OrvexLayer>(const std::wstring& path)>;

/// Returns the account of the signed-in user; nullopt if nobody is signed in.
using AccountProvider = std::function<std::optional<CloudAccount>()>;

/// Option item: KML and KMZ files may be added.
inline constexpr std::int32_t kAcceptKmlOption = 1019;

/// Data behind the host's objects.
struct HostData {
    std::filesystem::path settingsFile;  ///< created by the first write; see DefaultSettingsFile
    ProjectFolderProvider projectFolder;
    OptionItems options{{kAcceptKmlOption, std::int16_t{-1}}};
    PhotoFolderProvider photoFolder{};  ///< empty: the application object gives no project, as the next
    LayerOpener openLayer{};
    AccountProvider account{};  ///< empty: the application object gives no account
};

/// "host.sqlite" in the folder of the user's settings.
std::filesystem::path DefaultSettingsFile();

/// The tab that the Add Files dialog showed last, which it keeps among its options.
std::int32_t LastAddFilesTab();

/// True if the user has asked not to be asked the LiDAR question again.
bool IsLidarAnswerRemembered();
/// Has the LiDAR question asked again.
void ForgetLidarAnswer();

/// Registers the settings, application, raster-information and shapefile objects of this host with the object
/// library, until destroyed. On Windows, destroy it on the thread that made it.
class HostClasses {
  public:
    explicit HostClasses(HostData data);
    HostClasses(const HostClasses&) = delete;
    HostClasses& operator=(const HostClasses&) = delete;

  private:
    /// Registers one class; unregisters it when destroyed.
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
    Registration shapefile_;
};

}  // namespace orvex::host
