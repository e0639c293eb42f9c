// orvex-host: a small desktop program that adds data to a project with the Add Files dialog.
#include <QApplication>
#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QGraphicsView>
#include <QMessageBox>
#include <QMouseEvent>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimer>
#include <QUrl>
#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "host/app/Application.h"
#include "host/app/CloudSignIn.h"
#include "host/app/DialogDriver.h"
#include "host/app/HostArguments.h"
#include "host/app/HostText.h"
#include "host/app/HostWindow.h"
#include "host/app/ParentConsole.h"
#include "host/app/PhotoJobs.h"
#include "host/app/SampleProject.h"
#include "host/objects/HostClasses.h"
#include "orvexcommon/Version.h"
#include "support/Environment.h"
#include "support/Format.h"
#include "support/LDataError.h"

namespace orvex {

namespace {

constexpr std::chrono::seconds kPatience{120};

/// Where the sample project is, or is to be.
std::filesystem::path SamplePlace() {
    return ToPath(ToWide(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) +
                         "/orvex/sample-project"));
}

/// The sample project in the user's cache folder; empty when it cannot be made.
QString SampleProjectFolder() {
    return ToQString(FromPath(EnsureSampleProject(SamplePlace())));
}

std::wstring SampleProjectFailure() {
    return FormatText(Text(text::kSampleProjectFailed),
                      {ToWide(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation))});
}

/// Signs the window's user in. The account of the sample project is for those who have none.
void SignIn(HostWindow& window, HostPreferences& preferences) {
    preferences.sampleAccount = ToQString(FromPath(EnsureSampleAccount(SamplePlace())));
    window.SetAccount(AccountAtStart(preferences));
}

/// A link to a file as an object store would sign it for six hours.
QString SignedLink(const QString& path) {
    QUrl url = QUrl::fromLocalFile(path);
    url.setQuery("X-Amz-Date=" + QDateTime::currentDateTimeUtc().toString("yyyyMMdd'T'HHmmss'Z'") +
                 "&X-Amz-Expires=21600&X-Amz-Signature=" + QString(64, '0'));
    return url.toString(QUrl::FullyEncoded);
}

/// Files that the dialog sorts to its pages by their names.
QStringList SampleNames() {
    return {"*.las", "*.laz", "*.tif", "*.png", "*.bil", "*.asc", "*.shp", "*.dxf", "*.kml"};
}

/// Files of a sample project.
QStringList SampleFiles(const QString& project, const QStringList& names) {
    const QString data = ToQString(FromPath(SampleData(ToPath(ToWide(project)))));
    QDirIterator files(data, names, QDir::Files, QDirIterator::Subdirectories);
    QStringList paths;
    while (files.hasNext()) {
        paths.append(files.next());
    }
    paths.sort();
    return paths;
}

struct Start {
    QString project;
    QStringList paths;  ///< to be added when the dialog opens
};

/// A project named on the command line or used before is opened as it is; else the sample project, and the
/// dialog shows its data.
Start ChooseStart(const HostArguments& arguments, const HostPreferences& preferences) {
    Start start{arguments.projectFolder, arguments.paths};
    for (const QString& recent : preferences.RecentProjects()) {
        if (start.project.isEmpty() && QDir(recent).exists()) {
            start.project = recent;
        }
    }
    if (start.project.isEmpty()) {
        start.project = SampleProjectFolder();
        if (start.paths.isEmpty() && !start.project.isEmpty()) {
            start.paths = SampleFiles(start.project, SampleNames());
        }
    }
    return start;
}

/// The objects that the component asks its host for; the project folder is that of the window.
host::HostClasses MakeHostClasses(const HostWindow& window) {
    const auto folder = [&window] { return ToWide(window.ProjectFolder()); };
    host::HostData data{host::DefaultSettingsFile(), folder};
    data.photoFolder = [folder] { return PhotoFolderOf(folder()); };
    data.openLayer = [folder](const std::wstring& path) {
        return OpenPhotoLayer(PhotoLayerPath(path, folder()));
    };
    data.account = [&window] { return window.Account(); };
    return host::HostClasses(std::move(data));
}

/// A display that does not answer ends the process from inside the toolkit, with a crash; this ends it with a
/// message.
void ReportMissingDisplay(QtMsgType type, const QMessageLogContext&, const QString& text) {
    std::cerr << text.toStdString() << std::endl;
    if (type == QtFatalMsg) {
        std::cerr << HostText(text::kHostNoDisplay).toStdString() << std::endl;
        std::_Exit(1);
    }
}

