#pragma once
#include <memory>

namespace orvex {

/// Qt for the duration of one call. A host that has a QApplication on this thread keeps it, and nothing
/// happens here. In a host without Qt a QApplication is made on this thread and taken down again, as often as
/// calls come, and on another thread the next time. The environment variable ORVEX_QT_PLATFORM names the
/// platform plugin of such an application ("offscreen" shows no window); Qt's plugins are looked for in
/// "plugins" beside this module as well.
class QtSession {
  public:
    /// Throws LDataError when windows cannot be shown on this thread: the host's application is a
    /// QCoreApplication or belongs to another thread, or the platform plugin is missing.
    QtSession();
    ~QtSession();
    QtSession(const QtSession&) = delete;
    QtSession& operator=(const QtSession&) = delete;

    /// Whether the application was made here.
    bool IsOwn() const { return own_ != nullptr; }

  private:
    class Application;
    std::unique_ptr<Application> own_;
};

}  // namespace orvex
