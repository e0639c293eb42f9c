#include "dialog/AddFilesDlg.h"

#include <QDragEnterEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QTabBar>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>
#include <algorithm>

#include "dialog/CTabCtrlEx.h"
#include "dialog/CompanionWarning.h"
#include "dialog/DialogProgress.h"
#include "dialog/HandlerGuard.h"
#include "dialog/Images.h"
#include "dialog/RunInputFilter.h"
#include "dialog/WindowPlacement.h"
#include "settings/OptionStore.h"
#include "support/DesktopQt.h"
#include "support/Format.h"
#include "support/HostObjects.h"
#include "support/QtText.h"
#include "support/UserPrompts.h"

namespace orvex {
namespace {

constexpr QSize kMinimumSize{800, 400};
constexpr QSize kDefaultSize{1024, 768};
constexpr const wchar_t* kPlacementName = L"AddFilesDlgA";

std::vector<std::wstring> LocalPaths(const QMimeData& data) {
    std::vector<std::wstring> paths;
    for (const QUrl& url : data.urls()) {
        if (url.isLocalFile()) {
            paths.push_back(ToWidePath(url.toLocalFile()));
        }
    }
    return paths;
}

bool AcceptsAny(const AddFilesPage& page, const std::vector<std::wstring>& paths) {
    return std::any_of(paths.begin(), paths.end(),
                       [&](const std::wstring& path) { return page.Accepts(path); });
}

}  // namespace

AddFilesDlg::AddFilesDlg(AddFilesParams& params, DialogServices& services,
                         std::span<const PageDescription> pages, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                          Qt::WindowMaximizeButtonHint | Qt::WindowCloseButtonHint),
      params_(params),
      services_(services),
      images_(MakeImageList()) {
    setObjectName(QStringLiteral("AddFilesDlg"));
    BuildWindow();
    tabs_->Build(pages, PageContext{services_, &params_, *progress_, images_});
    tabs_->Select(0);
}

AddFilesDlg::~AddFilesDlg() = default;

void AddFilesDlg::BuildWindow() {
    tabs_ = new CTabCtrlEx;
    tabs_->setObjectName(QStringLiteral("tabs"));
    tabs_->tabBar()->setAccessibleName(ToQString(Text(text::kTabsAccessibleName)));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(tabs_, 1);
    layout->addLayout(BuildBottomRow());

    progress_ = new DialogProgress(bar_, this);
    inputFilter_ = new RunInputFilter(tabs_, this);
    connect(progress_, &DialogProgress::RunningChanged, this, &AddFilesDlg::OnRunningChanged);
    connect(stop_, &QToolButton::clicked, progress_, &DialogProgress::Stop);
    connect(ok_, &QPushButton::clicked, this, &AddFilesDlg::accept);
    connect(cancel_, &QPushButton::clicked, this, &AddFilesDlg::reject);
    setAcceptDrops(true);
}

QHBoxLayout* AddFilesDlg::BuildBottomRow() {
    bar_ = new QProgressBar;
    bar_->setObjectName(QStringLiteral("progress"));
    bar_->setAccessibleName(ToQString(Text(text::kProgressAccessibleName)));
    stop_ = new QToolButton;
    stop_->setObjectName(QStringLiteral("stop"));
    stop_->setIcon(ButtonIcon(ButtonImage::Stop));
    stop_->setAutoRaise(true);
    stop_->setToolTip(ToQString(Text(text::kStopTooltip)));
    stop_->setAccessibleName(stop_->toolTip());
    stop_->hide();
    ok_ = new QPushButton;
    ok_->setObjectName(QStringLiteral("ok"));
    ok_->setDefault(true);
    cancel_ = new QPushButton;
    cancel_->setObjectName(QStringLiteral("cancel"));

    auto* row = new QHBoxLayout;
    row->addWidget(bar_, 1);
    row->addWidget(stop_);
    row->addStretch(0);
    row->addWidget(ok_);
    row->addWidget(cancel_);
    return row;
}

std::int32_t AddFilesDlg::Initialise() {
    setWindowTitle(ToQString(Text(text::kAddFilesTitle)));
    setMinimumSize(kMinimumSize);
    ok_->setText(ToQString(Text(text::kOk)));
    cancel_->setText(ToQString(Text(text::kCancel)));
    if (const std::int32_t result = AskHostApplication(); result < 0) {
        return result;
    }
    setWindowIcon(ApplicationIcon());
    resize(kDefaultSize);
    tabs_->Select(params_.initialTab);
    // Ctrl held while the dialog opens brings back its first size and place.
    if (!IsControlKeyHeld()) {
        RestoreWindowPlacement(*this, services_.options, kPlacementName);
    }
    return kHostOk;
}

// The pages depend on the application object; without it the dialog would fail later and less clearly.
std::int32_t AddFilesDlg::AskHostApplication() {
    std::int32_t result = kHostOk;
    const std::unique_ptr<OrvexApplication> application = services_.hostObjects.CreateApplication(result);
    if (!application) {
        return result < 0 ? result : kHostFail;
    }
    std::wstring folder;
    return application->GetProjectFolder(folder);
}

bool AddFilesDlg::Run() {
    if (const std::int32_t result = Initialise(); result < 0) {
        services_.prompts.Show(
            {FormatText(Text(text::kHostObjectMissing), {static_cast<std::uint32_t>(result)}),
             Text(text::kAddFilesTitle), PromptIcon::Error, PromptButtons::Ok});
        return false;
    }
    return exec() == QDialog::Accepted;
}

void AddFilesDlg::ReleasePages() {
    for (AddFilesPage* page : tabs_->Pages()) {
        RunGuarded(services_.prompts, L"Release", [page] { page->Release(); });
    }
}

bool AddFilesDlg::StorePages() {
    const std::vector<AddFilesPage*> pages = tabs_->Pages();
    return std::all_of(pages.begin(), pages.end(),
                       [](AddFilesPage* page) { return page->ValidateAndStore(); });
}

void AddFilesDlg::accept() {
    if (progress_->IsRunning()) {
        return;
    }
    bool close = false;
    RunGuarded(services_.prompts, L"OnOK", [&] {
        if (!StorePages()) {
            return;
        }
        const std::vector<AddFilesPage*> pages = tabs_->Pages();
        const bool companions = std::any_of(
            pages.begin(), pages.end(), [](const AddFilesPage* page) { return page->NeedsCompanionFiles(); });
        close = ConfirmCompanionOverwrite(params_, companions, services_.options, services_.prompts);
    });
    if (close) {
        QDialog::accept();
    }
}

void AddFilesDlg::reject() {
    if (progress_->IsRunning()) {
        progress_->Stop();
        return;
    }
    // A second press that was meant for the run would throw away everything collected.
    if (progress_->WasStoppedJustNow()) {
        return;
    }
    ReleasePages();
    QDialog::reject();
}

void AddFilesDlg::done(int result) {
    const auto tab = static_cast<std::int32_t>(tabs_->ShownIndex());
    services_.options.Put(opt2AddFilesCurTabIndex, tab);
    SaveWindowPlacement(*this, services_.options, kPlacementName);
    QDialog::done(result);
}

void AddFilesDlg::OnRunningChanged(bool running) {
    if (running) {
        focusBeforeRun_ = focusWidget();
    }
    ok_->setEnabled(!running);
    stop_->setVisible(running);
    setAcceptDrops(!running);
    inputFilter_->SetActive(running);
    if (!running) {
        // The run took the focus from whatever it disabled, mostly to Cancel, where Enter would throw all
        // away. The page enables its controls when it hears of the end, which may be after this.
        QMetaObject::invokeMethod(this, &AddFilesDlg::RestoreFocus, Qt::QueuedConnection);
    }
}

void AddFilesDlg::RestoreFocus() {
    if (focusBeforeRun_ && focusBeforeRun_->isEnabled() && focusBeforeRun_->isVisible()) {
        focusBeforeRun_->setFocus();
    } else if (cancel_->hasFocus()) {
        ok_->setFocus();
    }
}

// A key held down must not stop a run and then close the dialog.
void AddFilesDlg::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && event->isAutoRepeat()) {
        event->accept();
        return;
    }
    // The tab control takes Ctrl+Tab only while the focus is inside; here it is on a button below.
    const bool isTab = event->key() == Qt::Key_Tab || event->key() == Qt::Key_Backtab;
    if (isTab && event->modifiers().testFlag(Qt::ControlModifier) && !progress_->IsRunning()) {
        const int count = std::max(tabs_->count(), 1);
        tabs_->setCurrentIndex((tabs_->currentIndex() + (event->key() == Qt::Key_Tab ? 1 : count - 1)) %
                               count);
        return;
    }
    QDialog::keyPressEvent(event);
}

