#pragma once
#include <functional>
#include <memory>

namespace orvex {

/// Notices that the host ends its message loop (Windows' WM_QUIT) while a dialog's own loop runs, which would
/// drop it, and gives the message back when this goes. Elsewhere there is no such message.
class QuitWatch {
  public:
    /// `onQuit` is called on this thread, inside a message loop, each time the message comes.
    explicit QuitWatch(std::function<void()> onQuit);
    ~QuitWatch();
    QuitWatch(const QuitWatch&) = delete;
    QuitWatch& operator=(const QuitWatch&) = delete;

    /// Whether the message has come.
    bool HasQuit() const;

  private:
    struct Hook;
    std::unique_ptr<Hook> hook_;
};

}  // namespace orvex
