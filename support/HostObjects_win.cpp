// The host's objects are COM objects, made by class id wherever the host has them.
#include "support/HostObjects.h"

#include <OrvexHost.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "support/Text.h"
#include "support/com/ComApartment_win.h"
#include "support/com/ComGuard_win.h"
#include "support/com/ComProject_win.h"
#include "support/com/ComShapefile_win.h"
#include "support/com/ComUserAccount_win.h"
#include "support/com/ErrorReason_win.h"
#include "support/com/RasterDetailItems.h"
#include "support/com/Variant_win.h"

namespace orvex {
namespace {

/// Makes a call that reads and overwrites a value; a failure leaves the value unchanged.
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
    std::unique_ptr<OrvexProject> GetProject(std::int32_t& result) override {
        return MakeComProject(*object_.Get(), result);
    }
    std::unique_ptr<OrvexUserAccount> GetUserAccount(std::int32_t& result) override {
        return MakeComUserAccount(*object_.Get(), result);
    }

  private:
    ComObject<IOrvexApplication> object_;
};

using Source = IOrvexRasterInformation;

// A property that cannot be read keeps its value for "unknown".
void Read(Source& source, HRESULT (STDMETHODCALLTYPE Source::*property)(long*), std::int32_t& number) {
    long value = 0;
    if (SUCCEEDED((source.*property)(&value))) {
        number = value;
    }
}

// A size on the ground is finite and not negative.
void Read(Source& source, HRESULT (STDMETHODCALLTYPE Source::*property)(double*), double& size) {
    double value = 0;
    if (SUCCEEDED((source.*property)(&value)) && std::isfinite(value)) {
        size = std::abs(value);
    }
}

void Read(Source& source, HRESULT (STDMETHODCALLTYPE Source::*property)(BSTR*), std::wstring& text) {
    BString value;
    if (SUCCEEDED((source.*property)(value.Receive()))) {
        text = TextOf(value.Get());
    }
}

std::optional<std::array<double, 4>> ExtentOf(Source& source) {
    std::array<double, 4> extent{};
    const HRESULT result = source.GetExtent(&extent[0], &extent[1], &extent[2], &extent[3]);
    if (FAILED(result) || !std::ranges::all_of(extent, [](double edge) { return std::isfinite(edge); })) {
        return std::nullopt;
    }
    return extent;
}

HRESULT ReadSize(Source& source, RasterProperties& properties) {
    long width = 0;
    long height = 0;
    if (const HRESULT result = source.get_Width(&width); FAILED(result)) {
        return result;
    }
    if (const HRESULT result = source.get_Height(&height); FAILED(result)) {
        return result;
    }
    properties.width = width;
    properties.height = height;
    return width >= 1 && height >= 1 ? S_OK : E_FAIL;
}

void ReadCommon(Source& source, RasterProperties& properties) {
    std::wstring wkt;
    Read(source, &Source::get_PixelWidth, properties.pixelWidth);
    Read(source, &Source::get_PixelHeight, properties.pixelHeight);
    Read(source, &Source::get_LinearUnit, properties.linearUnit);
    Read(source, &Source::get_Wkt, wkt);
    Read(source, &Source::get_ProjectionCode, properties.projectionCode);
    Read(source, &Source::get_ColorModel, properties.colorModel);
    Read(source, &Source::get_RasterKind, properties.rasterKind);
    Read(source, &Source::get_BandCount, properties.bands);
    Read(source, &Source::get_BitsPerBand, properties.bitsPerBand);
    Read(source, &Source::get_OverviewCount, properties.overviews);
    properties.wkt = ToUtf8(wkt);
    properties.bands = std::max(properties.bands, 0);
    properties.extent = ExtentOf(source);
}

void ReadOptionalDetails(Source& source, RasterProperties& properties) {
    ComPtr<IOrvexRasterDetails> details;
    if (FAILED(source.QueryInterface(__uuidof(IOrvexRasterDetails), details.ReceiveAny()))) {
        return;
    }
    // The same few names are asked of every band.
    std::map<std::wstring_view, BString> names;
    ReadRasterDetails(
        [&](std::wstring_view name, std::int32_t index) {
            const auto text = names.try_emplace(name, name).first;
            Variant item;
            SettingValue value;
            if (FAILED(details->get_Detail(text->second.Get(), index, item.InOut())) ||
                FAILED(ToSettingValue(item.Get(), value))) {
                return SettingValue();
            }
            return value;
        },
        properties);
}

class ComRasterObject final : public OrvexRasterInformation {
  public:
    explicit ComRasterObject(std::shared_ptr<const MtaUsage> usage)
        : usage_(std::move(usage)), object_(COINIT_MULTITHREADED) {}

    HRESULT Create() { return object_.Create(kRasterInformationClass); }

    std::int32_t Describe(const std::wstring& path, RasterProperties& properties,
                          std::wstring& reason) override {
        return Guarded([&] {
            SetErrorInfo(0, nullptr);  // what an earlier call of this thread has left
            Source& source = *object_.Get();
            const HRESULT opened = source.Open(BString(path).Get());
            if (FAILED(opened)) {
                reason = ReasonOf(source);
                return opened;
            }
            RasterProperties read;
            if (const HRESULT sized = ReadSize(source, read); FAILED(sized)) {
                reason = ReasonOf(source);
                return sized;
            }
            ReadCommon(source, read);
            ReadOptionalDetails(source, read);
            properties = std::move(read);
            return S_OK;
        });
    }

  private:
    std::shared_ptr<const MtaUsage> usage_;
    ComObject<Source> object_;
};

/// Threads in no apartment enter the multithreaded one. It stays alive, and with it the host's code, while
/// the maker or a copy of it exists.
RasterInformationMaker ComRasterInformation() {
    return [usage = std::make_shared<const MtaUsage>()](
               std::int32_t& result) -> std::unique_ptr<OrvexRasterInformation> {
        auto object = std::make_unique<ComRasterObject>(usage);
        result = object->Create();
        return SUCCEEDED(result) ? std::move(object) : nullptr;
    };
}

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
    ShapefileMaker Shapefiles() override {
        return [usage = std::make_shared<const MtaUsage>()](std::int32_t& result) {
            return MakeComShapefile(usage, result);
        };
    }
};

}  // namespace

std::unique_ptr<HostObjects> MakeHostObjects() {
    return std::make_unique<ComHostObjects>();
}

}  // namespace orvex
