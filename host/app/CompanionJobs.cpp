#include "host/app/CompanionJobs.h"

#include "host/app/PartProgress.h"
#include "support/Files.h"
#include "support/Format.h"

namespace orvex {

namespace {

constexpr double kMegabyte = 1e6;

std::wstring ProgressText(std::size_t index, std::size_t count, const LasCompanionPlan& plan) {
    return FormatText(Text(text::kCompanionProgress), {index + 1, count, FileNameOf(plan.source),
                                                       static_cast<double>(plan.targetBytes) / kMegabyte,
                                                       static_cast<double>(plan.temporaryBytes) / kMegabyte});
}

LasCompanionResult BuildOne(const LasCompanionPlan& plan, const LasCompanionOptions& options,
                            Kst::ProgressIf& progress) {
    return plan.problem.empty() ? GetLasCompanions()->Build(plan, options, progress)
                                : LasCompanionResult{LasCompanionEnd::Failed, plan.problem};
}

}  // namespace

CompanionCheck CheckCompanions(const std::vector<std::wstring>& paths, Kst::ProgressIf& progress) {
    progress.SetRange(paths.size());
    progress.SetText(Text(text::kCompanionsChecking));
    CompanionCheck check;
    for (std::size_t i = 0; i < paths.size() && !check.stopped; ++i) {
        const LasCompanionStatus status = GetLasCompanions()->Status(paths[i]);
        if (status.state == LasCompanionState::None) {
            check.missing.push_back(paths[i]);
        } else if (status.state != LasCompanionState::Fresh) {
            check.unfit.push_back({paths[i], status.reason});
        }
        progress.SetPosition(i + 1);
        check.stopped = progress.IsCancelled();
    }
    return check;
}

CompanionResult BuildCompanions(const std::vector<std::wstring>& paths, const LasCompanionOptions& options,
                                Kst::ProgressIf& progress) {
    CompanionResult result;
    progress.SetRange(kStepsPerFile * paths.size());
    for (std::size_t i = 0; i < paths.size() && !result.stopped; ++i) {
        const LasCompanionPlan plan = GetLasCompanions()->Plan(paths[i], options);
        progress.SetText(ProgressText(i, paths.size(), plan));
        PartProgress part(progress, i);
        const LasCompanionResult built = BuildOne(plan, options, part);
        result.built += built.end == LasCompanionEnd::Built ? 1 : 0;
        if (built.end == LasCompanionEnd::Failed) {
            result.failures.push_back({paths[i], built.reason});
        }
        result.stopped = built.end == LasCompanionEnd::Cancelled || progress.IsCancelled();
    }
    return result;
}

}  // namespace orvex
