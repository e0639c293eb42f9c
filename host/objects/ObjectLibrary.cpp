// The registry of host object factories.
#include <algorithm>
#include <mutex>
#include <utility>
#include <vector>

#include "host/objects/ClassObject.h"
#include "orvexcommon/HostInterfaces.h"

namespace {

struct RegisteredClass {
    orvex::ClassId classId;
    orvex::HostObjectFactory factory;
    std::unique_ptr<orvex::host::ClassObject> published;
};

struct Registry {
    std::mutex lock;
    std::vector<RegisteredClass> classes;
};

Registry& TheRegistry() {
    // Never destroyed: when the process ends it is too late to unregister classes with the platform's object
    // system.
    static Registry& registry = *new Registry;
    return registry;
}

auto Find(Registry& registry, const orvex::ClassId& classId) {
    return std::find_if(registry.classes.begin(), registry.classes.end(),
                        [&](const RegisteredClass& entry) { return entry.classId == classId; });
}

// Destroys the entry outside the lock, since that may call back.
void Unregister(Registry& registry, const orvex::ClassId& classId) {
    RegisteredClass old;
    {
        const std::lock_guard guard(registry.lock);
        const auto found = Find(registry, classId);
        if (found == registry.classes.end()) {
            return;
        }
        old = std::move(*found);
        registry.classes.erase(found);
    }
}

}  // namespace

void RegisterHostClass(const orvex::ClassId& classId, orvex::HostObjectFactory factory) {
    Registry& registry = TheRegistry();
    Unregister(registry, classId);
    if (factory) {
        auto published = orvex::host::PublishClass(classId, factory);
        const std::lock_guard guard(registry.lock);
        registry.classes.push_back({classId, std::move(factory), std::move(published)});
    }
}

std::unique_ptr<orvex::HostObject> CreateHostObject(const orvex::ClassId& classId, std::int32_t& result) {
    orvex::HostObjectFactory factory;
    {
        Registry& registry = TheRegistry();
        const std::lock_guard guard(registry.lock);
        const auto found = Find(registry, classId);
        if (found == registry.classes.end()) {
            result = orvex::kHostClassNotRegistered;
            return nullptr;
        }
        factory = found->factory;
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
