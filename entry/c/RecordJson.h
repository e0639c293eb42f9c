#pragma once
#include <nlohmann/json_fwd.hpp>
#include <string>

#include "orvexcommon/AddFilesParams.h"

namespace orvex {

/// A record of the component's own, as for each call of the C interface. Owns its details.
struct OwnRecord {
    OwnRecord() = default;
    ~OwnRecord();
    OwnRecord(const OwnRecord&) = delete;
    OwnRecord& operator=(const OwnRecord&) = delete;

    AddFilesParams params;
};

/// Sets the inputs of a record from an object. Throws InvalidCall naming a member that is unknown, is no
/// input, or has the wrong type.
void ReadRecord(const nlohmann::json& request, AddFilesParams& record);

/// The results of a record as an object. The details are taken out of the record and deleted one by one.
std::string WriteRecord(AddFilesParams& record);

}  // namespace orvex
