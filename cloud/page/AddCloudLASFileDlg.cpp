#include "cloud/page/AddCloudLASFileDlg.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

#include "cloud/CloudRow.h"
#include "dialog/Images.h"
#include "dialog/WindowPlacement.h"
#include "dialog/page/ControlWidget.h"
#include "dialog/page/Mnemonics.h"
#include "support/Format.h"
#include "support/HandlerGuard.h"
#include "support/UserPrompts.h"

namespace orvex {
namespace {

constexpr int kOk = 358;
constexpr int kCancel = 359;
constexpr int kHelp = 360;
constexpr int kLeastWidth = 1200;
constexpr int kLongestUrl = 1 << 20;  // a field's own limit would cut long signatures without a word
constexpr const wchar_t* kPlacementName = L"Add_Cloud_LAS_File_Dlg";
constexpr const wchar_t* kExampleUrl = L"https://example.com/lidar/example.laz";

QPushButton* MakeDialogButton(int id, StringId text) {
    auto* button = new QPushButton(ToQString(Text(text)));
    button->setObjectName(ControlName(id));
    button->setAutoDefault(false);
    return button;
}

QLabel* MakeText(StringId text) {
    auto* label = new QLabel(ToQString(Text(text)));
    label->setWordWrap(true);
    label->setTextFormat(Qt::PlainText);
    return label;
}

}  // namespace

AddCloudLASFileDlg::AddCloudLASFileDlg(DialogServices& services, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                          Qt::WindowMaximizeButtonHint | Qt::WindowCloseButtonHint),
      services_(services),
      field_(new QLineEdit),
      notes_(new QLabel) {
    setObjectName(QStringLiteral("AddCloudLASFileDlg"));
    setWindowTitle(ToQString(Text(text::kPresignedUrlTitle)));
    setWindowIcon(MakeImageList()[kImageCloud]);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(BuildGroup(), 1);
    layout->addLayout(BuildButtons());
    AssignMnemonics(*this);
    auto* help = new QShortcut(Qt::Key_F1, this);
    connect(help, &QShortcut::activated, this, Guarded(services_.prompts, L"OnHelp", [this] { OnHelp(); }));
    if (IsShiftKeyHeld()) {
        field_->setText(QString::fromWCharArray(kExampleUrl));
    }
    setMinimumWidth(kLeastWidth);
    FitOntoScreen(*this);
    if (!IsControlKeyHeld()) {
        RestoreWindowPlacement(*this, services_.options, kPlacementName);
    }
}

QWidget* AddCloudLASFileDlg::BuildGroup() {
    field_->setObjectName(QStringLiteral("url"));
    field_->setMaxLength(kLongestUrl);
    notes_->setObjectName(QStringLiteral("urlNotes"));
    notes_->setWordWrap(true);
    notes_->setTextFormat(Qt::PlainText);
    // Sentences come and go while the user types, in room that is there from the start.
    notes_->setMinimumHeight(4 * notes_->fontMetrics().lineSpacing());
    notes_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    auto* group = new QGroupBox(ToQString(Text(text::kPresignedUrlGroup)));
    auto* grid = new QGridLayout(group);
    auto* label = new QLabel(ToQString(Text(text::kPresignedUrl)));
    label->setBuddy(field_);
    grid->addWidget(label, 0, 0);
    grid->addWidget(field_, 0, 1);
    grid->addWidget(MakeText(text::kPresignedUrlHint), 1, 1);
    grid->addWidget(notes_, 2, 1);
    grid->setRowStretch(2, 1);
    connect(field_, &QLineEdit::textChanged, this,
            Guarded(services_.prompts, L"OnUrl", [this] { ShowNotes(); }));
    return group;
}

QLayout* AddCloudLASFileDlg::BuildButtons() {
    auto* ok = MakeDialogButton(kOk, text::kCloudOk);
    auto* cancel = MakeDialogButton(kCancel, text::kCloudCancel);
    auto* help = MakeDialogButton(kHelp, text::kCloudHelp);
    ok->setDefault(true);
    auto* row = new QHBoxLayout;
    row->addWidget(help);
    row->addStretch(1);
    row->addWidget(ok);
    row->addWidget(cancel);
    connect(ok, &QPushButton::clicked, this, &AddCloudLASFileDlg::accept);
    connect(cancel, &QPushButton::clicked, this, &AddCloudLASFileDlg::reject);
    connect(help, &QPushButton::clicked, this, Guarded(services_.prompts, L"OnHelp", [this] { OnHelp(); }));
    return row;
}

void AddCloudLASFileDlg::SetUrl(const std::wstring& url) {
    if (!url.empty()) {
        field_->setText(ToQString(url));
        field_->selectAll();
    }
}

void AddCloudLASFileDlg::accept() {
    RunGuarded(services_.prompts, L"OnOK", [this] { OnOk(); });
}

void AddCloudLASFileDlg::OnOk() {
    url_.clear();
    const std::wstring typed = ToWide(field_->text().trimmed());
    if (typed.empty()) {
        services_.prompts.Show({Text(text::kPresignedUrlEmpty), Text(text::kInvalidInputCaption),
                                PromptIcon::Error, PromptButtons::Ok});
        field_->setFocus();
        return;
    }
    SaveWindowPlacement(*this, services_.options, kPlacementName);
    url_ = typed;
    QDialog::accept();
}

void AddCloudLASFileDlg::reject() {
    url_.clear();
    RunGuarded(services_.prompts, L"OnCancel",
               [this] { SaveWindowPlacement(*this, services_.options, kPlacementName); });
    QDialog::reject();
}

void AddCloudLASFileDlg::OnHelp() {
    if (!services_.help.Show(HelpTopic::PresignedUrl)) {
        services_.prompts.Show({FormatText(Text(text::kHelpOpenFailed), {services_.help.ManualPath()}),
                                Text(text::kPresignedUrlTitle), PromptIcon::Warning, PromptButtons::Ok});
    }
}

void AddCloudLASFileDlg::ShowNotes() {
    QString sentences;
    for (const std::wstring& note : UrlNotes(ToWide(field_->text().trimmed()), CurrentTimeMs())) {
        sentences += (sentences.isEmpty() ? QString() : QStringLiteral(" ")) + ToQString(note);
    }
    notes_->setText(sentences);
}

}  // namespace orvex
