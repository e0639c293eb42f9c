#include "orvexcommon/LasCompanion.h"

namespace orvex {
namespace {

/// Builds and opens nothing yet.
class Companions final : public LasCompanions {
  public:
    LasCompanionStatus Status(const std::wstring&) const override { return {}; }
    LasCompanionPlan Plan(const std::wstring& lasPath, const LasCompanionOptions&) const override {
        LasCompanionPlan plan;
        plan.source = lasPath;
        plan.problem = kMissing;
        return plan;
    }
    LasCompanionResult Build(const LasCompanionPlan&, const LasCompanionOptions&,
                             Kst::ProgressIf&) const override {
        return {LasCompanionEnd::Failed, kMissing};
    }
    std::unique_ptr<LasCompanion> Open(const std::wstring&, std::wstring& reason) const override {
        reason = kMissing;
        return nullptr;
    }

  private:
    static constexpr const wchar_t* kMissing = L"This version builds and reads no companions.";
};

}  // namespace
}  // namespace orvex

const orvex::LasCompanions* GetLasCompanions() {
    static const orvex::Companions companions;
    return &companions;
}
