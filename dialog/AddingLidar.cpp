#include "dialog/AddingLidar.h"

#include <cstdint>

#include "settings/OptionStore.h"
#include "support/Text.h"
#include "support/UserPrompts.h"

namespace orvex {
namespace {

// States of the stored answer. Any other value counts as read-only.
constexpr std::uint8_t kAsk = 0;
constexpr std::uint8_t kAlwaysReadOnly = 1;
constexpr std::uint8_t kAlwaysReadWrite = 2;

}  // namespace

AddLidarChoice DecideAddingLidar(const OptionStore& options, bool readWriteAllowed,
                                 const std::function<LidarAnswer(bool readWriteAllowed)>& ask) {
    const std::uint8_t stored = options.Get(opt2ShowAddReadWriteDlg, kAsk);
    if (stored != kAsk) {
        return stored == kAlwaysReadWrite ? ADD_LIDAR_READ_WRITE : ADD_LIDAR_READ_ONLY;
    }
    const LidarAnswer answer = ask(readWriteAllowed);
    if (answer.doNotAskAgain) {
        options.Put(opt2ShowAddReadWriteDlg,
                    answer.choice == ADD_LIDAR_READ_WRITE ? kAlwaysReadWrite : kAlwaysReadOnly);
    }
    return answer.choice;
}

void ShowLidarMessages(const LidarFindings& findings, const std::wstring& caption, UserPrompts& prompts) {
    const auto show = [&](StringId text, PromptIcon icon) {
        prompts.Show({Text(text), caption, icon, PromptButtons::Ok});
    };
    if (findings.a && (findings.b || findings.c)) {
        show(text::kLidarCrsMismatch, PromptIcon::Warning);
    } else if (!findings.a && findings.b && findings.c) {
        show(text::kLidarCrsDiffer, PromptIcon::Information);
    }
    if (findings.d) {
        show(text::kLidarDamagedFiles, PromptIcon::Warning);
    }
    if (IsNothingToAdd(findings)) {
        show(text::kLidarNothingToAdd, PromptIcon::Warning);
        return;
    }
    if (findings.e && findings.f) {
        show(text::kLidarAlreadyInProject, PromptIcon::Warning);
    }
    if (findings.e && findings.g) {
        show(text::kLidarCannotOpen, PromptIcon::Warning);
    }
}

}  // namespace orvex
