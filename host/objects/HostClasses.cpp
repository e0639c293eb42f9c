#include "host/objects/HostClasses.h"

#include <optional>
#include <vector>

#include "crs/GdalSetup.h"
#include "feature/ShapefileReader.h"
#include "raster/RasterReader.h"
#include "settings/FileSettings.h"
#include "settings/OptionStore.h"
#include "support/LDataError.h"
#include "support/Log.h"
#include "support/Text.h"

namespace orvex::host {
namespace {

/// kHostFail and a line in the log if `work` throws.
template <typename Work>
std::int32_t Logged(const wchar_t* failure, Work work) {
    try {
        work();
        return kHostOk;
    } catch (...) {
        LogWarning(failure + CurrentExceptionText());
        return kHostFail;
    }
}

class HostProject final : public OrvexProject {
  public:
    HostProject(PhotoFolderProvider photoFolder, LayerOpener openLayer)
        : photoFolder_(std::move(photoFolder)), openLayer_(std::move(openLayer)) {}

    std::int32_t GetPhotoFolder(std::wstring& folder) override {
        return Logged(L"host: no photo folder: ", [&] { folder = photoFolder_(); });
    }
    std::int32_t OpenLayer(const std::wstring& path, std::unique_ptr<OrvexLayer>& layer) override {
        return Logged(L"host: no layer: ", [&] { layer = openLayer_(path); });
    }

  private:
    PhotoFolderProvider photoFolder_;
    LayerOpener openLayer_;
};

/// Copy of the account of a signed-in user.
class HostAccount final : public OrvexUserAccount {
  public:
    explicit HostAccount(CloudAccount account) : account_(std::move(account)) {}

    std::int32_t GetUserName(std::wstring& name) override {
        name = account_.userName;
        return kHostOk;
    }
    std::int32_t GetService(std::wstring& service) override {
        service = account_.service;
        return kHostOk;
    }
    std::int32_t GetToken(std::wstring& token) override {
        token = account_.token;
        return kHostOk;
    }

  private:
    CloudAccount account_;
};

class HostApplication final : public OrvexApplication {
  public:
    explicit HostApplication(HostData data) : data_(std::move(data)) {}

    /// kHostFail if the provider throws.
    std::int32_t GetProjectFolder(std::wstring& folder) override {
        constexpr auto kSeparator = static_cast<wchar_t>(std::filesystem::path::preferred_separator);
        return Logged(L"host: no project folder: ", [&] {
            std::wstring open = data_.projectFolder ? data_.projectFolder() : std::wstring();
            if (!open.empty() && open.back() != L'/' && open.back() != kSeparator) {
                open += kSeparator;
            }
            folder = std::move(open);
        });
    }
    std::int32_t GetOptionItem(std::int32_t item, SettingValue& value) override {
        if (const auto option = data_.options.find(item); option != data_.options.end()) {
            value = option->second;
        }
        return kHostOk;
    }
    std::unique_ptr<OrvexProject> GetProject(std::int32_t& result) override {
        if (!data_.photoFolder || !data_.openLayer) {
            return OrvexApplication::GetProject(result);
        }
        result = kHostOk;
        return std::make_unique<HostProject>(data_.photoFolder, data_.openLayer);
    }
    std::unique_ptr<OrvexUserAccount> GetUserAccount(std::int32_t& result) override {
        if (!data_.account) {
            return OrvexApplication::GetUserAccount(result);
        }
        std::optional<CloudAccount> account;
        result = Logged(L"host: no account: ", [&] { account = data_.account(); });
        return account ? std::make_unique<HostAccount>(*std::move(account)) : nullptr;
    }

  private:
    HostData data_;
};

/// Describes a file with all details, by GDAL. Safe on any thread.
class HostRasterInformation final : public OrvexRasterInformation {
  public:
    std::int32_t Describe(const std::wstring& path, RasterProperties& properties,
                          std::wstring& reason) override {
        // Without its data GDAL may still know the format, where another part of the process has set it up.
        const bool isReady = EnsureGdal();
        try {
            properties = ReadRasterProperties(path);
            return kHostOk;
        } catch (...) {
            reason = isReady ? CurrentExceptionText() : Text(text::kRasterProgramFilesMissing);
            return kHostFail;
        }
    }
};

/// Reads headers only, when a file is opened. Safe on any thread.
class HostShapefile final : public OrvexShapefile {
  public:
    std::int32_t Open(const std::wstring& path, std::wstring& reason) override {
        content_.reset();
        try {
            content_ = ReadShapefile(path);
            return kHostOk;
        } catch (...) {
            reason = CurrentExceptionText();
            return kHostFail;
        }
    }
    std::int32_t GetShapeCount(std::int32_t& count) override {
        return Get(count, [&] { return static_cast<std::int32_t>(content_->shapeCount); });
    }
    std::int32_t GetShapeType(std::int32_t& type) override {
        return Get(type, [&] { return content_->shapeType; });
    }
    std::int32_t GetExtent(std::array<double, 4>& extent) override {
        return Get(extent, [&] { return content_->extent; });
    }
    std::int32_t GetFieldCount(std::int32_t& count) override {
        return Get(count, [&] { return static_cast<std::int32_t>(content_->fields.size()); });
    }
    std::int32_t GetFieldInfo(std::int32_t index, std::wstring& name, std::int32_t& type) override {
        if (!content_ || index < 0 || static_cast<std::size_t>(index) >= content_->fields.size()) {
            return kHostFail;
        }
        const AttributeField& field = content_->fields[static_cast<std::size_t>(index)];
        name = field.name;
        type = static_cast<std::int32_t>(field.type);
        return kHostOk;
    }

  private:
    template <typename Value, typename Read>
    std::int32_t Get(Value& value, Read read) const {
        if (!content_) {
            return kHostFail;
        }
        value = read();
        return kHostOk;
    }

    std::optional<ShapefileContent> content_;
};

}  // namespace

std::filesystem::path DefaultSettingsFile() {
    return UserSettingsFile();
}

std::int32_t LastAddFilesTab() {
    const std::unique_ptr<RegistryStore> registry = MakeRegistryStore();
    return OptionStore(*registry).Get(opt2AddFilesCurTabIndex, std::int32_t{0});
}

bool IsLidarAnswerRemembered() {
    const std::unique_ptr<RegistryStore> registry = MakeRegistryStore();
    return OptionStore(*registry).Get(opt2ShowAddReadWriteDlg, std::uint8_t{0}) != 0;
}

void ForgetLidarAnswer() {
    const std::unique_ptr<RegistryStore> registry = MakeRegistryStore();
    OptionStore(*registry).Put(opt2ShowAddReadWriteDlg, std::uint8_t{0});
}

HostClasses::HostClasses(HostData data)
    : settings_(
          kSystemSettingsClass,
          [settings = FileSettings(data.settingsFile)] { return std::make_unique<FileSettings>(settings); }),
      application_(kApplicationClass,
                   [data = std::move(data)] { return std::make_unique<HostApplication>(data); }),
      rasterInformation_(kRasterInformationClass, [] { return std::make_unique<HostRasterInformation>(); }),
      shapefile_(kShapefileClass, [] { return std::make_unique<HostShapefile>(); }) {}

}  // namespace orvex::host
