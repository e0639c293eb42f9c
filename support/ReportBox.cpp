#include "support/ReportBox.h"

#include <QClipboard>
#include <QDialogButtonBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStyle>
#include <QTextCursor>
#include <QTextOption>
#include <QVBoxLayout>

#include "support/DesktopQt.h"
#include "support/QtText.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr QSize kFirstSize{640, 420};
constexpr QSize kLeastSize{420, 240};

QPushButton* AddButton(QDialogButtonBox& box, const std::wstring& text, QDialogButtonBox::ButtonRole role,
                       const char* name) {
    QPushButton* button = box.addButton(ToQString(text), role);
    button->setObjectName(QLatin1String(name));
    return button;
}

}  // namespace

ReportBox::ReportBox(const ReportPrompt& prompt, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                          Qt::WindowMaximizeButtonHint | Qt::WindowCloseButtonHint),
      text_(new QPlainTextEdit) {
    setObjectName(QStringLiteral("report"));
    setWindowTitle(ToQString(prompt.caption));
    setSizeGripEnabled(true);
    text_->setObjectName(QStringLiteral("reportText"));
    text_->setReadOnly(true);
    text_->setTabChangesFocus(true);
    text_->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);  // paths have few blanks
    text_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // Read-only text takes the keyboard too: lines are scrolled, selected and copied with keys.
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    ShowSections(prompt.sections);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(MakeSummary(prompt));
    layout->addWidget(text_, 1);
    layout->addWidget(MakeButtons(prompt));
    setMinimumSize(kLeastSize);
    resize(kFirstSize);
    FitOntoScreen(*this);
}

QWidget* ReportBox::MakeSummary(const ReportPrompt& prompt) {
    auto* row = new QWidget;
    auto* parts = new QHBoxLayout(row);
    parts->setContentsMargins(0, 0, 0, 0);
    auto* icon = new QLabel;
    const int size = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
    icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning, nullptr, this).pixmap(size));
    auto* summary = new QLabel(ToQString(prompt.summary));
    summary->setObjectName(QStringLiteral("reportSummary"));
    summary->setTextFormat(Qt::PlainText);
    summary->setWordWrap(true);
    QFont font = summary->font();
    font.setBold(true);
    summary->setFont(font);
    parts->addWidget(icon, 0, Qt::AlignTop);
    parts->addWidget(summary, 1);
    return row;
}

void ReportBox::ShowSections(const std::vector<ReportPrompt::Section>& sections) {
    QTextCursor cursor(text_->document());
    QTextCharFormat heading;
    heading.setFontWeight(QFont::Bold);
    cursor.beginEditBlock();
    for (const ReportPrompt::Section& section : sections) {
        cursor.insertText(cursor.atStart() ? QString() : QStringLiteral("\n\n"), {});
        cursor.insertText(ToQString(section.heading), heading);
        QString lines;
        for (const std::wstring& line : section.lines) {
            lines += QStringLiteral("\n    ") + ToQString(line);
        }
        cursor.insertText(lines, {});
    }
    cursor.endEditBlock();
    text_->moveCursor(QTextCursor::Start);
}

QWidget* ReportBox::MakeButtons(const ReportPrompt& prompt) {
    auto* copy = new QPushButton(ToQString(Text(text::kReviewCopy)));
    copy->setObjectName(QStringLiteral("copy"));
    copy->setAutoDefault(false);
    auto* buttons = new QDialogButtonBox;
    AddButton(*buttons, prompt.yesText, QDialogButtonBox::AcceptRole, "yes")->setDefault(true);
    if (!prompt.noText.empty()) {
        AddButton(*buttons, prompt.noText, QDialogButtonBox::RejectRole, "no");
    }
    connect(copy, &QPushButton::clicked, this,
            [this] { QGuiApplication::clipboard()->setText(text_->toPlainText()); });
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* row = new QWidget;
    auto* parts = new QHBoxLayout(row);
    parts->setContentsMargins(0, 0, 0, 0);
    parts->addWidget(copy);
    parts->addStretch();
    parts->addWidget(buttons);
    return row;
}

}  // namespace orvex
