#include "host/objects/ClassObject.h"

namespace orvex::host {

// The component asks the object library itself here.
std::unique_ptr<ClassObject> PublishClass(const ClassId& /*classId*/, const HostObjectFactory& /*factory*/) {
    return nullptr;
}

}  // namespace orvex::host
