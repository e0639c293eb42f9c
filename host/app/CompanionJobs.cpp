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

LasCompanionPlan PlanOf(const CompanionJob& job, const LasCompanionOptions& options) {
    LasCompanionPlan plan = GetLasCompanions()->Plan(job.path, options);
    // Of two files of one name that are built one after the other, the first one keeps the companion.
    if (const LasCompanionStatus status = GetLasCompanions()->Status(job.path);
        status.state == LasCompanionState::OfOther) {
        plan.problem = status.reason;
    }
    return plan;
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
        const FileFailure unfit{paths[i], status.reason};
        switch (status.state) {
            case LasCompanionState::None:
                check.missing.push_back(paths[i]);
                break;
            case LasCompanionState::Fresh:
                break;
            case LasCompanionState::Stale:
                check.stale.push_back(unfit);
                break;
            case LasCompanionState::OfOther:
                check.ofOthers.push_back(unfit);
                break;
            default:
                check.unreadable.push_back(unfit);
        }
        progress.SetPosition(i + 1);
        check.stopped = progress.IsCancelled();
    }
    return check;
}

CompanionResult BuildCompanions(const std::vector<CompanionJob>& jobs, LasCompanionOptions options,
                                Kst::ProgressIf& progress) {
    CompanionResult result;
    progress.SetRange(kStepsPerFile * jobs.size());
    for (std::size_t i = 0; i < jobs.size() && !result.stopped; ++i) {
        options.replaceExisting = jobs[i].replacesExisting;
        const LasCompanionPlan plan = PlanOf(jobs[i], options);
        progress.SetText(ProgressText(i, jobs.size(), plan));
        PartProgress part(progress, i);
        const LasCompanionResult built = BuildOne(plan, options, part);
        result.built += built.end == LasCompanionEnd::Built ? 1 : 0;
        if (built.end == LasCompanionEnd::Failed) {
            result.failures.push_back({jobs[i].path, built.reason});
        }
        result.stopped = built.end == LasCompanionEnd::Cancelled || progress.IsCancelled();
    }
    return result;
}

}  // namespace orvex
