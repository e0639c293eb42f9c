#include "host/app/DialogDriver.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QDropEvent>
#include <QEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QPixmap>
#include <QPlainTextEdit>
#include <QTabBar>
#include <QTableView>
#include <QUrl>
#include <cstdlib>
#include <iostream>

#include "support/QtText.h"
#include "support/Text.h"

namespace orvex {

namespace {

constexpr int kTickMs = 15;
/// Ticks without a progress bar until a run counts as over: between two parts of one it may be hidden
/// briefly.
constexpr int kQuietTicks = 4;

/// Places in the add menu of the cloud page.
constexpr int kBrowseCommand = 0;
constexpr int kUrlCommand = 1;

struct TabName {
    const char* page;
    const char* name;
};
constexpr TabName kTabNames[] = {{"page363", "las"}, {"page385", "raster"}, {"page390", "feature"},
                                 {"page403", "dem"}, {"page406", "photo"},  {"page410", "cloud"}};

QString TextOf(QWidget* window) {
    const auto* box = qobject_cast<QMessageBox*>(window);
    QString text = box == nullptr ? QString() : box->text() + ' ' + box->informativeText();
    if (const auto* lists = window->findChild<QPlainTextEdit*>("reportText")) {
        text = lists->toPlainText();
    }
    return ToQString(WithoutControls(ToWide((window->windowTitle() + ": " + text).simplified())));
}

/// The grid of the tab that is shown; null while it has no rows.
QTableView* GridOf(QWidget* dialog) {
    for (auto* table : dialog->findChildren<QTableView*>()) {
        if (table->isVisible() && table->model() != nullptr && table->model()->rowCount() > 0) {
            return table;
        }
    }
    return nullptr;
}

/// The grid of layers in the cloud layer browser; null while there is none.
QTableView* LayerGridOf(const QWidget& browser) {
    auto* grid = browser.findChild<QWidget*>("layersGrid");
    return grid == nullptr ? nullptr : GridOf(grid);
}

/// The first button whose role agrees. Roles, because a program may have given its buttons texts of its own.
template <typename Box>
QAbstractButton* ButtonByRole(const Box& box) {
    for (const auto role : {Box::YesRole, Box::AcceptRole}) {
        for (QAbstractButton* button : box.buttons()) {
            if (box.buttonRole(button) == role) {
                return button;
            }
        }
    }
    return nullptr;
}

}  // namespace

QWidget* FindAddFilesDialog() {
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->isVisible() && widget->objectName() == "AddFilesDlg") {
            return widget;
        }
    }
    return nullptr;
}

QAbstractButton* AgreeingButton(QWidget* window) {
    if (const auto* box = qobject_cast<QMessageBox*>(window)) {
        return ButtonByRole(*box);
    }
    if (const auto* box = window->findChild<QDialogButtonBox*>()) {
        return ButtonByRole(*box);
    }
    auto* ok = window->findChild<QAbstractButton*>("ok");
    return ok == nullptr ? window->findChild<QAbstractButton*>("c358") : ok;
}

Watchdog::Watchdog(std::chrono::seconds patience)
    : end_(std::chrono::steady_clock::now() + patience),
      what_("the program to start"),
      thread_([this] { Watch(); }) {}

Watchdog::~Watchdog() {
    {
        const std::lock_guard guard(lock_);
        done_ = true;
    }
    ended_.notify_all();
}

void Watchdog::WaitingFor(const std::string& what) {
    const std::lock_guard guard(lock_);
    what_ = what;
}

void Watchdog::Watch() {
    std::unique_lock guard(lock_);
    if (ended_.wait_until(guard, end_, [this] { return done_; })) {
        return;
    }
    std::cerr << "orvex-host: gave up; it was waiting for " << what_ << std::endl;
    std::_Exit(kWatchdogExit);
}

DialogDriver::DialogDriver(Settings settings, std::ostream& out, Watchdog& watchdog)
    : settings_(std::move(settings)), out_(out), watchdog_(watchdog) {
    timer_.setInterval(kTickMs);
    connect(&timer_, &QTimer::timeout, this, &DialogDriver::Tick);
}

