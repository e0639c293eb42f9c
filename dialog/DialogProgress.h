#pragma once
#include <QElapsedTimer>
#include <QObject>

#include "support/ProgressIf.h"

class QProgressBar;

namespace orvex {

/// The dialog's progress bar as a ProgressIf: visible during a run, pumps events, and can be cancelled with
/// Escape (which then does not close the dialog) or the stop button. User-interface thread only.
class DialogProgress final : public QObject, public Kst::ProgressIf {
    Q_OBJECT

  public:
    /// `bar` must outlive the object; it is hidden until a run starts.
    explicit DialogProgress(QProgressBar* bar, QObject* parent = nullptr);
    ~DialogProgress() override;

    /// A run, from construction to destruction; a nested one is part of the outer one.
    class Run {
      public:
        explicit Run(DialogProgress& progress);
        ~Run();
        Run(const Run&) = delete;
        Run& operator=(const Run&) = delete;

      private:
        DialogProgress& progress_;
        bool outer_;
    };

    void SetRange(std::uint64_t total) override;
    void SetText(const std::wstring& text) override;
    void SetPosition(std::uint64_t done) override;
    /// Pumps events, at most every few milliseconds.
    bool IsCancelled() override;
    bool IsRunning() const { return running_; }
    /// The line that ends a run: shown in place of the bar until the next one begins.
    void SetOutcome(const std::wstring& text);

    /// Cancels the run, as Escape does; no effect if there is none.
    void Stop();
    /// True shortly after a run has ended by itself or was cancelled, when an Escape was meant for it.
    bool EndedJustNow() const;
    /// True shortly after a run was cancelled, when another press was meant for it too.
    bool WasStoppedJustNow() const { return cancelled_ && EndedJustNow(); }

  signals:
    void RunningChanged(bool running);
    void OutcomeChanged(const QString& text);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void Begin();
    void End();
    bool IsOfMyWindow(const QObject* watched) const;

    QProgressBar* bar_;
    bool running_ = false;
    bool cancelled_ = false;
    std::uint64_t total_ = 0;
    QElapsedTimer sincePump_;
    QElapsedTimer sinceEnd_;
};

}  // namespace orvex
