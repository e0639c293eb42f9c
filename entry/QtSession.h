#pragma once
#include <memory>

#include "support/LDataError.h"

namespace orvex {

/// Windows cannot be shown on this thread.
class WindowsNotShown : public LDataError {
  public:
    using LDataError::LDataError;
};

/// Qt for one call. A QApplication that the host has on this thread is used as it is. In a host without Qt,
/// one is created on this thread and destroyed again, for every call, on whatever thread that comes. The
/// environment variable ORVEX_QT_PLATFORM names its platform plugin ("offscreen" shows no window); plugins
/// are also looked for in "plugins" beside this module.
class QtSession {
  public:
    /// Throws WindowsNotShown: the host's application is a
    /// QCoreApplication or belongs to another thread, or neither a platform plugin nor its display can be
    /// used.
    QtSession();
    ~QtSession();
    QtSession(const QtSession&) = delete;
    QtSession& operator=(const QtSession&) = delete;

    /// True if the application was created here.
    bool IsOwn() const { return own_ != nullptr; }

  private:
    class Application;
    std::unique_ptr<Application> own_;
};

}  // namespace orvex