void DialogDriver::Start() {
    if (!settings_.pictureFolder.isEmpty()) {
        QDir().mkpath(settings_.pictureFolder);
    }
    Add(
        "the Add Files dialog to open", [this] { return (dialog_ = FindAddFilesDialog()) != nullptr; },
        [this] { AddDialogSteps(); });
    qApp->installEventFilter(this);
    timer_.start();
}

/// Takes a picture of the empty dialog. It queues the adding of the record's files while it is shown; what is
/// queued here, just before that, comes first.
bool DialogDriver::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::Show && object->objectName() == "AddFilesDlg") {
        qApp->removeEventFilter(this);
        auto* dialog = qobject_cast<QWidget*>(object);
        QMetaObject::invokeMethod(
            dialog, [this, dialog] { TakePicture(dialog, "dialog-empty"); }, Qt::QueuedConnection);
    }
    return false;
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

void DialogDriver::TakeTabPicture(const QString& suffix) {
    TakePicture(dialog_, "tab-" + CurrentTabName() + suffix);
}

void DialogDriver::Add(const QString& waitsFor, std::function<bool()> isReady, std::function<void()> run) {
    steps_.push_back({waitsFor, std::move(isReady), std::move(run)});
}

void DialogDriver::AddWhenIdle(const QString& waitsFor, std::function<void()> run) {
    Add(
        waitsFor, [this] { return IsIdle(); }, std::move(run));
}

void DialogDriver::AddDialogSteps() {
    for (int tab = 0; tab < dialog_->findChild<QTabBar*>()->count(); ++tab) {
        AddTabSteps(tab);
    }
    AddWhenIdle("the OK button", [this] {
        if (auto* ok = dialog_->findChild<QAbstractButton*>("ok")) {
            ok->click();
        }
    });
    Add(
        "the dialog to close", [] { return FindAddFilesDialog() == nullptr; }, [this] { dialog_ = nullptr; });
}

void DialogDriver::AddTabSteps(int tab) {
    AddWhenIdle("the tab " + QString::number(tab), [this, tab] {
        dialog_->findChild<QTabBar*>()->setCurrentIndex(tab);
        DropPhotos();
        ChooseCompanions();
    });
    AddWhenIdle("the cloud layer browser", [this] { OpenAddMenu(kBrowseCommand); });
    AddWhenIdle("the pre-signed URL dialog", [this] { OpenAddMenu(kUrlCommand); });
    AddWhenIdle("the look into cloud layers", [this] { ClickOnCloudPage("c43550"); });
    AddWhenIdle("the files of the tab", [this] {
        TakeTabPicture();
        if (GridOf(dialog_) != nullptr) {
            tabsWithFiles_.insert(CurrentTabName());
        }
        ToggleDetailColumns();
    });
    AddWhenIdle("the detail columns", [this] {
        TakeTabPicture("-columns");
        ToggleDetailColumns();
        if (QTableView* grid = GridOf(dialog_)) {
            grid->selectRow(grid->model()->rowCount() / 2);
        }
    });
    AddWhenIdle("the details of a file", [this] { TakeTabPicture("-details"); });
}

void DialogDriver::DropPhotos() {
    auto* const page = dialog_->findChild<QWidget*>("page406");
    if (page == nullptr || !page->isVisible() || settings_.photos.isEmpty()) {
        return;
    }
    QList<QUrl> urls;
    for (const QString& path : settings_.photos) {
        urls.append(QUrl::fromLocalFile(path));
    }
    QMimeData data;
    data.setUrls(urls);
    // Without the first of the two events nobody is known to take the second.
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(page, &enter);
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(page, &drop);
}

/// Has QVR companions built for LAS files.
void DialogDriver::ChooseCompanions() {
    auto* const button = dialog_->findChild<QAbstractButton*>("c269");
    if (button != nullptr && button->isVisible() && button->isEnabled()) {
        button->click();
    }
}

