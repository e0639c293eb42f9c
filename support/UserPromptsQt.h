#pragma once
#include <QPointer>
#include <QWidget>

#include "support/UserPrompts.h"

namespace orvex {

/// Message boxes over the active window, or over a window that is given.
class UserPromptsQt final : public UserPrompts {
  public:
    /// `owner` is the window of messages that come while no dialog of this program is open; null: none.
    explicit UserPromptsQt(QWidget* owner = nullptr) : owner_(owner) {}

    PromptAnswer Show(const Prompt& prompt) override;
    TaskAnswer ShowTask(const TaskPrompt& prompt) override;

  private:
    QWidget* Parent() const;

    QPointer<QWidget> owner_;
};

}  // namespace orvex
