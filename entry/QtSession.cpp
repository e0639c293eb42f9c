#include "entry/QtSession.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>
#include <QPluginLoader>
#include <QThread>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "entry/HostProcess.h"
#include "support/Environment.h"
#include "support/Log.h"
#include "support/QtText.h"
#include "support/Text.h"

namespace orvex {
namespace {

QStringList CandidatePlatforms() {
    const auto wanted = EnvironmentVariable(L"ORVEX_QT_PLATFORM");
    if (wanted && !wanted->empty()) {
        return ToQString(*wanted).split(';');
    }
    QStringList names;
    for (const std::string& platform : QtPlatforms()) {
        names.append(QString::fromStdString(platform));
    }
    return names;
}

/// The files in the folders in which Qt looks for platform plugins, in its order.
QStringList PlatformPlugins() {
    QStringList folders = QCoreApplication::libraryPaths();
    if (const QString named = qEnvironmentVariable("QT_QPA_PLATFORM_PLUGIN_PATH"); !named.isEmpty()) {
        folders.prepend(named);
    }
    QStringList files;
    for (const QString& folder : folders) {
        for (const QDir& place : {QDir(folder + "/platforms"), QDir(folder)}) {
            for (const QString& name : place.entryList({"*.so", "*.dll"}, QDir::Files)) {
                files.append(place.filePath(name));
            }
        }
    }
    return files;
}

// A damaged file has no keys.
bool IsPluginOf(const QPluginLoader& plugin, const QString& platform) {
    const QString file = QFileInfo(plugin.fileName()).completeBaseName();
    const QJsonValue keys = plugin.metaData().value(QLatin1String("MetaData")).toObject().value("Keys");
    return keys.toArray().contains(platform) || file == 'q' + platform || file == "libq" + platform;
}

/// Reason why a platform's plugin cannot be loaded; empty if it can. It stays loaded.
std::wstring PluginFault(const QString& platform) {
    for (const QString& file : PlatformPlugins()) {
        QPluginLoader plugin(file);
        if (IsPluginOf(plugin, platform)) {
            return plugin.load() ? std::wstring() : ToWide(plugin.errorString());
        }
    }
    return L"its plugin is not in " + ToWide(QCoreApplication::libraryPaths().join(", "));
}

/// Value for Qt's "-platform" option: the platforms that can be used, of those that are to be. Qt ends the
/// process when it can use none.
std::string PlatformOption() {
    QStringList usable;
    std::wstring faults;
    for (const QString& candidate : CandidatePlatforms()) {
        const QString name = candidate.section(':', 0, 0).toLower();
        std::wstring fault = PluginFault(name);
        if (fault.empty()) {
            fault = DisplayFault(name.toStdString());
        }
        if (fault.empty()) {
            usable.append(candidate);
        } else {
            faults += (faults.empty() ? L"" : L"; ") + (L"Qt's platform '" + ToWide(name)) + L"': " + fault;
        }
    }
    if (usable.isEmpty()) {
        throw WindowsNotShown(faults.empty() ? L"there is no display" : faults);
    }
    return usable.join(';').toStdString();
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
        texts_.insert(texts_.end(), {"-platform", PlatformOption()});
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
        throw WindowsNotShown(
            L"the process has a QCoreApplication, which has no windows, and no QApplication");
    } else if (QThread::currentThread() != running->thread()) {
        throw WindowsNotShown(L"the QApplication of the process belongs to another thread");
    }
}

QtSession::~QtSession() {
    if (own_ != nullptr) {
        const std::lock_guard guard(ApplicationLock());
        own_.reset();
    }
}

}  // namespace orvex
