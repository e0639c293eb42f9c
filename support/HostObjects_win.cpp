// The host's objects are COM objects, made by class id wherever the host has them.
#include "support/HostObjects.h"

#include <OrvexHost.h>

#include "support/RasterInformation_win.h"
#include "support/com/ComGuard_win.h"
#include "support/com/ComObject_win.h"
#include "support/com/Variant_win.h"

namespace orvex {
namespace {

/// A call that reads and overwrites a value, which a failure leaves as it was.
template <typename Call>
HRESULT Exchange(SettingValue& value, Call call) {
    Variant variant(value);
    const HRESULT result = call(variant.InOut());
    if (FAILED(result)) {
        return result;
    }
    const HRESULT read = ToSettingValue(variant.Get(), value);
    return FAILED(read) ? read : result;
}

class ComSystemSettings final : public OrvexSystemSettings {
  public:
    HRESULT Create() { return object_.Create(kSystemSettingsClass); }

    std::int32_t Get(const std::wstring& section, const std::wstring& key, SettingValue& value) override {
        return Guarded([&] {
            const BString sectionText(section);
            const BString keyText(key);
            return Exchange(value, [&](VARIANT* variant) {
                return object_->Get(sectionText.Get(), keyText.Get(), variant);
            });
        });
    }
    std::int32_t Set(const std::wstring& section, const std::wstring& key,
                     const SettingValue& value) override {
        return Guarded(
            [&] { return object_->Set(BString(section).Get(), BString(key).Get(), Variant(value).Get()); });
    }

  private:
    ComObject<IOrvexSystemSettings> object_;
};

class ComApplication final : public OrvexApplication {
  public:
    HRESULT Create() { return object_.Create(kApplicationClass); }

    std::int32_t GetProjectFolder(std::wstring& folder) override {
        return Guarded([&] {
            BString text;
            const HRESULT result = object_->GetProjectFolder(text.Receive());
            if (SUCCEEDED(result)) {
                folder = TextOf(text.Get());
            }
            return result;
        });
    }
    std::int32_t GetOptionItem(std::int32_t item, SettingValue& value) override {
        return Guarded([&] {
            return Exchange(value, [&](VARIANT* variant) { return object_->GetOptionItem(item, variant); });
        });
    }

  private:
    ComObject<IOrvexApplication> object_;
};

template <typename Object>
std::unique_ptr<Object> Create(std::int32_t& result) {
    auto object = std::make_unique<Object>();
    result = object->Create();
    return SUCCEEDED(result) ? std::move(object) : nullptr;
}

class ComHostObjects final : public HostObjects {
  public:
    std::unique_ptr<OrvexSystemSettings> CreateSystemSettings(std::int32_t& result) override {
        return orvex::Create<ComSystemSettings>(result);
    }
    std::unique_ptr<OrvexApplication> CreateApplication(std::int32_t& result) override {
        return orvex::Create<ComApplication>(result);
    }
    RasterInformationMaker RasterInformation() override { return ComRasterInformation(); }
};

}  // namespace

std::unique_ptr<HostObjects> MakeHostObjects() {
    return std::make_unique<ComHostObjects>();
}

}  // namespace orvex
