#include "las/companion/QvrBuilder.h"

#include "support/Files.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {

std::wstring QvrPathOf(const std::wstring& source) {
    return WithExtension(source, L".qvr");
}

QvrPlan PlanQvr(const std::wstring& source, const QvrSettings& settings) {
    return {source, settings.target.empty() ? QvrPathOf(source) : settings.target};
}

bool BuildQvr(const QvrPlan& plan, const QvrSettings&, Kst::ProgressIf&) {
    throw LDataError(plan.target + L": not built yet");
}

}  // namespace orvex
