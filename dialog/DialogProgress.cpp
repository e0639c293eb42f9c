#include "dialog/DialogProgress.h"

#include <QApplication>
#include <QKeyEvent>
#include <QProgressBar>
#include <QWindow>
#include <algorithm>

#include "support/QtText.h"

namespace orvex {
namespace {

constexpr qint64 kPumpMs = 4;
constexpr qint64 kLateEscapeMs = 800;
constexpr QColor kGround{0xc8, 0xc8, 0xc8};
constexpr int kSteps = 10000;  // resolution of the bar: a range of files or bytes may not fit an int

// A bar replaces %p, %v and %m in its text; a file name may hold them.
QString WithoutPlaceholders(QString text) {
    return text.replace(QLatin1Char('%'), QStringLiteral("%\u200B"));
}

// The ground is the same in light and in dark, so what is written on it must be.
QPalette Colours(QPalette colours) {
    colours.setColor(QPalette::Base, kGround);
    colours.setColor(QPalette::Text, Qt::black);
    return colours;
}

}  // namespace

DialogProgress::DialogProgress(QProgressBar* bar, QObject* parent) : QObject(parent), bar_(bar) {
    bar_->setPalette(Colours(bar_->palette()));
    bar_->hide();
}

DialogProgress::~DialogProgress() {
    if (running_) {
        qApp->removeEventFilter(this);
    }
}

DialogProgress::Run::Run(DialogProgress& progress) : progress_(progress), outer_(!progress.running_) {
    if (outer_) {
        progress_.Begin();
    }
}

DialogProgress::Run::~Run() {
    if (outer_) {
        progress_.End();
    }
}

void DialogProgress::Begin() {
    running_ = true;
    cancelled_ = false;
    sincePump_.start();
    SetOutcome({});
    SetRange(0);
    SetText({});
    bar_->show();
    qApp->installEventFilter(this);
    emit RunningChanged(true);
}

void DialogProgress::End() {
    qApp->removeEventFilter(this);
    running_ = false;
    sinceEnd_.start();
    SetText({});
    bar_->hide();
    emit RunningChanged(false);
}

void DialogProgress::SetRange(std::uint64_t total) {
    total_ = total;
    bar_->setRange(0, total == 0 ? 0 : kSteps);  // 0 to 0 shows a busy bar
    bar_->setValue(0);
}

void DialogProgress::SetText(const std::wstring& text) {
    bar_->setFormat(WithoutPlaceholders(ToQString(text)));
    bar_->setTextVisible(!text.empty());
}

void DialogProgress::SetPosition(std::uint64_t done) {
    if (total_ > 0) {
        const double share = static_cast<double>(std::min(done, total_)) / static_cast<double>(total_);
        bar_->setValue(static_cast<int>(share * kSteps));
    }
}

void DialogProgress::SetOutcome(const std::wstring& text) {
    emit OutcomeChanged(ToQString(text));
}

bool DialogProgress::IsCancelled() {
    if (running_ && sincePump_.elapsed() >= kPumpMs) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        sincePump_.restart();
    }
    return cancelled_;
}

void DialogProgress::Stop() {
    if (running_) {
        cancelled_ = true;
    }
}

bool DialogProgress::EndedJustNow() const {
    return !running_ && sinceEnd_.isValid() && sinceEnd_.elapsed() < kLateEscapeMs;
}

bool DialogProgress::IsOfMyWindow(const QObject* watched) const {
    const QWidget* window = bar_->window();
    if (watched->isWidgetType()) {
        return static_cast<const QWidget*>(watched)->window() == window;
    }
    return watched == window->windowHandle();
}

// A question asked during a run has a window of its own, whose Escape is not taken.
bool DialogProgress::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::ShortcutOverride) {
        return false;
    }
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() != Qt::Key_Escape || !IsOfMyWindow(watched)) {
        return false;
    }
    Stop();
    event->accept();
    return true;
}

}  // namespace orvex
