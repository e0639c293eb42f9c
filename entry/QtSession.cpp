#include "entry/QtSession.h"

#include <QApplication>
#include <QDir>
#include <QThread>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "entry/HostProcess.h"
#include "support/Environment.h"
#include "support/LDataError.h"
#include "support/Log.h"
#include "support/QtText.h"
#include "support/Text.h"

namespace orvex {
namespace {

std::string PlatformOption() {
    const auto wanted = EnvironmentVariable(L"ORVEX_QT_PLATFORM");
    return wanted && !wanted->empty() ? ToUtf8(*wanted) : QtPlatformOption();
}

// Qt ends the process when it cannot load its platform plugin.
void CheckPlatformPlugin(const std::string& option) {
    const QString name = QString::fromStdString(option.substr(0, option.find(':')));
    const QStringList files{'q' + name + ".*", "libq" + name + ".*"};
    const QStringList folders = QCoreApplication::libraryPaths();
    const bool found = std::any_of(folders.begin(), folders.end(), [&](const QString& folder) {
        return !QDir(folder + "/platforms").entryList(files, QDir::Files).isEmpty();
    });
    if (!found) {
        throw LDataError(L"Qt's platform plugin '" + ToWide(name) + L"' is not in " +
                         ToWide(folders.join(QStringLiteral(", "))));
    }
}

// A host without Qt has no place for what Qt reports.
void LogQtMessage(QtMsgType type, const QMessageLogContext&, const QString& text) {
    if (type != QtDebugMsg && type != QtInfoMsg) {
        LogWarning(L"Qt: " + ToWide(text));
    }
}

// Qt's application is one for the process: two threads must not make or end one at the same time.
std::mutex& ApplicationLock() {
    static std::mutex lock;
    return lock;
}

}  // namespace

class QtSession::Application {
  public:
    Application()
        : texts_{"OrvexCommon"},
          quitOnLastWindowClosed_(QGuiApplication::quitOnLastWindowClosed()),
          logBefore_(qInstallMessageHandler(LogQtMessage)) {
        try {
            Start();
        } catch (...) {
            qInstallMessageHandler(logBefore_);
            throw;
        }
    }
    ~Application() {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        application_.reset();
        QGuiApplication::setQuitOnLastWindowClosed(quitOnLastWindowClosed_);
        qInstallMessageHandler(logBefore_);
    }
    Application(const Application&) = delete;
    Application& operator=(const Application&) = delete;

  private:
    void Start() {
        QCoreApplication::addLibraryPath(ToQString(FromPath(ModuleFolder() / "plugins")));
        if (const std::string option = PlatformOption(); !option.empty()) {
            CheckPlatformPlugin(option);
            texts_.insert(texts_.end(), {"-platform", option});
        }
        for (std::string& text : texts_) {
            arguments_.push_back(text.data());
        }
        count_ = static_cast<int>(arguments_.size());
        arguments_.push_back(nullptr);
        application_.emplace(count_, arguments_.data());
        // The second message box of a call comes when the first one, and so the last window, has closed.
        QGuiApplication::setQuitOnLastWindowClosed(false);
    }

    // Qt keeps references to the arguments.
    std::vector<std::string> texts_;
    std::vector<char*> arguments_;
    int count_ = 0;
    bool quitOnLastWindowClosed_;
    QtMessageHandler logBefore_;
    std::optional<QApplication> application_;
};

QtSession::QtSession() {
    const std::lock_guard guard(ApplicationLock());
    const QCoreApplication* running = QCoreApplication::instance();
    if (running == nullptr) {
        own_ = std::make_unique<Application>();
    } else if (qobject_cast<const QApplication*>(running) == nullptr) {
        throw LDataError(L"the process has a QCoreApplication, which has no windows, and no QApplication");
    } else if (QThread::currentThread() != running->thread()) {
        throw LDataError(L"the QApplication of the process belongs to another thread");
    }
}

QtSession::~QtSession() {
    if (own_ != nullptr) {
        const std::lock_guard guard(ApplicationLock());
        own_.reset();
    }
}

}  // namespace orvex
