#pragma once
#include <string>
#include <vector>

namespace orvex {

enum class PromptIcon { None, Information, Question, Warning, Error };
enum class PromptButtons { Ok, YesNo, YesNoCancel };
/// Closing a box counts as Ok where Ok is the only button, as Cancel where there is one, else as No.
enum class PromptAnswer { Ok, Yes, No, Cancel };

/// One message box. An empty caption shows the program's name, or none.
struct Prompt {
    std::wstring text;
    std::wstring caption;
    PromptIcon icon = PromptIcon::None;
    PromptButtons buttons = PromptButtons::Ok;
};

/// A message with a main instruction, a longer content and a check box.
struct TaskPrompt {
    std::wstring title;
    std::wstring mainInstruction;
    std::wstring content;
    std::wstring verification;  ///< text of the check box, clear at first; empty for none
    PromptIcon icon = PromptIcon::None;
    PromptButtons buttons = PromptButtons::YesNo;
};

struct TaskAnswer {
    PromptAnswer answer = PromptAnswer::No;
    bool verificationChecked = false;
};

/// Questions to the user. The real half shows modal windows over the active one; the scripted half answers
/// tests.
class UserPrompts {
  public:
    virtual ~UserPrompts() = default;
    virtual PromptAnswer Show(const Prompt& prompt) = 0;
    virtual TaskAnswer ShowTask(const TaskPrompt& prompt) = 0;
};

}  // namespace orvex
