#pragma once

class AddFilesParams;

namespace orvex {

class OptionStore;
class UserPrompts;

/// The last question of OK: whether original LAS files may be overwritten when companion files are built
/// without a backup. True when there is nothing to ask or the user agreed. `needsCompanionFiles`: a file on a
/// page will need one built. The check box of the warning is stored whatever the answer.
bool ConfirmCompanionOverwrite(const AddFilesParams& params, bool needsCompanionFiles,
                               const OptionStore& options, UserPrompts& prompts);

}  // namespace orvex
