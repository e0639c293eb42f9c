#include "support/HostObjects.h"

namespace orvex {
namespace {

template <typename Interface>
std::unique_ptr<Interface> Create(const ClassId& classId, std::int32_t& result) {
    std::unique_ptr<HostObject> object = CreateHostObject(classId, result);
    auto* wanted = dynamic_cast<Interface*>(object.get());
    if (wanted == nullptr) {
        result = result == kHostOk ? kHostFail : result;
        return nullptr;
    }
    static_cast<void>(object.release());  // the same object, now owned through its interface
    return std::unique_ptr<Interface>(wanted);
}

class RegisteredHostObjects final : public HostObjects {
  public:
    std::unique_ptr<OrvexSystemSettings> CreateSystemSettings(std::int32_t& result) override {
        return Create<OrvexSystemSettings>(kSystemSettingsClass, result);
    }
    std::unique_ptr<OrvexApplication> CreateApplication(std::int32_t& result) override {
        return Create<OrvexApplication>(kApplicationClass, result);
    }
    RasterInformationMaker RasterInformation() override {
        return [](std::int32_t& result) {
            return Create<OrvexRasterInformation>(kRasterInformationClass, result);
        };
    }
    ShapefileMaker Shapefiles() override {
        return [](std::int32_t& result) { return Create<OrvexShapefile>(kShapefileClass, result); };
    }
};

}  // namespace

std::unique_ptr<HostObjects> MakeHostObjects() {
    return std::make_unique<RegisteredHostObjects>();
}

}  // namespace orvex
