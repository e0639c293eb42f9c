#include "dialog/AddFilesDlg.h"

#include <QDragEnterEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QShortcut>
#include <QTabBar>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>
#include <optional>
#include <set>
#include <utility>

#include "dialog/CTabCtrlEx.h"
#include "dialog/CompanionWarning.h"
#include "dialog/DialogProgress.h"
#include "dialog/FileDistribution.h"
#include "dialog/Images.h"
#include "dialog/RecordResults.h"
#include "dialog/RunInputFilter.h"
#include "dialog/WindowPlacement.h"
#include "dialog/page/Mnemonics.h"
#include "settings/OptionStore.h"
#include "support/DesktopQt.h"
#include "support/Format.h"
#include "support/HandlerGuard.h"
#include "support/HostObjects.h"
#include "support/LDataError.h"
#include "support/QtText.h"
#include "support/UserPrompts.h"

namespace orvex {
namespace {

constexpr QSize kMinimumSize{800, 400};
constexpr QSize kDefaultSize{1024, 768};
constexpr const wchar_t* kPlacementName = L"AddFilesDlgA";

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
    files_ = std::make_unique<FileDistribution>(*tabs_, *progress_, services_.prompts);
    tabs_->Build(pages, PageContext{services_, &params_, *progress_, images_, files_.get()});
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
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        // A shortcut, because a button that has the focus would take the key for a click.
        auto* shortcut = new QShortcut(QKeySequence(Qt::CTRL | key), this);
        connect(shortcut, &QShortcut::activated, this, &AddFilesDlg::accept);
    }
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
    AssignAllMnemonics();
    ArrangeTabOrder();
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

void AddFilesDlg::AssignAllMnemonics() {
    std::set<QChar> used;
    for (QPushButton* button : {ok_, cancel_}) {
        button->setText(WithMnemonic(WithoutMnemonic(button->text()), used));
    }
    tabs_->AssignMnemonicsBeside(std::move(used));
}

/// Tabs come before what they show. In the order of creation they would come last.
void AddFilesDlg::ArrangeTabOrder() {
    setTabOrder(cancel_, tabs_->tabBar());
}

// The pages depend on the application object; without it the dialog would fail later and less clearly.
std::int32_t AddFilesDlg::AskHostApplication() {
    std::int32_t result = kHostOk;
    const std::unique_ptr<OrvexApplication> application = services_.hostObjects.CreateApplication(result);
    if (!application) {
        hostFault_ = MissingObjectText("OrvexApplication", kApplicationClass, result);
        return result < 0 ? result : kHostFail;
    }
    std::wstring folder;
    result = application->GetProjectFolder(folder);
    hostFault_ = L"OrvexApplication::GetProjectFolder has failed.";
    return result;
}

bool AddFilesDlg::Run() {
    if (const std::int32_t result = Initialise(); result < 0) {
        const std::wstring failure =
            FormatText(Text(text::kHostObjectMissing), {static_cast<std::uint32_t>(result)}) + L"\n\n" +
            hostFault_;
        services_.prompts.Show({failure, Text(text::kAddFilesTitle), PromptIcon::Error, PromptButtons::Ok});
        ReleasePages();
        throw LDataError(failure);
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
        if (!MayAdd() || !StorePages()) {
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

/// Asks when something is odd, before pages change anything.
bool AddFilesDlg::MayAdd() {
    std::vector<PageReview> reviews;
    for (AddFilesPage* page : tabs_->Pages()) {
        reviews.push_back({tabs_->CaptionOf(page), page->Review()});
    }
    const std::optional<ReportPrompt> prompt = ReviewPrompt(reviews);
    if (!prompt || services_.prompts.ShowReport(*prompt) == PromptAnswer::Yes) {
        return true;
    }
    SelectOddRows(reviews);
    return false;
}

/// On all pages; the first of them is shown, unless the one that is has some too.
void AddFilesDlg::SelectOddRows(const std::vector<PageReview>& reviews) {
    const std::vector<AddFilesPage*> pages = tabs_->Pages();
    AddFilesPage* shown = nullptr;
    for (std::size_t i = 0; i < pages.size(); ++i) {
        if (const std::set<std::size_t> odd = OddRecords(reviews[i].review); !odd.empty()) {
            pages[i]->SelectRecords(std::vector(odd.begin(), odd.end()));
            shown = shown == nullptr || pages[i] == tabs_->CurrentPage() ? pages[i] : shown;
        }
    }
    if (shown != nullptr) {
        tabs_->Select(tabs_->TabOfPage(shown));
    }
}

void AddFilesDlg::closeEvent(QCloseEvent* event) {
    bool close = false;
    RunGuarded(services_.prompts, L"OnClose", [&] { close = progress_->IsRunning() || MayDiscard(); });
    if (close) {
        QDialog::closeEvent(event);
    } else {
        event->ignore();
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

/// True as well when the window has gone while the question was open.
bool AddFilesDlg::MayDiscard() {
    const std::vector<AddFilesPage*> pages = tabs_->Pages();
    if (progress_->WasStoppedJustNow() ||
        std::ranges::none_of(pages, [](const AddFilesPage* page) { return page->HasRows(); })) {
        return true;
    }
    Prompt prompt{Text(text::kDiscardQuestion), Text(text::kAddFilesTitle), PromptIcon::Warning,
                  PromptButtons::YesNo};
    prompt.yesText = Text(text::kDiscard);
    prompt.noText = Text(text::kKeep);
    return services_.prompts.Show(prompt) == PromptAnswer::Yes;
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

// A key held down must not stop a run and then close the dialog, nor one that comes as the run ends.
void AddFilesDlg::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        if (!event->isAutoRepeat() && !progress_->EndedJustNow()) {
            close();
        }
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
    RunGuarded(services_.prompts, L"AddInitialPaths", [this] { files_->AddEach(before_.initialPaths); });
}

void AddFilesDlg::dragEnterEvent(QDragEnterEvent* event) {
    RunGuarded(services_.prompts, L"OnDragEnter", [&] {
        const std::vector<std::wstring> paths = LocalPaths(*event->mimeData());
        if (files_->PageForAny(paths) != nullptr) {
            event->acceptProposedAction();
        }
    });
}

// One page takes all, and offers the others what it does not list.
void AddFilesDlg::dropEvent(QDropEvent* event) {
    if (progress_->IsRunning()) {
        return;
    }
    RunGuarded(services_.prompts, L"OnDropFiles", [&] {
        const std::vector<std::wstring> paths = LocalPaths(*event->mimeData());
        if (AddFilesPage* page = files_->PageForAny(paths)) {
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
            RunGuarded(services_.prompts, L"OnDropFiles", [&] { files_->AddTo(page, paths); });
        },
        Qt::QueuedConnection);
}

}  // namespace orvex
