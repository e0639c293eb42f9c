// The registry of host object factories, for platforms without COM.
#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

#include "orvexcommon/HostInterfaces.h"

namespace {

struct Registry {
    std::mutex lock;
    std::vector<std::pair<orvex::ClassId, orvex::HostObjectFactory>> factories;
};

Registry& TheRegistry() {
    static Registry registry;
    return registry;
}

}  // namespace

void RegisterHostClass(const orvex::ClassId& classId, orvex::HostObjectFactory factory) {
    Registry& registry = TheRegistry();
    const std::lock_guard guard(registry.lock);
    std::erase_if(registry.factories, [&](const auto& entry) { return entry.first == classId; });
    if (factory) {
        registry.factories.emplace_back(classId, std::move(factory));
    }
}

std::unique_ptr<orvex::HostObject> CreateHostObject(const orvex::ClassId& classId, std::int32_t& result) {
    orvex::HostObjectFactory factory;
    {
        Registry& registry = TheRegistry();
        const std::lock_guard guard(registry.lock);
        const auto found = std::find_if(registry.factories.begin(), registry.factories.end(),
                                        [&](const auto& entry) { return entry.first == classId; });
        if (found == registry.factories.end()) {
            result = orvex::kHostClassNotRegistered;
            return nullptr;
        }
        factory = found->second;
    }
    try {
        std::unique_ptr<orvex::HostObject> object = factory();
        result = object ? orvex::kHostOk : orvex::kHostFail;
        return object;
    } catch (...) {
        result = orvex::kHostFail;
        return nullptr;
    }
}