AddFilesPage* AddFilesDlg::PageFor(const std::vector<std::wstring>& paths) const {
    AddFilesPage* current = tabs_->CurrentPage();
    if (current != nullptr && AcceptsAny(*current, paths)) {
        return current;
    }
    const std::vector<AddFilesPage*> pages = tabs_->Pages();
    const auto found = std::find_if(pages.begin(), pages.end(),
                                    [&](const AddFilesPage* page) { return AcceptsAny(*page, paths); });
    return found == pages.end() ? nullptr : *found;
}

void AddFilesDlg::dragEnterEvent(QDragEnterEvent* event) {
    RunGuarded(services_.prompts, L"OnDragEnter", [&] {
        if (PageFor(LocalPaths(*event->mimeData())) != nullptr) {
            event->acceptProposedAction();
        }
    });
}

// Files go to the page that is shown, or to the first that knows them, which is shown then. A host that opens
// the dialog with files delivers them the same way, once the dialog is the active modal widget: a
// QDragEnterEvent and then a QDropEvent with the files' URLs, each sent with QApplication::sendEvent (Qt
// drops only where a drag has entered). The files are in the grid when the second call returns.
void AddFilesDlg::dropEvent(QDropEvent* event) {
    if (progress_->IsRunning()) {
        return;
    }
    RunGuarded(services_.prompts, L"OnDropFiles", [&] {
        const std::vector<std::wstring> paths = LocalPaths(*event->mimeData());
        AddFilesPage* page = PageFor(paths);
        if (page == nullptr) {
            return;
        }
        event->acceptProposedAction();
        tabs_->Select(tabs_->TabOfPage(page));
        page->AddPaths(paths);
    });
}

}  // namespace orvex
