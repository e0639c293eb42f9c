#include "support/com/ComProject_win.h"

#include <OrvexHost.h>

#include <utility>

#include "support/com/ComApartment_win.h"
#include "support/com/ComGuard_win.h"
#include "support/com/ComPtr_win.h"
#include "support/com/Variant_win.h"

namespace orvex {
namespace {

/// Makes a call that answers yes or no; a failure leaves the answer unchanged.
template <typename Call>
std::int32_t Ask(bool& answer, Call call) {
    return Guarded([&] {
        VARIANT_BOOL value = VARIANT_FALSE;
        const HRESULT result = call(&value);
        if (SUCCEEDED(result)) {
            answer = value != VARIANT_FALSE;
        }
        return result;
    });
}

class ComLayer final : public OrvexLayer {
  public:
    explicit ComLayer(ComPtr<IOrvexLayer> layer) : layer_(std::move(layer)) {}

    std::int32_t IsPhotoLayer(bool& isPhotoLayer) override {
        return Ask(isPhotoLayer, [&](VARIANT_BOOL* value) { return layer_->get_IsPhotoLayer(value); });
    }
    std::int32_t GetGeometryType(std::int32_t& type) override {
        long value = 0;
        const HRESULT result = layer_->get_GeometryType(&value);
        if (SUCCEEDED(result)) {
            type = value;
        }
        return result;
    }
    std::int32_t HasField(const std::wstring& name, bool& hasField) override {
        return Ask(hasField,
                   [&](VARIANT_BOOL* value) { return layer_->HasField(BString(name).Get(), value); });
    }
    std::int32_t HasPhoto(const std::wstring& path, bool& hasPhoto) override {
        return Ask(hasPhoto,
                   [&](VARIANT_BOOL* value) { return layer_->HasPhoto(BString(path).Get(), value); });
    }

  private:
    ComApartment apartment_;  ///< destroyed last
    ComPtr<IOrvexLayer> layer_;
};

class ComProject final : public OrvexProject {
  public:
    explicit ComProject(ComPtr<IOrvexProject> project) : project_(std::move(project)) {}

    std::int32_t GetPhotoFolder(std::wstring& folder) override {
        return Guarded([&] {
            BString text;
            const HRESULT result = project_->GetPhotoFolder(text.Receive());
            if (SUCCEEDED(result)) {
                folder = TextOf(text.Get());
            }
            return result;
        });
    }
    std::int32_t OpenLayer(const std::wstring& path, std::unique_ptr<OrvexLayer>& layer) override {
        return Guarded([&]() -> HRESULT {
            ComPtr<IOrvexLayer> opened;
            const HRESULT result = project_->OpenLayer(BString(path).Get(), opened.Receive());
            if (FAILED(result) || !opened) {
                return FAILED(result) ? result : E_FAIL;
            }
            layer = std::make_unique<ComLayer>(std::move(opened));
            return result;
        });
    }

  private:
    ComApartment apartment_;  ///< destroyed last
    ComPtr<IOrvexProject> project_;
};

}  // namespace

std::unique_ptr<OrvexProject> MakeComProject(IUnknown& application, std::int32_t& result) {
    std::unique_ptr<OrvexProject> project;
    result = Guarded([&]() -> HRESULT {
        ComPtr<IOrvexProject> offered;
        const HRESULT asked = application.QueryInterface(__uuidof(IOrvexProject), offered.ReceiveAny());
        if (FAILED(asked) || !offered) {
            return asked == E_NOINTERFACE || SUCCEEDED(asked) ? kHostNotImplemented : asked;
        }
        project = std::make_unique<ComProject>(std::move(offered));
        return S_OK;
    });
    return project;
}

}  // namespace orvex
