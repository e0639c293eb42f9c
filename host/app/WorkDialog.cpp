#include "host/app/WorkDialog.h"

#include <QDialogButtonBox>
#include <QEventLoop>
#include <QFontMetrics>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>
#include <exception>
#include <mutex>
#include <system_error>

#include "host/app/HostText.h"

namespace orvex {

namespace {

constexpr int kPollMs = 30;
constexpr int kPatienceWithoutDialogMs = 300;
constexpr qint64 kPatienceMs = 8000;
constexpr int kBarSteps = 1000;
constexpr int kTextWidth = 440;

}  // namespace

/// State shared by the work, which sets it, and the dialog, which shows it.
class WorkDialog::Progress final : public Kst::ProgressIf {
  public:
    struct State {
        std::uint64_t total = 0;
        std::uint64_t done = 0;
        std::wstring text;
        bool stop = false;
        bool ended = false;
        std::exception_ptr error;
    };

    void SetRange(std::uint64_t total) override {
        const std::lock_guard guard(lock_);
        state_.total = total;
        state_.done = 0;
    }
    void SetText(const std::wstring& text) override {
        const std::lock_guard guard(lock_);
        state_.text = text;
    }
    void SetPosition(std::uint64_t done) override {
        const std::lock_guard guard(lock_);
        state_.done = done;
    }
    bool IsCancelled() override { return Now().stop; }

    State Now() const {
        const std::lock_guard guard(lock_);
        return state_;
    }
    void Stop() {
        const std::lock_guard guard(lock_);
        state_.stop = true;
    }
    /// Detaches the thread; false if the work has already ended. The lock keeps the thread from ending during
    /// the call: with some runtimes, threads started later would fail otherwise.
    bool LeaveBehind(std::thread& thread) {
        const std::lock_guard guard(lock_);
        if (!state_.ended) {
            thread.detach();
        }
        return !state_.ended;
    }
    void End(std::exception_ptr error) {
        const std::lock_guard guard(lock_);
        state_.ended = true;
        state_.error = std::move(error);
    }

  private:
    mutable std::mutex lock_;
    State state_;
};

WorkDialog::WorkDialog(QWidget* parent, const QString& title, Work work)
    : QDialog(parent),
      progress_(std::make_shared<Progress>()),
      text_(new QLabel),
      bar_(new QProgressBar),
      stop_(new QPushButton(HostText(text::kCancel))) {
    setObjectName("work");
    setWindowTitle(title);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    text_->setFixedWidth(kTextWidth);
    text_->setTextFormat(Qt::PlainText);
    bar_->setRange(0, kBarSteps);
    auto* buttons = new QDialogButtonBox;
    buttons->addButton(stop_, QDialogButtonBox::RejectRole);
    auto* column = new QVBoxLayout(this);
    column->addWidget(text_);
    column->addWidget(bar_);
    column->addWidget(buttons);
    column->setSizeConstraint(QLayout::SetFixedSize);
    connect(buttons, &QDialogButtonBox::rejected, this, &WorkDialog::reject);
    connect(&timer_, &QTimer::timeout, this, &WorkDialog::Poll);
    Start(std::move(work));
    timer_.start(kPollMs);
}

void WorkDialog::Start(Work work) {
    const auto run = [progress = progress_, work = std::make_shared<Work>(std::move(work))] {
        std::exception_ptr error;
        try {
            (*work)(*progress);
        } catch (...) {
            error = std::current_exception();
        }
        *work = nullptr;
        progress->End(std::move(error));
    };
    try {
        thread_ = std::thread(run);
    } catch (const std::system_error&) {
        run();  // The system has no thread to spare; the window stands still meanwhile.
    }
}

WorkDialog::~WorkDialog() {
    progress_->Stop();
    // A thread that has ended is waited for, so that none is left when the program ends.
    if (thread_.joinable() && !progress_->LeaveBehind(thread_)) {
        thread_.join();
    }
}

WorkEnd WorkDialog::Run(QWidget* parent, const QString& title, Work work) {
    WorkDialog dialog(parent, title, std::move(work));
    if (!dialog.EndsSoon()) {
        dialog.exec();
    }
    const Progress::State state = dialog.progress_->Now();
    if (state.error) {
        std::rethrow_exception(state.error);
    }
    return state.ended ? WorkEnd::Finished : WorkEnd::Abandoned;
}

/// Waits a moment for the work, during which other windows are painted.
bool WorkDialog::EndsSoon() {
    QEventLoop loop;
    connect(this, &QDialog::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(kPatienceWithoutDialogMs, &loop, &QEventLoop::quit);
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    return progress_->Now().ended;
}

void WorkDialog::reject() {
    if (!sinceStopped_.isValid()) {
        progress_->Stop();
        sinceStopped_.start();
        stop_->setEnabled(false);
        text_->setText(HostText(text::kStoppingProgress));
    }
}

void WorkDialog::Poll() {
    const Progress::State state = progress_->Now();
    if (state.total > 0) {
        const double share = static_cast<double>(state.done) / static_cast<double>(state.total);
        bar_->setValue(static_cast<int>(kBarSteps * std::min(share, 1.0)));
    }
    if (!sinceStopped_.isValid()) {
        text_->setText(text_->fontMetrics().elidedText(ToQString(state.text), Qt::ElideMiddle, kTextWidth));
    }
    if (state.ended || (sinceStopped_.isValid() && sinceStopped_.elapsed() > kPatienceMs)) {
        timer_.stop();
        accept();
    }
}

}  // namespace orvex
