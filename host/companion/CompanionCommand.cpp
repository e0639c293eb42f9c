#include "host/companion/CompanionCommand.h"

#include <chrono>
#include <ostream>

#include "host/companion/CompanionOptions.h"
#include "host/companion/CompanionPicture.h"
#include "host/terminal/Terminal.h"
#include "las/companion/CompanionState.h"
#include "las/companion/QvrFile.h"
#include "las/companion/QvrVerify.h"
#include "orvexcommon/Version.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

/// Progress of one file as a line on the terminal.
class TerminalProgress final : public Kst::ProgressIf {
  public:
    explicit TerminalProgress(const CompanionStreams& streams)
        : streams_(streams), line_(streams.err, streams.showProgress) {}

    void SetRange(std::uint64_t total) override { total_ = total; }
    void SetText(const std::wstring& text) override { text_ = text; }
    void SetPosition(std::uint64_t done) override {
        if (line_.IsDue() && total_ != 0) {
            line_.Tell(FormatText(L"%s %.0f %%",
                                  {text_, 100.0 * static_cast<double>(done) / static_cast<double>(total_)}));
        }
    }
    bool IsCancelled() override { return streams_.stop(); }

  private:
    const CompanionStreams& streams_;
    ProgressLine line_;
    std::uint64_t total_ = 0;
    std::wstring text_;
};

/// A file that was named, as LAS or LAZ file and as companion.
struct CompanionPair {
    std::wstring source;  ///< empty if the companion was named and is alone
    std::wstring qvr;
};

CompanionPair PairOf(const std::wstring& file) {
    if (UpperExtensionOf(file) != L".QVR") {
        return {file, QvrPathOf(file)};
    }
    CompanionPair pair{{}, file};
    for (const std::wstring& source : SourcesBeside(file)) {
        // Of two files the companion is that of the one which it was built from.
        if (pair.source.empty() || CheckCompanion(source).state == CompanionState::Fresh) {
            pair.source = source;
        }
    }
    return pair;
}

class Runner {
  public:
    Runner(const CompanionOptions& options, const CompanionStreams& streams)
        : options_(options), streams_(streams) {}

    int Run() {
        bool isGood = true;
        for (const std::wstring& file : options_.files) {
            isGood = Work(file) && isGood;
            if (streams_.stop()) {
                WriteLine(streams_.err, Text(text::kCompanionStopped));
                return kCompanionInterrupted;
            }
        }
        streams_.out.flush();
        return isGood ? kCompanionOk : kCompanionFailed;
    }

  private:
    /// False if the file failed.
    bool Work(const std::wstring& file) {
        try {
            switch (options_.action) {
                case CompanionAction::Build:
                    return Build(file);
                case CompanionAction::Check:
                    return Check(PairOf(file));
                default:
                    return Show(PairOf(file));
            }
        } catch (...) {
            return Fail(CurrentExceptionText());
        }
    }

    void Say(StringId text, std::initializer_list<FormatArg> arguments) {
        WriteLine(streams_.out, WithoutControls(FormatText(Text(text), arguments)));
        streams_.out.flush();
    }
    bool Fail(const std::wstring& message) {
        WriteLine(streams_.err, WithoutControls(message));
        return false;
    }

    bool Build(const std::wstring& file) {
        const CompanionFacts facts = ExamineCompanion(file);
        const std::wstring qvr = QvrPathOf(file);
        if (facts.state == CompanionState::Fresh && !options_.overwrite) {
            Say(text::kCompanionIsFresh, {qvr});
            return true;
        }
        if (facts.state != CompanionState::None && !options_.overwrite) {
            return Fail(FormatText(Text(text::kCompanionIsThere), {qvr, StateText(facts)}));
        }
        QvrSettings settings = options_.settings;
        settings.replaceExisting = options_.overwrite;
        const QvrPlan plan = PlanQvr(file, settings);
        constexpr double kMegabyte = 1e-6;
        Say(text::kCompanionPlan, {file, plan.points, static_cast<double>(plan.targetBytes) * kMegabyte,
                                   static_cast<double>(plan.temporaryBytes) * kMegabyte,
                                   static_cast<double>(plan.memoryBytes) * kMegabyte});
        const auto start = std::chrono::steady_clock::now();
        TerminalProgress progress(streams_);
        if (BuildQvr(plan, settings, progress)) {
            const double seconds =
                std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
            Say(text::kCompanionBuilt,
                {plan.target, seconds, static_cast<double>(plan.points) * 1e-6 / seconds});
        }
        return true;
    }

