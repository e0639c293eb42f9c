#include "dialog/CompanionWarning.h"

#include "orvexcommon/AddFilesParams.h"
#include "settings/OptionStore.h"
#include "support/Text.h"
#include "support/UserPrompts.h"

namespace orvex {
namespace {

bool MustAsk(const AddFilesParams& params, const OptionStore& options) {
    return params.lasPyramidType == kPyramidOrvexLas && params.orvexLasBackupOption == kOverwriteOriginals &&
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
    warning.title = Text(3366_lsid);
    warning.mainInstruction = Text(3367_lsid);
    warning.content = Text(3368_lsid) + L"\n" + Text(3369_lsid) + L"\n\n" + Text(3370_lsid);
    warning.verification = Text(33635_lsid);
    warning.icon = PromptIcon::Warning;
    warning.buttons = PromptButtons::YesNo;
    const TaskAnswer answer = prompts.ShowTask(warning);
    options.Put(opt2ShowOrvexLASOverwriteWarning, !answer.verificationChecked);
    return answer.answer == PromptAnswer::Yes;
}

}  // namespace orvex
