#pragma once
// The parts of the desktop that Qt does on both platforms: message boxes, the HTML manual, the active window.
#include <QDialog>
#include <QPointer>
#include <QUrl>
#include <QWidget>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "support/FilePickers.h"
#include "support/HelpViewer.h"
#include "support/UserPrompts.h"

namespace orvex {

/// Parent for a dialog opened now: the modal window, else the active one; null if there is none.
QWidget* ActiveQtWindow();

/// Bounds a window, and the least size that it can be given, to the available part of its screen, the title
/// bar included. One that has been placed is moved there as well, a minimised or maximised one is left alone.
void FitOntoScreen(QWidget& window);

/// FilePickers::PickSaveFile with Qt's dialog, which is the system's where it has one.
std::optional<std::wstring> PickSaveFileQt(const SaveFileRequest& request);

/// True while a Ctrl key is held down, even if no window of this program has been told yet. Needs a
/// QGuiApplication.
bool IsControlKeyHeld();
/// The same of a Shift key.
bool IsShiftKeyHeld();

/// Keeps a modal dialog from being deleted with its parent, under the code that has it on the stack. When the
/// host destroys the parent, the dialog is taken from it and hidden, which ends its exec as if it were
/// cancelled.
class ParentGuard {
  public:
    /// `dialog` outlives the guard.
    explicit ParentGuard(QDialog& dialog);
    ~ParentGuard();
    ParentGuard(const ParentGuard&) = delete;
    ParentGuard& operator=(const ParentGuard&) = delete;

  private:
    QMetaObject::Connection connection_;
};

/// Message boxes over the active window, or over a given one.
class UserPromptsQt final : public UserPrompts {
  public:
    /// `owner` is the parent of messages shown while no dialog of this program is open; null: none.
    explicit UserPromptsQt(QWidget* owner = nullptr) : owner_(owner) {}

    PromptAnswer Show(const Prompt& prompt) override;
    TaskAnswer ShowTask(const TaskPrompt& prompt) override;
    PromptAnswer ShowReport(const ReportPrompt& prompt) override;

  private:
    QWidget* Parent() const;

    QPointer<QWidget> owner_;
};

/// The HTML manual in the browser.
class HelpViewerQt final : public HelpViewer {
  public:
    using Open = std::function<bool(const QUrl&)>;

    /// `folder` contains "help/index.html"; `open` shows an address (empty: in the desktop's browser).
    explicit HelpViewerQt(std::filesystem::path folder, Open open = {});

    /// Opens the topic's heading; its id in the manual is "topic-" and the topic's number.
    bool Show(HelpTopic topic) override;
    std::wstring ManualPath() const override;

  private:
    std::filesystem::path folder_;
    Open open_;
};

}  // namespace orvex
