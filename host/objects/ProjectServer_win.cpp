#include "host/objects/ProjectServer_win.h"

#include <string>

#include "support/com/ComGuard_win.h"
#include "support/com/Variant_win.h"

namespace orvex::host {
namespace {

/// COM object around a layer.
class LayerServer final : public DualObject<IOrvexLayer> {
  public:
    explicit LayerServer(std::unique_ptr<OrvexLayer> layer) : layer_(std::move(layer)) {}

    HRESULT STDMETHODCALLTYPE get_IsPhotoLayer(VARIANT_BOOL* isPhotoLayer) override {
        return Answer(isPhotoLayer, [&](bool& answer) { return layer_->IsPhotoLayer(answer); });
    }
    HRESULT STDMETHODCALLTYPE get_GeometryType(long* type) override {
        if (type == nullptr) {
            return E_POINTER;
        }
        *type = 0;
        return Guarded([&] {
            std::int32_t code = 0;
            const HRESULT result = layer_->GetGeometryType(code);
            *type = SUCCEEDED(result) ? code : 0;
            return result;
        });
    }
    HRESULT STDMETHODCALLTYPE HasField(BSTR name, VARIANT_BOOL* hasField) override {
        return Answer(hasField, [&](bool& answer) { return layer_->HasField(TextOf(name), answer); });
    }
    HRESULT STDMETHODCALLTYPE HasPhoto(BSTR path, VARIANT_BOOL* hasPhoto) override {
        return Answer(hasPhoto, [&](bool& answer) { return layer_->HasPhoto(TextOf(path), answer); });
    }

  private:
    template <typename Call>
    static HRESULT Answer(VARIANT_BOOL* target, Call call) {
        if (target == nullptr) {
            return E_POINTER;
        }
        *target = VARIANT_FALSE;
        return Guarded([&] {
            bool answer = false;
            const HRESULT result = call(answer);
            *target = SUCCEEDED(result) && answer ? VARIANT_TRUE : VARIANT_FALSE;
            return result;
        });
    }

    std::unique_ptr<OrvexLayer> layer_;
};

}  // namespace

HRESULT ProjectPart::GetPhotoFolder(BSTR* folder) {
    if (folder == nullptr) {
        return E_POINTER;
    }
    *folder = nullptr;
    return Guarded([&] {
        std::wstring text;
        const HRESULT result = project_->GetPhotoFolder(text);
        if (SUCCEEDED(result)) {
            *folder = BString(text).Detach();
        }
        return result;
    });
}

HRESULT ProjectPart::OpenLayer(BSTR path, IOrvexLayer** layer) {
    if (layer == nullptr) {
        return E_POINTER;
    }
    *layer = nullptr;
    return Guarded([&]() -> HRESULT {
        std::unique_ptr<OrvexLayer> opened;
        const HRESULT result = project_->OpenLayer(TextOf(path), opened);
        if (FAILED(result) || opened == nullptr) {
            return FAILED(result) ? result : E_FAIL;
        }
        *layer = new LayerServer(std::move(opened));
        return result;
    });
}

}  // namespace orvex::host
