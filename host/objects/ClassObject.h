#pragma once
#include <memory>

#include "orvexcommon/HostInterfaces.h"

namespace orvex::host {

/// A class as the platform's own object system knows it, until destroyed.
class ClassObject {
  public:
    virtual ~ClassObject() = default;
};

/// Tells the platform's object system of a class. Null when it has none, or when a class of this id means
/// nothing to it. Throws std::system_error when the system refuses.
std::unique_ptr<ClassObject> PublishClass(const ClassId& classId, const HostObjectFactory& factory);

}  // namespace orvex::host
