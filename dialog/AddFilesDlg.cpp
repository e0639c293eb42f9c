#include "dialog/AddFilesDlg.h"

#include <QDragEnterEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QTabBar>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "dialog/CTabCtrlEx.h"
#include "dialog/CompanionWarning.h"
#include "dialog/DialogProgress.h"
#include "dialog/Images.h"
#include "dialog/RecordResults.h"
#include "dialog/RunInputFilter.h"
#include "dialog/WindowPlacement.h"
#include "settings/OptionStore.h"
#include "support/DesktopQt.h"
#include "support/Format.h"
#include "support/HandlerGuard.h"
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

}  // namespace

AddFilesDlg::AddFilesDlg(AddFilesParams& params, DialogServices& services,
                         std::span<const PageDescription> pages, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                          Qt::WindowMaximizeButtonHint | Qt::WindowCloseButtonHint),
      params_(params),
      before_(params),
      services_(services),
      images_(MakeImageList()) {
    setObjectName(QStringLiteral("AddFilesDlg"));
    BuildWindow();
    tabs_->Build(pages, PageContext{services_, &params_, *progress_, images_});
    tabs_->Select(0);
}

AddFilesDlg::~AddFilesDlg() {
    if (result() != Accepted) {
        RestoreRecord();  // its window went without an answer
    }
}

void AddFilesDlg::BuildWindow() {
    tabs_ = new CTabCtrlEx(services_.prompts);
    tabs_->setObjectName(QStringLiteral("tabs"));
    tabs_->tabBar()->setAccessibleName(ToQString(Text(text::kTabsAccessibleName)));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(tabs_, 1);
    layout->addLayout(BuildBottomRow());

    progress_ = new DialogProgress(bar_, this);
    inputFilter_ = new RunInputFilter(tabs_, this);
    connect(
        progress_, &DialogProgress::RunningChanged, this,
        Guarded(services_.prompts, L"OnRunningChanged", [this](bool running) { OnRunningChanged(running); }));
    connect(progress_, &DialogProgress::OutcomeChanged, this,
            Guarded(services_.prompts, L"OnOutcomeChanged", [this](const QString& text) {
                outcome_->setText(text);
                outcome_->setVisible(!text.isEmpty());
            }));
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

    outcome_ = new QLabel;
    outcome_->setObjectName(QStringLiteral("outcome"));
    outcome_->setTextFormat(Qt::PlainText);
    outcome_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    outcome_->hide();

    auto* row = new QHBoxLayout;
    row->addWidget(bar_, 1);
    row->addWidget(outcome_, 1);
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
    FitOntoScreen(*this);
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
        ReleasePages();
        return false;
    }
    if (exec() != QDialog::Accepted) {
        ReleasePages();
        return false;
    }
    return hasResults_;
}

void AddFilesDlg::ReleasePages() {
    RestoreRecord();
    for (AddFilesPage* page : tabs_->Pages()) {
        RunGuarded(services_.prompts, L"Release", [page] { page->Release(); });
    }
}

void AddFilesDlg::RestoreRecord() noexcept {
    RunGuarded(services_.prompts, L"RestoreRecord", [this] { params_ = before_; });
}

// Pages see no earlier results, so that what they write is this dialog's.
bool AddFilesDlg::StorePages() {
    params_ = before_;
    ClearResults(params_);
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
        hasResults_ = HasResults(params_);
        AddEarlierResults(before_, params_);
    });
    // The host may have destroyed the owner, and the dialog with it, while a question was open.
    if (close && isVisible()) {
        for (AddFilesPage* page : tabs_->Pages()) {
            page->HandOver();
        }
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
    RunGuarded(services_.prompts, L"OnDestroy", [this] {
        // None shown would be none again where the host gives it back.
        const auto tab = static_cast<std::int32_t>(std::max(tabs_->ShownIndex(), 0));
        services_.options.Put(opt2AddFilesCurTabIndex, tab);
        SaveWindowPlacement(*this, services_.options, kPlacementName);
    });
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

/// The page that is shown, when it takes the file or folder, else the first that does; null for none.
AddFilesPage* AddFilesDlg::PageFor(const std::wstring& path) const {
    std::vector<AddFilesPage*> pages = tabs_->Pages();
    if (AddFilesPage* current = tabs_->CurrentPage()) {
        pages.insert(pages.begin(), current);
    }
    const auto found =
        std::ranges::find_if(pages, [&](const AddFilesPage* page) { return page->Accepts(path); });
    return found == pages.end() ? nullptr : *found;
}

void AddFilesDlg::AddPathsTo(AddFilesPage& page, const std::vector<std::wstring>& paths) {
    tabs_->Select(tabs_->TabOfPage(&page));
    page.AddPaths(paths);
}

void AddFilesDlg::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!std::exchange(hasAddedInitialPaths_, true) && !params_.initialPaths.empty()) {
        QMetaObject::invokeMethod(this, &AddFilesDlg::AddInitialPaths, Qt::QueuedConnection);
    }
}

void AddFilesDlg::hideEvent(QHideEvent* event) {
    QDialog::hideEvent(event);
    progress_->Stop();
}

void AddFilesDlg::AddInitialPaths() {
    RunGuarded(services_.prompts, L"AddInitialPaths", [this] {
        std::vector<std::pair<AddFilesPage*, std::vector<std::wstring>>> shares;  // in the order of the paths
        for (const std::wstring& path : before_.initialPaths) {
            AddFilesPage* page = PageFor(path);
            const auto share = std::ranges::find(shares, page, [](const auto& entry) { return entry.first; });
            if (page != nullptr && share == shares.end()) {
                shares.push_back({page, {path}});
            } else if (page != nullptr) {
                share->second.push_back(path);
            }
        }
        for (const auto& [page, paths] : shares) {
            AddPathsTo(*page, paths);
            if (progress_->WasStoppedJustNow()) {
                break;  // Escape is meant for all of them
            }
        }
        if (!shares.empty()) {
            tabs_->Select(tabs_->TabOfPage(shares.front().first));
        }
    });
}

void AddFilesDlg::dragEnterEvent(QDragEnterEvent* event) {
    RunGuarded(services_.prompts, L"OnDragEnter", [&] {
        const std::vector<std::wstring> paths = LocalPaths(*event->mimeData());
        if (std::ranges::any_of(paths, [this](const auto& path) { return PageFor(path) != nullptr; })) {
            event->acceptProposedAction();
        }
    });
}

// The page that is shown takes all if it takes any; else the first page that knows one of the files does.
void AddFilesDlg::dropEvent(QDropEvent* event) {
    if (progress_->IsRunning()) {
        return;
    }
    RunGuarded(services_.prompts, L"OnDropFiles", [&] {
        const std::vector<std::wstring> paths = LocalPaths(*event->mimeData());
        AddFilesPage* page = nullptr;
        for (const std::wstring& path : paths) {
            AddFilesPage* taker = PageFor(path);
            const bool isFirst = page == nullptr || (taker != nullptr && taker == tabs_->CurrentPage());
            page = isFirst ? taker : page;
        }
        if (page != nullptr) {
            event->acceptProposedAction();
            AddDropped(*page, paths);
        }
    });
}

// The program that files are dragged from waits until the event has been handled.
void AddFilesDlg::AddDropped(AddFilesPage& page, std::vector<std::wstring> paths) {
    QMetaObject::invokeMethod(
        this,
        [this, &page, paths = std::move(paths)] {
            RunGuarded(services_.prompts, L"OnDropFiles", [&] { AddPathsTo(page, paths); });
        },
        Qt::QueuedConnection);
}

}  // namespace orvex
