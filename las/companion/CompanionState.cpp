#include "las/companion/CompanionState.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <vector>

#include "las/companion/QvrBuilder.h"
#include "las/companion/QvrFile.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/MappedFile.h"
#include "support/Text.h"

namespace orvex {
namespace {

/// The texts of all that differs, one behind the other.
class Differences {
  public:
    void Add(const std::wstring& text) { text_ += (text_.empty() ? L"" : L"; ") + text; }
    template <typename Number>
    void AddIfOther(StringId text, Number then, Number now) {
        if (then != now) {
            Add(FormatText(Text(text), {then, now}));
        }
    }
    const std::wstring& All() const { return text_; }

  private:
    std::wstring text_;
};

void CompareTime(Differences& differences, const QvrIndex& index, const std::wstring& source) {
    using std::chrono::milliseconds;
    constexpr std::int64_t kTolerance = 2000;
    const std::int64_t then =
        std::chrono::floor<milliseconds>(std::chrono::nanoseconds(index.sourceTime)).count();
    const std::int64_t now = ModifiedMs(source);
    // Unsigned, because a damaged time may be as far away as numbers go.
    const auto apart = static_cast<std::uint64_t>(now) - static_cast<std::uint64_t>(then);
    if (apart + kTolerance > 2 * kTolerance) {
        differences.Add(FormatText(Text(text::kQvrTimeDiffers), {UtcSecondText(then), UtcSecondText(now)}));
    }
}

/// The file's first bytes, up to as many as the longest header has.
std::vector<std::byte> StartOf(const std::wstring& path) {
    std::vector<std::byte> start(las::kHeaderSize14);
    MappedFile file;
    std::size_t read = 0;
    SystemError error = file.Open(path, true);
    if (error == 0) {
        error = file.ReadAt(0, start, read);
    }
    if (error != 0) {
        throw LDataError(FormatText(Text(text::kInspectUnreadable), {path, SystemErrorText(error)}));
    }
    start.resize(read);
    return start;
}

std::wstring DifferencesOf(const QvrHead& head, const std::wstring& source) {
    const auto start = StartOf(source);
    const LasHeader then = head.Header();
    const LasHeader now(start);
    Differences differences;
    differences.AddIfOther(text::kQvrSizeDiffers, head.index.sourceSize, FileSizeOf(source).value_or(0));
    CompareTime(differences, head.index, source);
    differences.AddIfOther(text::kQvrCountDiffers, head.index.sourcePoints, now.PointCount());
    // The hash first: an extent that is no number differs from itself.
    if (head.index.sourceHeaderHash != QvrHeaderHash(start)) {
        const bool isExtent = then.Minimum() != now.Minimum() || then.Maximum() != now.Maximum();
        differences.Add(Text(isExtent ? text::kQvrExtentDiffers : text::kQvrHeaderDiffers));
    }
    return differences.All();
}

/// The other file that a companion was built from as it is; empty if there is none.
std::wstring OwnerOf(const QvrHead& head, const std::wstring& companion, const std::wstring& notThis) {
    for (const std::wstring& file : SourcesBeside(companion)) {
        try {
            if (!IsSameFile(file, notThis) && DifferencesOf(head, file).empty()) {
                return file;
            }
        } catch (const LDataError&) {
            continue;  // a file that cannot be read claims nothing
        }
    }
    return {};
}

}  // namespace

std::vector<std::wstring> SourcesBeside(const std::wstring& companion) {
    std::vector<std::wstring> sources;
    for (const wchar_t* extension : {L".las", L".laz", L".LAS", L".LAZ"}) {
        std::wstring source = WithExtension(companion, extension);
        // Where the case of names does not matter, "a.las" and "a.LAS" are one file.
        const bool isKnown = std::ranges::any_of(
            sources, [&](const std::wstring& known) { return IsSameFile(known, source); });
        if (!isKnown && FileExists(source)) {
            sources.push_back(std::move(source));
        }
    }
    return sources;
}

CompanionFacts CheckCompanion(const std::wstring& source) {
    const std::wstring companion = QvrPathOf(source);
    if (UpperExtensionOf(source) == L".QVR" || !FileExists(companion)) {
        return {};
    }
    try {
        const QvrHead head = ReadQvrHead(companion);
        std::wstring differences = DifferencesOf(head, source);
        if (differences.empty()) {
            return {CompanionState::Fresh, {}};
        }
        if (const std::wstring owner = OwnerOf(head, companion, source); !owner.empty()) {
            return {CompanionState::OfOther, FormatText(Text(text::kQvrOfOther), {FileNameOf(owner)})};
        }
        return {CompanionState::Stale, std::move(differences)};
    } catch (...) {
        return {CompanionState::Unreadable, CurrentExceptionText()};
    }
}

CompanionFacts ExamineCompanion(const std::wstring& source) {
    CompanionFacts facts = CheckCompanion(source);
    if (facts.state == CompanionState::Fresh) {
        try {
            QvrFile::Open(QvrPathOf(source));
        } catch (...) {
            facts = {CompanionState::Unreadable, CurrentExceptionText()};
        }
    }
    return facts;
}

}  // namespace orvex
