#include "support/com/ComShapefile_win.h"

#include <OrvexHost.h>

#include <utility>

#include "support/com/ComGuard_win.h"
#include "support/com/ErrorReason_win.h"
#include "support/com/Variant_win.h"

namespace orvex {
namespace {

class ComShapefile final : public OrvexShapefile {
  public:
    explicit ComShapefile(std::shared_ptr<const MtaUsage> usage)
        : usage_(std::move(usage)), object_(COINIT_MULTITHREADED) {}

    HRESULT Create() { return object_.Create(kShapefileClass); }

    std::int32_t Open(const std::wstring& path, std::wstring& reason) override {
        return Guarded([&] {
            SetErrorInfo(0, nullptr);  // what an earlier call of this thread has left
            const HRESULT result = object_->Open(BString(path).Get());
            if (FAILED(result)) {
                reason = ReasonOf(*object_.Get());
            }
            return result;
        });
    }
    std::int32_t GetShapeCount(std::int32_t& count) override {
        return Number(&IOrvexShapefile::get_ShapeCount, count);
    }
    std::int32_t GetShapeType(std::int32_t& type) override {
        return Number(&IOrvexShapefile::get_ShapeType, type);
    }
    std::int32_t GetExtent(std::array<double, 4>& extent) override {
        std::array<double, 4> read{};
        const HRESULT result = object_->GetExtent(&read[0], &read[1], &read[2], &read[3]);
        if (SUCCEEDED(result)) {
            extent = read;
        }
        return result;
    }
    std::int32_t GetFieldCount(std::int32_t& count) override {
        return Number(&IOrvexShapefile::get_FieldCount, count);
    }
    std::int32_t GetFieldInfo(std::int32_t index, std::wstring& name, std::int32_t& type) override {
        return Guarded([&] {
            BString text;
            long code = 0;
            const HRESULT result = object_->GetFieldInfo(index, text.Receive(), &code);
            if (SUCCEEDED(result)) {
                name = TextOf(text.Get());
                type = code;
            }
            return result;
        });
    }

  private:
    std::int32_t Number(HRESULT (STDMETHODCALLTYPE IOrvexShapefile::*property)(long*), std::int32_t& number) {
        long value = 0;
        const HRESULT result = (object_.Get()->*property)(&value);
        if (SUCCEEDED(result)) {
            number = value;
        }
        return result;
    }

    std::shared_ptr<const MtaUsage> usage_;
    ComObject<IOrvexShapefile> object_;
};

}  // namespace

std::unique_ptr<OrvexShapefile> MakeComShapefile(std::shared_ptr<const MtaUsage> usage,
                                                 std::int32_t& result) {
    auto object = std::make_unique<ComShapefile>(std::move(usage));
    result = object->Create();
    return SUCCEEDED(result) ? std::move(object) : nullptr;
}

}  // namespace orvex
