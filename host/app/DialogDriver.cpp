#include "host/app/DialogDriver.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QMessageBox>
#include <QPixmap>
#include <QTabBar>
#include <QTableView>
#include <ostream>

#include "host/app/DialogDrop.h"
#include "host/app/HostText.h"
#include "host/app/Watchdog.h"

namespace orvex {

namespace {

constexpr int kTickMs = 15;
/// Ticks without a progress bar until a run counts as over: between two parts of one it may be hidden
/// briefly.
constexpr int kQuietTicks = 4;

struct TabName {
    const char* page;
    const char* name;
};
constexpr TabName kTabNames[] = {{kLasPage, "las"}, {kRasterPage, "raster"}, {"page390", "feature"},
                                 {kDemPage, "dem"}, {"page406", "photo"},    {"page410", "cloud"}};

QString TextOf(QWidget* window) {
    const auto* box = qobject_cast<QMessageBox*>(window);
    const QString text = box == nullptr ? QString() : box->text() + ' ' + box->informativeText();
    return (window->windowTitle() + ": " + text).simplified();
}

QTableView* GridOf(QWidget* dialog) {
    for (auto* table : dialog->findChildren<QTableView*>()) {
        if (table->isVisible() && table->model() != nullptr && table->model()->rowCount() > 0) {
            return table;
        }
    }
    return nullptr;
}

}  // namespace

DialogDriver::DialogDriver(Settings settings, std::ostream& out, Watchdog& watchdog)
    : settings_(std::move(settings)), out_(out), watchdog_(watchdog) {
    timer_.setInterval(kTickMs);
    connect(&timer_, &QTimer::timeout, this, &DialogDriver::Tick);
}

void DialogDriver::Start() {
    if (!settings_.pictureFolder.isEmpty()) {
        QDir().mkpath(settings_.pictureFolder);
    }
    AddSteps();
    timer_.start();
}

void DialogDriver::TakePicture(QWidget* widget, const QString& name) {
    if (settings_.pictureFolder.isEmpty()) {
        return;
    }
    const QString path = QDir(settings_.pictureFolder).filePath(name + settings_.pictureSuffix + ".png");
    if (!widget->grab().save(path)) {
        out_ << "picture could not be saved: " << path.toStdString() << std::endl;
    }
}

void DialogDriver::Add(const QString& waitsFor, std::function<bool()> ready, std::function<void()> run) {
    steps_.push_back({waitsFor, std::move(ready), std::move(run)});
}

void DialogDriver::AddSteps() {
    Add(
        "the Add Files dialog to open", [this] { return (dialog_ = FindAddFilesDialog()) != nullptr; },
        [this] { AddDialogSteps(); });
}

void DialogDriver::AddDialogSteps() {
    Add(
        "the dialog to settle", [this] { return IsIdle(); },
        [this] { TakePicture(dialog_, "dialog-empty"); });
    AddPageSteps(kLasPage, "las", settings_.plan.las);
    AddPageSteps(kRasterPage, "raster", settings_.plan.rasters);
    AddPageSteps(kDemPage, "dem", settings_.plan.dems);
    AddOtherTabSteps();
    Add(
        "the OK button", [this] { return IsIdle(); },
        [this] {
            if (auto* ok = dialog_->findChild<QAbstractButton*>("ok")) {
                ok->click();
            }
        });
    Add(
        "the dialog to close", [] { return FindAddFilesDialog() == nullptr; }, [this] { dialog_ = nullptr; });
}

void DialogDriver::AddPageSteps(const char* page, const QString& name, const QStringList& paths) {
    if (dialog_->findChild<QWidget*>(page) == nullptr) {
        return;
    }
    const auto idle = [this] { return IsIdle(); };
    Add("the tab " + name, idle, [this, page, name, paths] {
        ShowPage(dialog_, page);
        tabsShown_.insert(name);
        if (!paths.isEmpty()) {
            DropPaths(dialog_, paths);
        }
    });
    Add("the files of the tab " + name, idle, [this] {
        TakePicture(dialog_, "tab-" + CurrentTabName());
        NoteFiles();
    });
    Add("the button of the detail columns", idle, [this] { ToggleDetailColumns(); });
    Add("the detail columns", idle, [this] {
        TakePicture(dialog_, "tab-" + CurrentTabName() + "-columns");
        ToggleDetailColumns();
        if (QTableView* grid = GridOf(dialog_)) {
            grid->selectRow(grid->model()->rowCount() / 2);
        }
    });
    Add("the details of a file", idle,
        [this] { TakePicture(dialog_, "tab-" + CurrentTabName() + "-details"); });
}

void DialogDriver::AddOtherTabSteps() {
    auto* tabs = dialog_->findChild<QTabBar*>();
    for (int tab = 0; tab < tabs->count(); ++tab) {
        Add(
            "the next tab", [this] { return IsIdle(); }, [tabs, tab] { tabs->setCurrentIndex(tab); });
        Add(
            "the page of the tab", [this] { return IsIdle(); },
            [this] {
                if (tabsShown_.insert(CurrentTabName()).second) {
                    TakePicture(dialog_, "tab-" + CurrentTabName());
                }
            });
    }
}

/// The push button of a page whose caption shows which way the columns go.
void DialogDriver::ToggleDetailColumns() {
    for (auto* button : dialog_->findChildren<QAbstractButton*>()) {
        if (button->isVisible() && (button->text() == "<<" || button->text() == ">>")) {
            button->click();
            return;
        }
    }
}

void DialogDriver::NoteFiles() {
    if (GridOf(dialog_) != nullptr) {
        tabsWithFiles_.insert(CurrentTabName());
    }
}

/// Whether no run has lasted for some ticks: the dialog takes its OK button away while one does.
bool DialogDriver::IsIdle() {
    const auto* ok = dialog_ == nullptr ? nullptr : dialog_->findChild<QAbstractButton*>("ok");
    quietTicks_ = ok != nullptr && !ok->isEnabled() ? 0 : quietTicks_ + 1;
    if (quietTicks_ < kQuietTicks) {
        return false;
    }
    quietTicks_ = 0;
    return true;
}

QString DialogDriver::CurrentTabName() const {
    for (const TabName& tab : kTabNames) {
        const auto* page = dialog_->findChild<QWidget*>(tab.page);
        if (page != nullptr && page->isVisible()) {
            return tab.name;
        }
    }
    return "unknown";
}

void DialogDriver::Tick() {
    if (AnswerOtherWindow() || inStep_ || steps_.empty()) {
        return;
    }
    watchdog_.WaitingFor(steps_.front().waitsFor.toStdString());
    if (!steps_.front().ready()) {
        return;
    }
    // A step can run an event loop of its own. The timer goes on meanwhile, which it would not from inside
    // here.
    inStep_ = true;
    QMetaObject::invokeMethod(this, &DialogDriver::RunStep, Qt::QueuedConnection);
}

void DialogDriver::RunStep() {
    const Step step = std::move(steps_.front());
    steps_.pop_front();
    watchdog_.WaitingFor("what follows " + step.waitsFor.toStdString());
    step.run();
    inStep_ = false;
}

bool DialogDriver::AnswerOtherWindow() {
    QWidget* window = QApplication::activeModalWidget();
    if (window == nullptr || window == FindAddFilesDialog() || !window->isVisible()) {
        answered_ = nullptr;
        return false;
    }
    if (window->objectName() == "work") {
        watchdog_.WaitingFor(TextOf(window).toStdString());
        return true;  // It closes by itself when the work is done.
    }
    if (window != answered_) {
        answered_ = window;
        Answer(window);
    }
    return true;
}

void DialogDriver::Answer(QWidget* window) {
    ++messages_;
    watchdog_.WaitingFor("the answer to: " + TextOf(window).toStdString());
    TakePicture(window, QString("message-%1").arg(messages_));
    QAbstractButton* button = AgreeingButton(window);
    out_ << "message: " << TextOf(window).toStdString() << " ["
         << (button == nullptr ? std::string("closed") : button->text().remove('&').toStdString()) << "]"
         << std::endl;
    if (button != nullptr) {
        button->click();
    } else {
        window->close();
    }
}

}  // namespace orvex
