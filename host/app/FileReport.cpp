#include "host/app/FileReport.h"

#include <QApplication>
#include <QClipboard>
#include <QDialog>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>

#include "host/app/HostText.h"

namespace orvex {

namespace {

constexpr int kWidth = 560;
constexpr int kMostLines = 16;  ///< shown without scrolling

QWidget* MakeSummary(const QString& summary) {
    auto* row = new QWidget;
    auto* icon = new QLabel;
    const int size = row->style()->pixelMetric(QStyle::PM_MessageBoxIconSize);
    icon->setPixmap(row->style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(size));
    auto* text = new QLabel(summary);
    text->setTextFormat(Qt::PlainText);
    text->setWordWrap(true);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins({});
    layout->addWidget(icon, 0, Qt::AlignTop);
    layout->addWidget(text, 1);
    return row;
}

QPlainTextEdit* MakeList(const QString& files) {
    auto* list = new QPlainTextEdit(files.trimmed());
    list->setObjectName("files");
    list->setReadOnly(true);
    list->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    list->setLineWrapMode(QPlainTextEdit::NoWrap);
    const int lines = std::min(list->blockCount() + 2, kMostLines);
    list->setMinimumSize(kWidth, lines * list->fontMetrics().lineSpacing());
    return list;
}

}  // namespace

void ShowFileReport(QWidget* parent, const QString& title, const QString& summary, const QString& files) {
    QDialog dialog(parent);
    dialog.setObjectName("fileReport");
    dialog.setWindowTitle(title);
    dialog.setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    dialog.setSizeGripEnabled(true);
    auto* buttons = new QDialogButtonBox;
    QPushButton* copy = buttons->addButton(HostText(text::kReportCopy), QDialogButtonBox::ActionRole);
    QPushButton* ok = buttons->addButton(HostText(text::kOk), QDialogButtonBox::AcceptRole);
    ok->setDefault(true);
    auto* column = new QVBoxLayout(&dialog);
    column->addWidget(MakeSummary(summary));
    column->addWidget(MakeList(files), 1);
    column->addWidget(buttons);
    ok->setFocus();
    QObject::connect(copy, &QPushButton::clicked, &dialog,
                     [&] { QApplication::clipboard()->setText(summary + '\n' + files); });
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    dialog.exec();
}

}  // namespace orvex