/// Runs a command of the cloud page's add menu. The menu, and the dialog that the command opens, are answered
/// as other windows are.
void DialogDriver::OpenAddMenu(int command) {
    menuCommand_ = command;
    ClickOnCloudPage("c351");
}

/// Only if the page is shown and there is an account to pick layers from.
void DialogDriver::ClickOnCloudPage(const char* button) {
    auto* const page = dialog_->findChild<QWidget*>("page410");
    if (page != nullptr && page->isVisible() && !settings_.cloudUrl.isEmpty()) {
        page->findChild<QAbstractButton*>(button)->click();
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

/// True when no run has lasted for some ticks: the dialog disables its OK button during one.
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
    if (!steps_.front().isReady()) {
        return;
    }
    // A step can run an event loop of its own; the timer must go on meanwhile.
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

/// Chooses the command of the open menu as a key does, which also closes it; through the event queue, because
/// the timer that calls this stands still until it returns.
bool DialogDriver::AnswerMenu() {
    auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    if (menu == nullptr || menu->actions().size() <= menuCommand_ || menu == answered_) {
        return menu != nullptr;
    }
    answered_ = menu;
    watchdog_.WaitingFor("the menu to close");
    TakePicture(menu, "cloud-menu");
    menu->setActiveAction(menu->actions().at(menuCommand_));
    for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QCoreApplication::postEvent(menu, new QKeyEvent(type, Qt::Key_Return, Qt::NoModifier));
    }
    return true;
}

/// True when the browser no longer reads its lists: to their ends, or because reading has failed.
bool DialogDriver::HasRead(QWidget* browser) {
    if (browser != reading_) {
        // It has queued the beginning of its reading while it was shown.
        QMetaObject::invokeMethod(
            this, [this, browser] { reading_ = browser; }, Qt::QueuedConnection);
        return false;
    }
    const auto isRead = [browser](const char* busy) {
        return !browser->findChild<QWidget*>(busy)->isVisible();
    };
    return isRead("projectsBusy") && isRead("layersBusy");
}

/// Selects every layer of the browser's first project. The button to choose then.
QAbstractButton* DialogDriver::PickLayers(QWidget* browser) {
    if (QTableView* layers = LayerGridOf(*browser)) {
        layers->selectAll();
    }
    QAbstractButton* ok = AgreeingButton(browser);
    if (ok->isEnabled()) {
        return ok;
    }
    out_ << "the cloud layer browser has no layers to pick" << std::endl;
    return browser->findChild<QAbstractButton*>("cancel");
}

/// Picks layers in the browser; enters the URL in the pre-signed URL dialog. False for any other window.
bool DialogDriver::UseCloudDialog(QWidget* window) {
    const bool isBrowser = window->inherits("orvex::BrowseCloudLayersDlg");
    if (!isBrowser && !window->inherits("orvex::AddCloudLASFileDlg")) {
        return false;
    }
    if (window == answered_) {
        return true;
    }
    watchdog_.WaitingFor(isBrowser ? "the layers of the account" : "the pre-signed URL dialog");
    if (isBrowser && !HasRead(window)) {
        return true;
    }
    answered_ = window;
    if (auto* url = window->findChild<QLineEdit*>("url")) {
        url->setText(settings_.cloudUrl);
    }
    QAbstractButton* button = isBrowser ? PickLayers(window) : AgreeingButton(window);
    TakePicture(window, isBrowser ? "cloud-browser" : "cloud-url");
    // From the event queue; see AnswerMenu.
    QMetaObject::invokeMethod(button, &QAbstractButton::click, Qt::QueuedConnection);
    return true;
}

bool DialogDriver::AnswerOtherWindow() {
    if (AnswerMenu()) {
        return true;
    }
    QWidget* window = QApplication::activeModalWidget();
    if (window == nullptr || window == FindAddFilesDialog() || !window->isVisible()) {
        answered_ = nullptr;
        reading_ = nullptr;
        return false;
    }
    if (window->objectName() == "work") {
        watchdog_.WaitingFor(TextOf(window).toStdString());
        return true;  // It closes by itself when the work is done.
    }
    if (!UseCloudDialog(window) && window != answered_) {
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
