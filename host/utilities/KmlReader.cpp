#include "host/utilities/KmlReader.h"

#include "support/LDataError.h"

namespace orvex {

FeatureInfo ReadKml(const std::wstring&) {
    throw LDataError(L"KML files cannot be read yet.");
}

}  // namespace orvex
