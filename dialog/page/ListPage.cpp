#include "dialog/page/ListPage.h"

#include <QKeySequence>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>
#include <QTableView>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWhatsThis>
#include <algorithm>
#include <utility>

#include "dialog/DialogProgress.h"
#include "dialog/details/DetailsHtml.h"
#include "dialog/grid/GridView.h"
#include "dialog/page/ControlWidget.h"
#include "dialog/page/FilterLine.h"
#include "dialog/page/ListModel.h"
#include "dialog/page/ListStatus.h"
#include "dialog/page/OptionForm.h"
#include "dialog/page/OptionsPanel.h"
#include "dialog/page/RowFinder.h"
#include "dialog/page/RowMenu.h"
#include "settings/OptionStore.h"
#include "support/FilePickers.h"
#include "support/HandlerGuard.h"
#include "support/ProjectPath.h"

namespace orvex {
ListPage::ListPage(const PageContext& context, const ListPageDescription& description, QWidget* parent)
    : AddFilesPage(parent),
      services_(context.services),
      params_(*context.params),
      progress_(context.progress),
      description_(description),
      grid_(new GridView(services_.prompts)),
      details_(new DetailsPanel(context.images, description_.detailsTabs)),
      finder_(new RowFinder(*grid_, services_.prompts, context.images)),
      rowMenu_(new RowMenu(*grid_, *finder_, services_, progress_)),
      splitter_(new QSplitter(Qt::Vertical)),
      form_(new OptionForm(description_.options, services_.prompts)),
      optionsPanel_(new OptionsPanel(form_)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(8, 8, 8, 8);
    layout->setSpacing(6);
    grid_->SetIcons(context.images);
}

ListPage::~ListPage() {
    Detach();
}

void ListPage::Start(ListRows& rows) {
    rows_ = &rows;
    buttons_ = Buttons();
    MakeButtonRow();
    MakeGrid();
    layout()->addWidget(optionsPanel_);
    RunGuarded(services_.prompts, L"InitializeColumns", [this] { grid_->SetModel(rows_); });
    finder_->Start(rows, ToQString(Text(description_.emptyText)));
    rowMenu_->Start(rows, description_.kind);
    MakeForm();
    OnDetailColumns();
    for (const PageButton& button : buttons_) {
        OnClick(button.texts.id, button.handler, button.press);
    }
    AddShortcut(Qt::Key_F1, L"OnHelp", [this] { OnHelp(); });
    AddShortcut(QKeySequence::Find, L"OnFind", [this] { finder_->Line()->Edit(); });
    ConnectGrid();
    ConnectPane();
    RestorePane();
    RestoreColumns();
    ShowDetails();
    EnableItems();
}

// OK has the focus mostly; a page that is hidden hears nothing.
void ListPage::AddShortcut(const QKeySequence& key, const wchar_t* handler, std::function<void()> press) {
    auto* shortcut = new QShortcut(key, this);
    shortcut->setContext(Qt::WindowShortcut);
    connect(shortcut, &QShortcut::activated, this, Guarded(services_.prompts, handler, std::move(press)));
}

void ListPage::Detach() {
    if (rows_ == nullptr) {
        return;
    }
    SavePane();
    SaveColumns();
    progress_.disconnect(this);
    grid_->disconnect(this);
    details_->disconnect(this);
    splitter_->removeEventFilter(this);
    finder_->Detach();
    grid_->SetModel(nullptr);
    rows_ = nullptr;
}

std::vector<ListPage::PageButton> ListPage::Buttons() {
    const ListPageDescription& page = description_;
    return {
        {page.remove, ButtonImage::Remove, Usable::WithSelection, L"OnRemove", [this] { OnRemove(); }},
        {page.clear, ButtonImage::Clear, Usable::WithRows, L"OnClear", [this] { OnClear(); }},
        {page.detailColumns, ButtonImage::Details, Usable::WhenIdle, L"OnDetailColumns",
         [this] { OnDetailColumns(); }},
        {page.selectAll, ButtonImage::AllRows, Usable::WithRows, L"OnSelectAll",
         [this] { grid_->SelectAll(); }},
        {page.help, ButtonImage::Help, Usable::Always, L"OnContextHelp",
         [this] { description_.helpExplainsControls ? QWhatsThis::enterWhatsThisMode() : OnHelp(); }},
    };
}

void ListPage::MakeButtonRow() {
    std::erase_if(buttons_, [](const PageButton& button) { return button.texts.id == 0; });
    auto* row = new QWidget;
    auto* buttons = new QHBoxLayout(row);
    buttons->setContentsMargins(0, 0, 0, 0);
    if (description_.listCaption.value != 0) {
        auto* caption = MakeControl<QLabel>(description_.listCaptionId, description_.listCaption);
        caption->setBuddy(grid_->Table());  // a label gives the focus to none that refuses it itself
        buttons->addWidget(caption);
        buttons->addStretch();
    }
    for (const PageButton& button : buttons_) {
        const ListPageDescription::Button& texts = button.texts;
        if (texts.id == description_.detailColumns.id) {
            buttons->addWidget(MakeDetailColumnsButton());
        } else if (texts.opensMenu) {
            buttons->addWidget(MakeMenuButton(texts.id, texts.caption, texts.tooltip, button.image));
        } else if (texts.caption.value == 0) {
            buttons->addWidget(MakeIconButton(texts.id, texts.tooltip, button.image));
        } else {
            buttons->addWidget(MakeButton(texts.id, texts.caption, texts.tooltip, button.image));
        }
    }
    if (description_.listCaption.value == 0) {
        buttons->addStretch();
    }
    static_cast<QVBoxLayout*>(layout())->addWidget(row);
}

QPushButton* ListPage::MakeDetailColumnsButton() {
    const ListPageDescription::Button& texts = description_.detailColumns;
    detailColumns_ = MakeControl<QPushButton>(texts.id, {}, texts.tooltip);
    detailColumns_->setCheckable(true);
    detailColumns_->setAutoDefault(false);
    detailColumns_->setAccessibleName(detailColumns_->toolTip());
    detailColumns_->setFixedWidth(detailColumns_->fontMetrics().horizontalAdvance(QStringLiteral(">>")) + 24);
    return detailColumns_;
}

void ListPage::MakeForm() {
    RunGuarded(services_.prompts, L"ReadOptions", [this] {
        form_->Show(StoredOptions(services_.options, services_.hostObjects).Load(description_.options));
    });
    if (detailColumns_ != nullptr) {
        detailColumns_->setChecked(form_->Values().detailColumns);
    }
    connect(form_, &OptionForm::Changed, this,
            Guarded(services_.prompts, L"OnOptions",
                    [this](bool changesLayers) { changesLayers ? Update() : EnableItems(); }));
}

void ListPage::OnClick(int id, const wchar_t* handler, std::function<void()> press) {
    connect(findChild<QAbstractButton*>(ControlName(id)), &QAbstractButton::clicked, this,
            Guarded(services_.prompts, handler, std::move(press)));
}

void ListPage::ConnectFolder(const FolderField& folder) {
    OnClick(folder.browse, L"OnBrowseFolder", [this, folder] { OnBrowseFolder(folder); });
    OnClick(folder.insertToken, L"OnInsertProjectPath", [this, folder] { OnInsertProjectPath(folder); });
}

void ListPage::OnBrowseFolder(const FolderField& folder) {
    if (const std::optional<std::wstring> picked =
            services_.pickers.PickFolder(Text(folder.browseTitle), {})) {
        form_->TypeText(folder.field, WithTrailingSeparator(*picked));
    }
}

void ListPage::OnInsertProjectPath(const FolderField& folder) {
    try {
        form_->TypeText(folder.field, InsertProjectPathToken(Chosen().*folder.folder));
    } catch (...) {
        ShowMessage(Text(text::kProjectPathInsertFailed), text::kProjectPathErrorCaption, PromptIcon::Error);
    }
}

void ListPage::ConnectGrid() {
    UserPrompts& prompts = services_.prompts;
    const auto enable = Guarded(prompts, L"EnableItems", [this] { EnableItems(); });
    const auto details = Guarded(prompts, L"ShowDetails", [this] { ShowDetails(); });
    connect(&progress_, &DialogProgress::RunningChanged, this, enable);
    connect(grid_, &GridView::SelectionChanged, this, enable);
    connect(grid_, &GridView::SelectionChanged, this, details);
    connect(grid_, &GridView::RemoveRequested, this, Guarded(prompts, L"OnRemove", [this] { OnRemove(); }));
    connect(finder_, &RowFinder::RemoveRequested, this,
            Guarded(prompts, L"OnRemove", [this](const auto& records) { RemoveRecords(records); }));
    connect(grid_, &GridView::ActivateRequested, details_, &DetailsPanel::Open);
    connect(details_, &DetailsPanel::PaletteChanged, this, details);
}

void ListPage::ShowMessage(std::wstring text, StringId caption, PromptIcon icon) const {
    services_.prompts.Show({std::move(text), Text(caption), icon, PromptButtons::Ok});
}

void ListPage::Update() {
    RowsChanged();
    ShowDetails();
    EnableItems();
}

void ListPage::OnRemove() {
    grid_->RemoveSelection([this](const std::vector<std::size_t>& records) { RemoveRecords(records); });
}

void ListPage::RemoveRecords(std::vector<std::size_t> records) {
    if (progress_.IsRunning()) {
        return;
    }
    BeforeRemoval(records);
    rows_->Remove(std::move(records));
    grid_->ClearSelection();
    Update();
}

void ListPage::OnClear() {
    BeforeRemoval(rows_->RecordsInOrder());
    RemoveAll();
}

void ListPage::RemoveAll() {
    rows_->Clear();
    Cleared();
    Update();
}

void ListPage::Release() {
    RunGuarded(services_.prompts, L"Release", [this] { RemoveAll(); });
}

bool ListPage::HasRows() const {
    return rows_ != nullptr && rows_->Count() > 0;
}

void ListPage::OnDetailColumns() {
    const bool shown = detailColumns_ == nullptr || detailColumns_->isChecked();
    if (detailColumns_ != nullptr) {
        detailColumns_->setText(shown ? QStringLiteral("<<") : QStringLiteral(">>"));
        form_->SetDetailColumns(shown);
    }
    grid_->ShowDetailColumns(shown);
    FitColumns();
}

void ListPage::FitColumns() {
    grid_->FitColumns();
}

void ListPage::OnHelp() {
    if (!services_.help.Show(description_.helpTopic)) {
        ShowMessage(FormatText(Text(text::kHelpOpenFailed), {services_.help.ManualPath()}),
                    text::kAddFilesTitle, PromptIcon::Warning);
    }
}

std::vector<std::size_t> ListPage::SelectedRecords() const {
    std::vector<std::size_t> records;
    for (const int row : grid_->SelectedRows()) {
        records.push_back(rows_->RecordOfRow(row));
    }
    return records;
}

void ListPage::SelectRecords(std::span<const std::size_t> records) {
    finder_->Select(records);
}

ListStatus& ListPage::Status() const {
    return *finder_->Status();
}

void ListPage::ShowDetails() {
    const std::vector<std::size_t> records = SelectedRecords();
    details_->Show(records.empty() ? DetailsContent{{}, {TextHtml(Text(description_.nothingSelected))}}
                                   : Details(records));
}

bool ListPage::CanUse(Usable usable) const {
    const bool idle = !progress_.IsRunning();
    switch (usable) {
        case Usable::WhenIdle:
            return idle;
        case Usable::WithRows:
            return idle && rows_->Count() > 0;
        case Usable::WithSelection:
            return idle && !grid_->SelectedRows().empty();
        case Usable::Always:
            break;
    }
    return true;
}

void ListPage::EnableItems() {
    for (const PageButton& button : buttons_) {
        findChild<QWidget*>(ControlName(button.texts.id))->setEnabled(CanUse(button.usable));
    }
    form_->Enable(progress_.IsRunning());
}

const AddFilesParams& ListPage::Chosen() const {
    return form_->Values().record;
}

bool ListPage::ReadNumber(const OptionRow& row) {
    if (row.control != OptionControl::Number || form_->ReadNumber(row)) {
        return true;
    }
    ShowMessage(Text(text::kThinningRefused), text::kThinningCaption, PromptIcon::Warning);
    return false;
}

bool ListPage::ReadNumbers() {
    return std::ranges::all_of(description_.options.rows,
                               [this](const OptionRow& row) { return ReadNumber(row); });
}

bool ListPage::SaveOptions(const std::function<bool(const OptionRow& row)>& isSaved) {
    StoredOptions stored(services_.options, services_.hostObjects);
    for (const OptionRow& row : description_.options.rows) {
        if (!ReadNumber(row)) {
            return false;
        }
        if (!isSaved || isSaved(row)) {
            stored.Save(row, form_->Values());
        }
    }
    return true;
}

void ListPage::WriteOptions() const {
    orvex::WriteOptions(description_.options, form_->Values(), params_);
}

bool ListPage::ValidateAndStore() {
    bool stored = false;
    return RunGuarded(services_.prompts, L"ValidateAndStore", [&] { stored = Store(); }) && stored;
}

}  // namespace orvex
