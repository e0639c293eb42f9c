#include <algorithm>
#include <limits>
#include <span>
#include <vector>

#include "las/companion/CompanionState.h"
#include "las/companion/QvrBuilder.h"
#include "las/companion/QvrFile.h"
#include "orvexcommon/LasCompanion.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/ModuleUse.h"
#include "support/Text.h"

namespace orvex {
namespace {

LasCompanionState StateOf(CompanionState state) {
    switch (state) {
        case CompanionState::None:
            return LasCompanionState::None;
        case CompanionState::Fresh:
            return LasCompanionState::Fresh;
        case CompanionState::Stale:
            return LasCompanionState::Stale;
        case CompanionState::OfOther:
            return LasCompanionState::OfOther;
        default:
            return LasCompanionState::Unreadable;
    }
}

QvrSettings SettingsOf(const LasCompanionOptions& options) {
    QvrSettings settings;
    settings.factor = options.factor;
    settings.memory = options.memory;
    settings.threads = options.threads;
    settings.replaceExisting = options.replaceExisting;
    return settings;
}

class OpenCompanion final : public LasCompanion {
  public:
    explicit OpenCompanion(const std::wstring& path) : file_(QvrFile::Open(path)) {}

    std::uint64_t PointCount() const override { return file_->PointCount(); }
    std::array<double, 3> Minimum() const override { return file_->Frame().extent.minimum; }
    std::array<double, 3> Maximum() const override { return file_->Frame().extent.maximum; }

    std::vector<LasPointRange> Select(const std::array<double, 4>& extent,
                                      std::uint64_t mostPoints) const override {
        constexpr double kFarthest = std::numeric_limits<double>::max();
        const LasExtent view{{extent[0], extent[1], -kFarthest}, {extent[2], extent[3], kFarthest}};
        try {
            std::vector<LasPointRange> ranges;
            for (const PointRange& range : file_->Select(view, mostPoints)) {
                ranges.push_back({range.first, range.count});
            }
            return ranges;
        } catch (...) {
            return {};  // no memory
        }
    }

    bool Read(const LasPointRange& range, std::vector<LasPoint>& points) const override {
        const std::uint64_t count = PointCount();
        const std::uint64_t first = std::min(range.first, count);
        const std::uint64_t end = first + std::min(range.count, count - first);
        try {
            const std::uint64_t most = file_->PointsPerRead();
            for (std::uint64_t next = first; next < end; next += most) {
                ReadPiece({next, std::min(most, end - next)}, points);
            }
            return true;
        } catch (...) {
            return false;
        }
    }

  private:
    void ReadPiece(const PointRange& piece, std::vector<LasPoint>& points) const {
        const std::size_t length = file_->RecordLength();
        std::vector<std::byte> records(length * piece.count);
        file_->Read(piece, records);
        for (std::span<const std::byte> rest(records); !rest.empty(); rest = rest.subspan(length)) {
            const std::span<const std::byte> record = rest.first(length);
            const auto [x, y, z] = file_->PositionOf(record);
            points.push_back({x, y, z, file_->ClassificationOf(record)});
        }
    }

    ModuleUse use_;  // the host holds the object after the call
    std::unique_ptr<QvrFile> file_;
};

/// Runs a body whose failure becomes the result that `onFailure` makes of its text.
template <typename Body, typename OnFailure>
auto Guarded(Body body, OnFailure onFailure) {
    const ModuleUse use;
    try {
        return body();
    } catch (...) {
        return onFailure(CurrentExceptionText());
    }
}

class Companions final : public LasCompanions {
  public:
    LasCompanionStatus Status(const std::wstring& lasPath) const override {
        return Guarded(
            [&]() -> LasCompanionStatus {
                const CompanionFacts facts = ExamineCompanion(lasPath);
                return {StateOf(facts.state), QvrPathOf(lasPath), facts.reason};
            },
            [&](const std::wstring& reason) {
                return LasCompanionStatus{LasCompanionState::Unreadable, {}, reason};
            });
    }

    LasCompanionPlan Plan(const std::wstring& lasPath, const LasCompanionOptions& options) const override {
        return Guarded(
            [&]() -> LasCompanionPlan {
                const QvrPlan plan = PlanQvr(lasPath, SettingsOf(options));
                return {plan.source,         plan.target,      plan.points, plan.targetBytes,
                        plan.temporaryBytes, plan.memoryBytes, {}};
            },
            [&](const std::wstring& reason) {
                LasCompanionPlan result;
                result.source = lasPath;
                result.target = QvrPathOf(lasPath);
                result.problem = reason;
                return result;
            });
    }

    LasCompanionResult Build(const LasCompanionPlan& plan, const LasCompanionOptions& options,
                             Kst::ProgressIf& progress) const override {
        return Guarded(
            [&]() -> LasCompanionResult {
                // The disk may have changed since it was planned.
                const LasCompanionPlan now = Plan(plan.source, options);
                if (!now.problem.empty()) {
                    return {LasCompanionEnd::Failed, now.problem};
                }
                const QvrPlan qvr{now.source,      now.target,         now.points,
                                  now.targetBytes, now.temporaryBytes, now.memoryBytes};
                const bool isBuilt = BuildQvr(qvr, SettingsOf(options), progress);
                return {isBuilt ? LasCompanionEnd::Built : LasCompanionEnd::Cancelled, {}};
            },
            [](const std::wstring& reason) {
                return LasCompanionResult{LasCompanionEnd::Failed, reason};
            });
    }

    std::unique_ptr<LasCompanion> Open(const std::wstring& lasPath, std::wstring& reason) const override {
        return Guarded(
            [&]() -> std::unique_ptr<LasCompanion> {
                const LasCompanionStatus status = Status(lasPath);
                reason = status.reason;
                return status.state == LasCompanionState::Fresh ? std::make_unique<OpenCompanion>(status.path)
                                                                : nullptr;
            },
            [&](const std::wstring& failure) {
                reason = failure;
                return std::unique_ptr<LasCompanion>();
            });
    }
};

}  // namespace
}  // namespace orvex

const orvex::LasCompanions* GetLasCompanions() {
    static const orvex::Companions companions;
    return &companions;
}
