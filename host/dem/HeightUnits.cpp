#include "host/dem/HeightUnits.h"

#include <cpl_string.h>

#include <algorithm>
#include <array>

namespace orvex {
namespace {

constexpr double kFoot = 0.3048;
constexpr double kSurveyFoot = 1200.0 / 3937.0;

struct UnitName {
    const char* name;
    double metres;
};
constexpr auto kUnits = std::to_array<UnitName>({
    {"m", 1},
    {"meter", 1},
    {"metre", 1},
    {"meters", 1},
    {"metres", 1},
    {"mm", 0.001},
    {"millimeter", 0.001},
    {"millimetre", 0.001},
    {"cm", 0.01},
    {"centimeter", 0.01},
    {"centimetre", 0.01},
    {"dm", 0.1},
    {"decimeter", 0.1},
    {"decimetre", 0.1},
    {"km", 1000},
    {"kilometer", 1000},
    {"kilometre", 1000},
    {"ft", kFoot},
    {"foot", kFoot},
    {"feet", kFoot},
    {"international foot", kFoot},
    {"international feet", kFoot},
    {"us-ft", kSurveyFoot},
    {"ftus", kSurveyFoot},
    {"foot_us", kSurveyFoot},
    {"us survey foot", kSurveyFoot},
    {"us survey feet", kSurveyFoot},
    {"u.s. survey foot", kSurveyFoot},
    {"yd", 3 * kFoot},
    {"yard", 3 * kFoot},
});

}  // namespace

std::optional<double> MetresIn(std::string_view unitName) {
    const std::string name(unitName);
    const auto* const unit =
        std::ranges::find_if(kUnits, [&](const UnitName& known) { return EQUAL(known.name, name.c_str()); });
    return unit == kUnits.end() ? std::nullopt : std::optional(unit->metres);
}

HeightUnit HeightUnitOf(const OGRSpatialReference& crs) {
    const char* name = nullptr;
    if (crs.IsCompound()) {
        const double metres = crs.GetTargetLinearUnits("VERT_CS", &name);
        return {metres, name};
    }
    if (crs.IsGeographic() || crs.IsGeocentric()) {
        return {1, "metre"};
    }
    const double metres = crs.GetLinearUnits(&name);
    return {metres, name};
}

}  // namespace orvex
