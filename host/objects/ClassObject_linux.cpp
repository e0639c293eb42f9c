#include "host/objects/ClassObject.h"

namespace orvex::host {

// Here the object library itself is what the component asks.
std::unique_ptr<ClassObject> PublishClass(const ClassId& /*classId*/, const HostObjectFactory& /*factory*/) {
    return nullptr;
}

}  // namespace orvex::host
