#include "host/objects/ComServers_win.h"

#include <OrvexHost.h>

#include <optional>
#include <string>

#include "host/objects/DualObject_win.h"
#include "host/objects/ProjectServer_win.h"
#include "host/objects/RasterInformationServer_win.h"
#include "host/objects/ShapefileServer_win.h"
#include "host/objects/UserAccountServer_win.h"
#include "support/com/ComGuard_win.h"
#include "support/com/ModuleFile_win.h"
#include "support/com/Variant_win.h"

namespace orvex::host {
namespace {

/// Passes the caller's variant to a call of a host object that may overwrite it. A value that the call does
/// not change keeps its type too; a failure changes nothing.
template <typename Call>
HRESULT ExchangeVariant(VARIANT* variant, Call call) {
    if (variant == nullptr) {
        return E_POINTER;
    }
    SettingValue value;
    if (const HRESULT read = ToSettingValue(*variant, value); FAILED(read)) {
        return read;
    }
    const SettingValue before = value;
    const HRESULT result = call(value);
    if (SUCCEEDED(result) && value != before) {
        Variant(value).MoveTo(*variant);
    }
    return result;
}

class ApplicationServer final : public DualObject<IOrvexApplication> {
  public:
    /// Asked for its project once, since the interfaces of a COM object never change.
    explicit ApplicationServer(std::unique_ptr<OrvexApplication> application)
        : application_(std::move(application)), account_(*this, *application_) {
        std::int32_t result = kHostOk;
        if (auto project = application_->GetProject(result)) {
            project_.emplace(*this, std::move(project));
        }
    }

    HRESULT STDMETHODCALLTYPE GetProjectFolder(BSTR* folder) override {
        if (folder == nullptr) {
            return E_POINTER;
        }
        *folder = nullptr;
        return Guarded([&] {
            std::wstring text;
            const HRESULT result = application_->GetProjectFolder(text);
            if (SUCCEEDED(result)) {
                *folder = BString(text).Detach();
            }
            return result;
        });
    }
    HRESULT STDMETHODCALLTYPE GetOptionItem(long item, VARIANT* value) override {
        return Guarded([&] {
            return ExchangeVariant(
                value, [&](SettingValue& option) { return application_->GetOptionItem(item, option); });
        });
    }

  protected:
    void* OtherInterface(REFIID interfaceId) override {
        if (IsEqualIID(interfaceId, __uuidof(IOrvexUserAccount))) {
            return static_cast<IOrvexUserAccount*>(&account_);
        }
        const bool isProject = project_ && IsEqualIID(interfaceId, __uuidof(IOrvexProject));
        return isProject ? static_cast<IOrvexProject*>(&*project_) : nullptr;
    }

  private:
    std::unique_ptr<OrvexApplication> application_;
    UserAccountPart account_;
    std::optional<ProjectPart> project_;
};

class SystemSettingsServer final : public DualObject<IOrvexSystemSettings> {
  public:
    explicit SystemSettingsServer(std::unique_ptr<OrvexSystemSettings> settings)
        : settings_(std::move(settings)) {}

    HRESULT STDMETHODCALLTYPE Get(BSTR section, BSTR key, VARIANT* value) override {
        return Guarded([&] {
            return ExchangeVariant(value, [&](SettingValue& setting) {
                return settings_->Get(TextOf(section), TextOf(key), setting);
            });
        });
    }
    HRESULT STDMETHODCALLTYPE Set(BSTR section, BSTR key, VARIANT value) override {
        return Guarded([&] {
            SettingValue setting;
            const HRESULT read = ToSettingValue(value, setting);
            return FAILED(read) ? read : settings_->Set(TextOf(section), TextOf(key), setting);
        });
    }

  private:
    std::unique_ptr<OrvexSystemSettings> settings_;
};

template <typename Interface, typename Server>
ComPtr<IDispatch> MakeServer(std::unique_ptr<HostObject> object) {
    auto* wanted = dynamic_cast<Interface*>(object.get());
    if (wanted == nullptr) {
        return {};
    }
    static_cast<void>(object.release());  // the same object, now owned through its interface
    std::unique_ptr<Interface> owned(wanted);
    return ComPtr<IDispatch>::Take(new Server(std::move(owned)));
}

}  // namespace

HRESULT HostTypeInfo(REFIID interfaceId, ComPtr<ITypeInfo>& info) {
    return Guarded([&] {
        const std::wstring file = ModuleFile(reinterpret_cast<const void*>(&HostTypeInfo));
        ComPtr<ITypeLib> library;
        const HRESULT result = LoadTypeLibEx(file.c_str(), REGKIND_NONE, library.Receive());
        return FAILED(result) ? result : library->GetTypeInfoOfGuid(interfaceId, info.Receive());
    });
}

ServerKind ServerKindOf(const ClassId& classId) {
    if (classId == kSystemSettingsClass) {
        return {&MakeServer<OrvexSystemSettings, SystemSettingsServer>};
    }
    if (classId == kApplicationClass) {
        return {&MakeServer<OrvexApplication, ApplicationServer>};
    }
    if (classId == kRasterInformationClass) {
        return {.maker = &MakeServer<OrvexRasterInformation, RasterInformationServer>, .anyThread = true};
    }
    if (classId == kShapefileClass) {
        return {.maker = &MakeServer<OrvexShapefile, ShapefileServer>, .anyThread = true};
    }
    return {};
}

}  // namespace orvex::host
