#include "host/app/CrsGroups.h"

#include "orvexcommon/OrvexUtilities.h"

namespace orvex {

const std::string& CrsGroups::Of(const std::string& wkt) {
    const auto known = groupOfWkt_.find(wkt);
    return known != groupOfWkt_.end()
               ? known->second
               : groupOfWkt_.emplace(wkt, OrvexUtilities::GetCompatibilityGroup(wkt)).first->second;
}

}  // namespace orvex
