#pragma once
#include <string>
#include <vector>

namespace orvex {

enum class PromptIcon { None, Information, Question, Warning, Error };
enum class PromptButtons { Ok, YesNo, YesNoCancel };
/// Closing the box counts as Ok if that is the only button, as Cancel if there is one, else as No.
enum class PromptAnswer { Ok, Yes, No, Cancel };

/// One message box. An empty caption shows the program's name, if it has one.
struct Prompt {
    std::wstring text;
    std::wstring caption;
    PromptIcon icon = PromptIcon::None;
    PromptButtons buttons = PromptButtons::Ok;
    std::wstring yesText = {};  ///< on the Yes button; empty: the system's word
    std::wstring noText = {};   ///< on the No button
};

/// A message with a main instruction, details and a check box.
struct TaskPrompt {
    std::wstring title;
    std::wstring mainInstruction;
    std::wstring content;
    std::wstring verification;  ///< text of the check box, initially clear; empty: none
    PromptIcon icon = PromptIcon::None;
    PromptButtons buttons = PromptButtons::YesNo;
};

struct TaskAnswer {
    PromptAnswer answer = PromptAnswer::No;
    bool verificationChecked = false;
};

/// A question over lists of what it is about. Answered with Yes or No; closing the window is No.
struct ReportPrompt {
    struct Section {
        std::wstring heading;
        std::vector<std::wstring> lines;
    };

    std::wstring caption;
    std::wstring summary;
    std::vector<Section> sections;
    std::wstring yesText;
    std::wstring noText;  ///< empty: no such button, as in a message
};

/// Messages and questions to the user: modal windows, or scripted answers in tests.
class UserPrompts {
  public:
    virtual ~UserPrompts() = default;
    virtual PromptAnswer Show(const Prompt& prompt) = 0;
    virtual TaskAnswer ShowTask(const TaskPrompt& prompt) = 0;
    virtual PromptAnswer ShowReport(const ReportPrompt& prompt) = 0;
};

}  // namespace orvex
