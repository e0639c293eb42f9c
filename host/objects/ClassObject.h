#pragma once
#include <memory>

#include "orvexcommon/HostInterfaces.h"

namespace orvex::host {

/// Registration of a class with the platform's object system; ends when destroyed.
class ClassObject {
  public:
    virtual ~ClassObject() = default;
};

/// Registers a class with the platform's object system. Null if the platform has none or the class id is not
/// one of the host's. Throws std::system_error if the system refuses.
std::unique_ptr<ClassObject> PublishClass(const ClassId& classId, const HostObjectFactory& factory);

}  // namespace orvex::host
