#include "support/DesktopQt.h"

#include <QApplication>
#include <QCheckBox>
#include <QDesktopServices>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <algorithm>
#include <map>

#include "support/Files.h"
#include "support/QtText.h"
#include "support/ReportBox.h"
#include "support/Text.h"

namespace orvex {
namespace {

QMessageBox::Icon IconOf(PromptIcon icon) {
    switch (icon) {
        case PromptIcon::None:
            return QMessageBox::NoIcon;
        case PromptIcon::Information:
            return QMessageBox::Information;
        case PromptIcon::Question:
            return QMessageBox::Question;
        case PromptIcon::Warning:
            return QMessageBox::Warning;
        case PromptIcon::Error:
            return QMessageBox::Critical;
    }
    return QMessageBox::NoIcon;
}

// What a title bar and borders take, which nobody knows before a window is shown.
constexpr QMargins kFrame{8, 32, 8, 8};

/// The screen that a window is on, or will be shown on.
const QScreen& ScreenOf(const QWidget& window) {
    const QScreen* screen = QGuiApplication::screenAt(window.geometry().center());
    return window.testAttribute(Qt::WA_Moved) && screen != nullptr ? *screen : *window.screen();
}

// A message box whose buttons speak the string library's language, not the toolkit's.
class Box {
  public:
    Box(QWidget* parent, const std::wstring& caption, PromptIcon icon, PromptButtons buttons,
        const std::wstring& yes = {}, const std::wstring& no = {})
        : box_(parent) {
        box_.setWindowTitle(caption.empty() ? QGuiApplication::applicationDisplayName() : ToQString(caption));
        box_.setIcon(IconOf(icon));
        box_.setTextFormat(Qt::PlainText);
        if (buttons == PromptButtons::Ok) {
            Add(PromptAnswer::Ok, QMessageBox::AcceptRole, Text(text::kOk), "ok");
            return;
        }
        Add(PromptAnswer::Yes, QMessageBox::YesRole, yes.empty() ? Text(text::kYes) : yes, "yes");
        Add(PromptAnswer::No, QMessageBox::NoRole, no.empty() ? Text(text::kNo) : no, "no");
        if (buttons == PromptButtons::YesNoCancel) {
            Add(PromptAnswer::Cancel, QMessageBox::RejectRole, Text(text::kCancel), "cancel");
        }
        // Enter must not agree to what is warned of.
        if (icon == PromptIcon::Warning) {
            box_.setDefaultButton(last_);
        }
    }

    QMessageBox& Window() { return box_; }

    PromptAnswer Ask() {
        // The last button is the one that closing the box stands for.
        box_.setEscapeButton(last_);
        box_.exec();
        const auto found = answers_.find(box_.clickedButton());
        return found == answers_.end() ? answers_[last_] : found->second;
    }

  private:
    void Add(PromptAnswer answer, QMessageBox::ButtonRole role, const std::wstring& text, const char* name) {
        last_ = box_.addButton(ToQString(text), role);
        last_->setObjectName(QLatin1String(name));
        answers_[last_] = answer;
        if (box_.defaultButton() == nullptr) {
            box_.setDefaultButton(last_);
        }
    }

    QMessageBox box_;
    const ParentGuard guard_{box_};
    QPushButton* last_ = nullptr;
    std::map<QAbstractButton*, PromptAnswer> answers_;
};

}  // namespace

std::optional<std::wstring> PickSaveFileQt(const SaveFileRequest& request) {
    const QString caption = ToQString(request.filter.caption);
    QFileDialog dialog(ActiveQtWindow(), ToQString(request.title));
    const ParentGuard guard(dialog);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilter(QStringLiteral("%1 (%2)").arg(caption, ToQString(request.filter.patterns)));
    dialog.setDefaultSuffix(ToQString(request.suffix));
    dialog.selectFile(ToQString(request.path));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return std::nullopt;
    }
    return ToWidePath(dialog.selectedFiles().front());
}

void FitOntoScreen(QWidget& window) {
    const QRect room = ScreenOf(window).availableGeometry().marginsRemoved(kFrame);
    window.setMinimumSize(window.minimumSize().boundedTo(room.size()));
    if ((window.windowState() & (Qt::WindowMinimized | Qt::WindowMaximized | Qt::WindowFullScreen)) != 0) {
        return;
    }
    window.resize(window.size().boundedTo(room.size()));
    if (window.testAttribute(Qt::WA_Moved)) {
        QRect place = window.geometry();
        place.moveRight(std::min(place.right(), room.right()));
        place.moveBottom(std::min(place.bottom(), room.bottom()));
        place.moveLeft(std::max(place.left(), room.left()));
        place.moveTop(std::max(place.top(), room.top()));
        window.setGeometry(place);
    }
}

QWidget* ActiveQtWindow() {
    QWidget* modal = QApplication::activeModalWidget();
    return modal != nullptr ? modal : QApplication::activeWindow();
}

// A widget tells of its end before it deletes its children.
ParentGuard::ParentGuard(QDialog& dialog) {
    if (const QWidget* parent = dialog.parentWidget()) {
        connection_ = QObject::connect(parent, &QObject::destroyed, &dialog,
                                       [&dialog] { dialog.setParent(nullptr, dialog.windowFlags()); });
    }
}

ParentGuard::~ParentGuard() {
    QObject::disconnect(connection_);
}

QWidget* UserPromptsQt::Parent() const {
    if (owner_ && QApplication::activeModalWidget() == nullptr) {
        return owner_->window();
    }
    return ActiveQtWindow();
}

PromptAnswer UserPromptsQt::Show(const Prompt& prompt) {
    Box box(Parent(), prompt.caption, prompt.icon, prompt.buttons, prompt.yesText, prompt.noText);
    box.Window().setText(ToQString(prompt.text));
    return box.Ask();
}

TaskAnswer UserPromptsQt::ShowTask(const TaskPrompt& prompt) {
    Box box(Parent(), prompt.title, prompt.icon, prompt.buttons);
    box.Window().setText(ToQString(prompt.mainInstruction));
    box.Window().setInformativeText(ToQString(prompt.content));
    if (auto* main = box.Window().findChild<QLabel*>(QStringLiteral("qt_msgbox_label"))) {
        QFont font = main->font();
        font.setBold(true);
        main->setFont(font);
    }
    QCheckBox* check = nullptr;
    if (!prompt.verification.empty()) {
        check = new QCheckBox(ToQString(prompt.verification));
        check->setObjectName(QStringLiteral("verification"));
        box.Window().setCheckBox(check);
    }
    const PromptAnswer answer = box.Ask();
    return {answer, check != nullptr && check->isChecked()};
}

PromptAnswer UserPromptsQt::ShowReport(const ReportPrompt& prompt) {
    ReportBox box(prompt, Parent());
    const ParentGuard guard(box);
    return box.exec() == QDialog::Accepted ? PromptAnswer::Yes : PromptAnswer::No;
}

HelpViewerQt::HelpViewerQt(std::filesystem::path folder, Open open)
    : folder_(std::move(folder)), open_(open ? std::move(open) : Open(&QDesktopServices::openUrl)) {}

std::wstring HelpViewerQt::ManualPath() const {
    return FromPath(folder_ / "help" / "index.html");
}

bool HelpViewerQt::Show(HelpTopic topic) {
    const std::wstring manual = ManualPath();
    if (!FileExists(manual)) {
        return false;
    }
    QUrl address = QUrl::fromLocalFile(ToQString(manual));
    address.setFragment(QStringLiteral("topic-%1").arg(static_cast<int>(topic)));
    return open_(address);
}

}  // namespace orvex
