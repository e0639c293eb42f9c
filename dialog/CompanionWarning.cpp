#include "dialog/CompanionWarning.h"

#include "orvexcommon/AddFilesParams.h"
#include "settings/OptionStore.h"
#include "support/Text.h"
#include "support/UserPrompts.h"

namespace orvex {
namespace {

constexpr int kPyramidOrvexLas = 1;
constexpr int kBackupNone = 0;

bool MustAsk(const AddFilesParams& params, const OptionStore& options) {
    return params.lasPyramidType == kPyramidOrvexLas && params.orvexLasBackupOption == kBackupNone &&
           options.Get(opt2ShowOrvexLASOverwriteWarning, true) && params.orvexLasOverwritePending;
}

}  // namespace

bool ConfirmCompanionOverwrite(const AddFilesParams& params, bool needsCompanionFiles,
                               const OptionStore& options, UserPrompts& prompts) {
    if (!needsCompanionFiles && !params.convertExistingQvr) {
        return true;
    }
    if (!MustAsk(params, options)) {
        return true;
    }
    TaskPrompt warning;
    warning.title = Text(text::kOverwriteWarningTitle);
    warning.mainInstruction = Text(text::kOverwriteWarningHeadline);
    warning.content = Text(text::kOverwriteWarningCause) + L"\n" + Text(text::kOverwriteWarningAdvice) +
                      L"\n\n" + Text(text::kOverwriteWarningQuestion);
    warning.verification = Text(text::kOverwriteWarningDoNotShow);
    warning.icon = PromptIcon::Warning;
    warning.buttons = PromptButtons::YesNo;
    const TaskAnswer answer = prompts.ShowTask(warning);
    options.Put(opt2ShowOrvexLASOverwriteWarning, !answer.verificationChecked);
    return answer.answer == PromptAnswer::Yes;
}

}  // namespace orvex