    static std::wstring StateText(const CompanionFacts& facts) {
        return facts.state == CompanionState::Stale ? FormatText(Text(text::kLasQvrStale), {facts.reason})
                                                    : facts.reason;
    }

    /// Throws unless the companion is there.
    static void RequireCompanion(const CompanionPair& pair) {
        if (!FileExists(pair.qvr)) {
            const std::wstring& named = pair.source.empty() ? pair.qvr : pair.source;
            throw LDataError(FormatText(
                Text(FileExists(named) ? text::kCompanionMissing : text::kPathDoesNotExist), {named}));
        }
    }

    bool Check(const CompanionPair& pair) {
        RequireCompanion(pair);
        const CompanionFacts facts =
            pair.source.empty() ? CompanionFacts{CompanionState::Fresh, {}} : CheckCompanion(pair.source);
        if (facts.state == CompanionState::Unreadable || facts.state == CompanionState::OfOther) {
            return Fail(facts.reason);
        }
        const auto qvr = QvrFile::Open(pair.qvr);
        TerminalProgress progress(streams_);
        progress.SetText(pair.qvr);
        const PointSum sum = VerifyQvrPoints(*qvr, progress);
        if (progress.IsCancelled()) {
            return false;
        }
        if (facts.state == CompanionState::Stale) {
            return Fail(pair.qvr + L": " + StateText(facts));
        }
        SaySound(*qvr, pair.source.empty());
        return !options_.deep || ComparePoints(pair, sum);
    }

    void SaySound(const QvrFile& qvr, bool isAlone) {
        const QvrIndex& index = qvr.Index();
        const std::size_t generations =
            qvr.Entries().empty() ? 0 : std::size_t{qvr.Entries().back().generation} + 1;
        const std::wstring order = index.isRandom
                                       ? FormatText(Text(text::kCompanionRandomOrder), {index.seed})
                                       : Text(text::kCompanionFileOrder);
        Say(text::kCompanionSound,
            {qvr.Path(), Text(isAlone ? text::kCompanionStateAlone : text::kCompanionStateFresh),
             qvr.PointCount(), qvr.Entries().size(), generations, index.factor, order});
    }

    bool ComparePoints(const CompanionPair& pair, const PointSum& sum) {
        if (pair.source.empty()) {
            return Fail(FormatText(Text(text::kCompanionNoSource), {pair.qvr}));
        }
        TerminalProgress progress(streams_);
        progress.SetText(pair.source);
        const PointSum wanted = SumOfPoints(pair.source, progress);
        if (progress.IsCancelled()) {
            return false;
        }
        if (!(sum == wanted)) {
            return Fail(FormatText(Text(text::kQvrNotPermutation), {pair.qvr, pair.source}));
        }
        Say(text::kCompanionSamePoints, {pair.qvr, pair.source});
        return true;
    }

    bool Show(const CompanionPair& pair) {
        RequireCompanion(pair);
        const auto qvr = QvrFile::Open(pair.qvr);
        TerminalProgress progress(streams_);
        progress.SetText(pair.qvr);
        const CompanionPicture picture = DrawCompanion(*qvr, options_, progress);
        if (progress.IsCancelled()) {
            return false;
        }
        if (picture.image.isNull()) {
            return Fail(FormatText(Text(text::kCompanionNothingToDraw), {pair.qvr}));
        }
        for (const std::wstring& input : {pair.source, pair.qvr}) {
            if (IsSameFile(picture.path, input)) {
                return Fail(FormatText(Text(text::kCompanionOverInput), {input}));
            }
        }
        SavePicture(picture.image, picture.path);
        WriteLine(streams_.out, WithoutControls(picture.words));
        return true;
    }

    const CompanionOptions& options_;
    const CompanionStreams& streams_;
};

}  // namespace

int RunCompanionCommand(const std::vector<std::wstring>& arguments, const CompanionStreams& streams) {
    const CompanionOptions options = ParseCompanionArguments(arguments);
    if (!options.error.empty()) {
        WriteLine(streams.err, options.error);
        WriteLine(streams.err, Text(text::kCompanionUsage));
        return kCompanionUsageError;
    }
    if (options.help) {
        WriteLine(streams.out, Text(text::kCompanionUsage));
        return kCompanionOk;
    }
    if (options.version) {
        WriteLine(streams.out, L"orvex-companion " ORVEX_VERSION_TEXT);
        return kCompanionOk;
    }
    return Runner(options, streams).Run();
}

}  // namespace orvex