/// Thumbnails come in through events; the watchdog ends a wait in vain.
void WaitForThumbnails(const HostWindow& window) {
    QTimer ticks;  // Something to wake up for when nothing comes.
    ticks.start(20);
    while (window.IsLoading()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    QCoreApplication::processEvents();
}

/// Puts the cursor on the first photo that has a place.
void HoverPhoto(const HostWindow& window) {
    QWidget* const map = window.findChild<QWidget*>("footprints");
    const auto* const view = qobject_cast<QGraphicsView*>(map);
    for (const Layer& layer : window.CurrentProject().layers) {
        for (const LayerFile& file : layer.files) {
            if (file.photo.position) {
                const QPointF pixel(view->mapFromScene((*file.photo.position)[0], (*file.photo.position)[1]));
                QMouseEvent move(QEvent::MouseMove, pixel, view->viewport()->mapToGlobal(pixel), Qt::NoButton,
                                 Qt::NoButton, Qt::NoModifier);
                QApplication::sendEvent(view->viewport(), &move);
                return;
            }
        }
    }
}

/// True if the record came back with files of every kind that is expected, and with any at all.
bool Holds(const RecordCounts& counts, const std::set<QString>& expected) {
    const std::pair<const char*, std::size_t> kinds[] = {
        {"las", counts.las},      {"raster", counts.rasters},   {"dem", counts.dems},
        {"photo", counts.photos}, {"feature", counts.features}, {"cloud", counts.cloudLayers}};
    for (const auto& [name, count] : kinds) {
        if (expected.contains(name) && count == 0) {
            std::cerr << "orvex-host: no files of the tab '" << name << "' came back" << std::endl;
            return false;
        }
    }
    if (counts.dems > 0 && counts.convertedDems == 0) {
        std::cerr << "orvex-host: no elevation file became a LAS file" << std::endl;
        return false;
    }
    return counts.las + counts.rasters + counts.dems + counts.photos + counts.features + counts.cloudLayers >
           0;
}

/// Opens the host's window and, where there is something to add, the dialog with it. Returns the exit code.
int RunInteractive(int& argc, char** argv, const HostArguments& arguments) {
    const QTemporaryDir folder;
    const QtMessageHandler usual = qInstallMessageHandler(ReportMissingDisplay);
    const auto application = MakeApplication(argc, argv, arguments, folder.path());
    qInstallMessageHandler(usual);
    HostPreferences preferences(HostPreferences::DefaultPath());
    preferences.dark = preferences.dark || arguments.dark;
    ApplyAppearance(preferences.dark);
    const Start start = ChooseStart(arguments, preferences);
    HostWindow window(preferences);
    const host::HostClasses classes = MakeHostClasses(window);
    window.show();
    try {
        SignIn(window, preferences);
    } catch (const LDataError& error) {
        QMessageBox::warning(&window, HostText(text::kHostName), ToQString(error.Text()));
    }
    if (start.project.isEmpty()) {
        QMessageBox::warning(&window, HostText(text::kHostName), ToQString(SampleProjectFailure()));
    } else {
        window.OpenProject(start.project);
    }
    const bool hasNews = !arguments.paths.isEmpty() || window.CurrentProject().IsEmpty();
    if (!start.paths.isEmpty() && hasNews) {
        QTimer::singleShot(0, &window, [&] { window.AddFiles(start.paths); });
    }
    return QApplication::exec();
}

/// Opens the dialog, uses it without a person (on a project and with options of its own, so that nothing of
/// the user's changes), prints the record and leaves pictures. 0 when the record holds files.
int RunDriven(int& argc, char** argv, const HostArguments& arguments) {
    const QTemporaryDir folder;
    if (!folder.isValid()) {
        throw LDataError(FormatText(Text(text::kTemporaryFolderFailed),
                                    {ToWide(QDir::tempPath()), ToWide(folder.errorString())}));
    }
    const PrivateSettings settings(ToPath(ToWide(folder.filePath("settings"))));
    Watchdog watchdog(kPatience);
    const auto application = MakeApplication(argc, argv, arguments, folder.path());
    ApplyAppearance(arguments.dark);
    watchdog.WaitingFor("the sample project");
    const QStringList paths =
        arguments.paths.isEmpty() ? SampleFiles(SampleProjectFolder(), SampleNames()) : arguments.paths;
    if (paths.isEmpty()) {
        throw LDataError(SampleProjectFailure());
    }
    HostPreferences preferences{QString()};
    preferences.dark = arguments.dark;
    preferences.writesBesideData = arguments.paths.isEmpty();  // what is given is the user's
    HostWindow window(preferences);
    SignIn(window, preferences);
    const host::HostClasses classes = MakeHostClasses(window);
    const QStringList photos =
        arguments.paths.isEmpty() ? SampleFiles(SampleProjectFolder(), {"*.jpg"}) : QStringList();
    const QString cloudUrl =
        arguments.paths.isEmpty() ? SignedLink(preferences.sampleAccount + "/files/no-crs.las") : QString();
    DialogDriver driver({arguments.pictureFolder, PictureSuffix(arguments), cloudUrl, photos}, std::cout,
                        watchdog);
    driver.Start();  // from now on messages are answered, and printed with their reason
    if (!window.OpenProject(arguments.projectFolder.isEmpty() ? folder.filePath("project")
                                                              : arguments.projectFolder)) {
        return 1;
    }
    window.show();
    window.AddFiles(paths);
    std::cout << ToUtf8(WithoutControls(ToWide(window.LastRecord()), L"\n")) << std::flush;
    watchdog.WaitingFor("the picture of the host");
    WaitForThumbnails(window);
    driver.TakePicture(&window, "host");
    if (window.ShowKind(LayerKind::Las)) {
        WaitForThumbnails(window);
        driver.TakePicture(&window, "host-points");
    }
    if (window.ShowKind(LayerKind::Photo)) {
        HoverPhoto(window);
        WaitForThumbnails(window);
        driver.TakePicture(&window, "host-photos");
    }
    watchdog.WaitingFor("the LiDAR question");
    window.AskLidarAccess();
    // The sample project has files of every kind.
    const std::set<QString> expected =
        arguments.paths.isEmpty() ? std::set<QString>{"las", "raster", "feature", "dem", "photo", "cloud"}
                                  : driver.TabsWithFiles();
    return Holds(window.LastRecordCounts(), expected) ? 0 : 1;
}

QStringList ArgumentsOf(int argc, char** argv) {
    QStringList arguments;
    for (const std::wstring& argument : ProgramArguments(argc, argv)) {
        arguments.append(ToQString(argument));
    }
    return arguments;
}

/// False after naming the missing files on the console.
bool Exist(const QStringList& paths) {
    bool all = true;
    for (const QString& path : paths) {
        std::error_code error;
        if (!std::filesystem::exists(ToPath(ToWide(path)), error)) {
            std::cerr << HostText(text::kPathDoesNotExist, {WithoutControls(ToWide(path))}).toStdString()
                      << '\n';
            all = false;
        }
    }
    return all;
}

int RunHost(int argc, char** argv) {
    const HostArguments arguments = ParseHostArguments(ArgumentsOf(argc, argv));
    if (arguments.help || !arguments.error.isEmpty()) {
        std::ostream& out = arguments.help ? std::cout : std::cerr;
        if (!arguments.error.isEmpty()) {
            out << arguments.error.toStdString() << '\n';
        }
        out << HostText(text::kHostUsage).toStdString() << '\n';
        return arguments.help ? 0 : 2;
    }
    if (arguments.version) {
        std::cout << "orvex-host " ORVEX_VERSION_TEXT "\n";
        return 0;
    }
    if (!Exist(arguments.paths)) {
        return 1;
    }
    if (arguments.scale != 1) {
        qputenv("QT_SCALE_FACTOR", QByteArray::number(arguments.scale));
    }
    QApplication::setOrganizationName("orvex");
    QApplication::setApplicationName("orvex-host");
    QApplication::setApplicationVersion(ORVEX_VERSION_TEXT);
    return arguments.drive ? RunDriven(argc, argv, arguments) : RunInteractive(argc, argv, arguments);
}

}  // namespace
}  // namespace orvex

int main(int argc, char** argv) {
    const orvex::ParentConsole console;
    try {
        return orvex::RunHost(argc, argv);
    } catch (...) {
        std::cerr << orvex::ToUtf8(orvex::CurrentExceptionText()) << '\n';
        return 3;
    }
}
