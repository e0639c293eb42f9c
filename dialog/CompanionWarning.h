#pragma once

class AddFilesParams;

namespace orvex {

class OptionStore;
class UserPrompts;

/// Warns, as the last step of OK, that original LAS files will be overwritten when companion files are built
/// without a backup. True if there is nothing to warn about or the user agreed. `needsCompanionFiles`: a
/// companion file will be built for a file of a page. The warning's check box is stored whatever the answer.
bool ConfirmCompanionOverwrite(const AddFilesParams& params, bool needsCompanionFiles,
                               const OptionStore& options, UserPrompts& prompts);

}  // namespace orvex
