#include "support/RasterInformation_win.h"

#include <OrvexHost.h>

#include <algorithm>
#include <cmath>
#include <map>

#include "support/Text.h"
#include "support/com/ComGuard_win.h"
#include "support/com/ComObject_win.h"
#include "support/com/MtaUsage_win.h"
#include "support/com/RasterDetails.h"
#include "support/com/Variant_win.h"

namespace orvex {
namespace {

using Source = IOrvexRasterInformation;

// What cannot be had stays as it is: unknown.
void Read(Source& source, HRESULT (STDMETHODCALLTYPE Source::*property)(long*), std::int32_t& number) {
    long value = 0;
    if (SUCCEEDED((source.*property)(&value))) {
        number = value;
    }
}

// No size on the ground is negative, and none is no number.
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

// What the object left when it failed; empty when it leaves nothing. An old text of another's would be there
// too, so only one that says to be about this interface is taken from an object that speaks of its failures.
std::wstring ReasonOf(Source& source) {
    ComPtr<ISupportErrorInfo> support;
    ComPtr<IErrorInfo> error;
    BString text;
    if (FAILED(source.QueryInterface(__uuidof(ISupportErrorInfo), support.ReceiveAny())) ||
        support->InterfaceSupportsErrorInfo(__uuidof(Source)) != S_OK ||
        GetErrorInfo(0, error.Receive()) != S_OK || FAILED(error->GetDescription(text.Receive()))) {
        return {};
    }
    return TextOf(text.Get());
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

}  // namespace

RasterInformationMaker ComRasterInformation() {
    return [usage = std::make_shared<const MtaUsage>()](
               std::int32_t& result) -> std::unique_ptr<OrvexRasterInformation> {
        auto object = std::make_unique<ComRasterObject>(usage);
        result = object->Create();
        return SUCCEEDED(result) ? std::move(object) : nullptr;
    };
}

}  // namespace orvex
