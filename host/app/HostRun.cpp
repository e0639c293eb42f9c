#include "host/app/HostRun.h"

#include <QApplication>
#include <QDir>
#include <QMessageBox>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTimer>
#include <cstdlib>
#include <iostream>

#include "host/app/Appearance.h"
#include "host/app/ApplicationMaker.h"
#include "host/app/DialogDriver.h"
#include "host/app/HostArguments.h"
#include "host/app/HostText.h"
#include "host/app/HostWindow.h"
#include "host/app/SampleProject.h"
#include "host/app/Watchdog.h"
#include "host/objects/HostClasses.h"
#include "settings/RegistryKey.h"

namespace orvex {

namespace {

constexpr std::chrono::seconds kPatience{120};

/// The sample project in the user's cache folder; empty when it cannot be made.
QString SampleProjectFolder() {
    const QString folder =
        QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) + "/orvex/sample-project";
    return ToQString(FromPath(EnsureSampleProject(ToPath(ToWide(folder)))));
}

QString SampleDataFolder(const QString& project) {
    return ToQString(FromPath(SampleData(ToPath(ToWide(project)))));
}

struct Start {
    QString project;
    DropPlan plan;  ///< to be shown in the dialog
};

/// A project named on the command line or used before is opened as it is; else the sample project, and the
/// dialog shows its data.
Start ChooseStart(const HostArguments& arguments, const HostState& state) {
    Start start{arguments.projectFolder, DistributePaths(arguments.paths)};
    for (const QString& recent : state.RecentProjects()) {
        if (start.project.isEmpty() && QDir(recent).exists()) {
            start.project = recent;
        }
    }
    if (start.project.isEmpty()) {
        start.project = SampleProjectFolder();
        if (start.plan.IsEmpty() && !start.project.isEmpty()) {
            start.plan = SamplePlan(SampleDataFolder(start.project));
        }
    }
    return start;
}

/// The objects that the component asks its host for; the project folder is that of the window.
host::HostClasses MakeHostClasses(const HostWindow& window) {
    return host::HostClasses(
        {host::DefaultSettingsFile(), [&window] { return ToWide(window.ProjectFolder()); }});
}

/// A display that does not answer ends the process from inside the toolkit, with a crash; this ends it with a
/// message.
void TellThatThereIsNoDisplay(QtMsgType type, const QMessageLogContext&, const QString& text) {
    std::cerr << text.toStdString() << std::endl;
    if (type == QtFatalMsg) {
        std::cerr << HostText(41054_lsid).toStdString() << std::endl;
        std::_Exit(1);
    }
}

/// The pictures of rasters come in through events; the watchdog ends a wait in vain.
void WaitForPictures(const HostWindow& window) {
    QTimer ticks;  // Something to wake up for when nothing comes.
    ticks.start(20);
    while (window.IsLoading()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    QCoreApplication::processEvents();
}

/// Whether the record came back with files of every kind that is expected, and with any at all.
bool Holds(const RecordCounts& counts, const std::set<QString>& expected) {
    const std::pair<const char*, std::size_t> kinds[] = {
        {"las", counts.las}, {"raster", counts.rasters}, {"dem", counts.dems}};
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
    return counts.las + counts.rasters + counts.dems > 0;
}

}  // namespace

int RunInteractive(int& argc, char** argv, const HostArguments& arguments) {
    const QTemporaryDir folder;
    const QtMessageHandler usual = qInstallMessageHandler(TellThatThereIsNoDisplay);
    const auto application = MakeApplication(argc, argv, arguments, folder.path());
    qInstallMessageHandler(usual);
    HostState state(HostState::DefaultPath());
    state.dark = state.dark || arguments.dark;
    ApplyAppearance(state.dark);
    const Start start = ChooseStart(arguments, state);
    HostWindow window(state);
    const host::HostClasses classes = MakeHostClasses(window);
    window.show();
    if (start.project.isEmpty()) {
        QMessageBox::warning(
            &window, HostText(40880_lsid),
            HostText(40920_lsid,
                     {ToWide(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation))}));
    } else {
        window.OpenProject(start.project);
    }
    const bool hasNews = !arguments.paths.isEmpty() || window.CurrentProject().IsEmpty();
    if (!start.plan.IsEmpty() && hasNews) {
        QTimer::singleShot(0, &window, [&] { window.AddFiles(start.plan); });
    }
    return QApplication::exec();
}

int RunDriven(int& argc, char** argv, const HostArguments& arguments) {
    const QTemporaryDir folder;
    const PrivateSettings settings(ToPath(ToWide(folder.filePath("settings"))));
    Watchdog watchdog(kPatience);
    const auto application = MakeApplication(argc, argv, arguments, folder.path());
    ApplyAppearance(arguments.dark);
    watchdog.WaitingFor("the sample project");
    const DropPlan plan = arguments.paths.isEmpty() ? SamplePlan(SampleDataFolder(SampleProjectFolder()))
                                                    : DistributePaths(arguments.paths);

    HostState state{QString()};
    state.dark = arguments.dark;
    HostWindow window(state);
    const host::HostClasses classes = MakeHostClasses(window);
    window.OpenProject(arguments.projectFolder.isEmpty() ? folder.filePath("project")
                                                         : arguments.projectFolder);
    window.show();
    DialogDriver driver({plan, arguments.pictureFolder, PictureSuffix(arguments)}, std::cout, watchdog);
    driver.Start();
    window.AddFiles();
    std::cout << window.LastRecord().toStdString() << std::flush;
    watchdog.WaitingFor("the picture of the host");
    WaitForPictures(window);
    driver.TakePicture(&window, "host");
    watchdog.WaitingFor("the LiDAR question");
    window.AskLidarAccess();
    // The sample project has files of every kind.
    const std::set<QString> expected =
        arguments.paths.isEmpty() ? std::set<QString>{"las", "raster", "dem"} : driver.TabsWithFiles();
    return Holds(window.LastRecordCounts(), expected) ? 0 : 1;
}

}  // namespace orvex
