#pragma once
#include <QObject>
#include <chrono>
#include <functional>
#include <list>
#include <memory>

#include "dialog/page/BackgroundWorker.h"
#include "orvexcommon/CloudAccount.h"

namespace orvex {

/// A request to the cloud account on a thread of its own, one at a time. A request that is cancelled or
/// superseded is told to stop, and what it finds is dropped. User-interface thread only.
class CloudRequest : public QObject {
    Q_OBJECT

  public:
    /// Runs on the user-interface thread; throws what the request has thrown.
    using Answer = std::function<void()>;
    /// Runs on the request's thread, and may outlive every window: it must own whatever it touches.
    using Work = std::function<Answer(const CloudCall& call)>;

    using QObject::QObject;
    /// Waits until a moment after Cancel for requests that end; leaves those behind that do not.
    ~CloudRequest() override;

    /// Cancels the request that runs. Throws LDataError if too many before it have not ended.
    void Start(Work work);
    void Cancel();
    bool IsRunning() const { return link_ != nullptr; }

  signals:
    /// Not after Cancel. The request has ended.
    void Answered(const std::function<void()>& answer);
    /// Why it takes longer; an empty text: no longer so.
    void Waiting(const QString& text);

  private:
    struct Link;

    static void Run(const std::shared_ptr<Link>& link, const Work& work, const std::stop_token& stop);

    std::shared_ptr<Link> link_;  ///< with the request that runs; null: none does
    std::list<BackgroundWorker> workers_;
    std::chrono::steady_clock::time_point patienceEnds_;
};

}  // namespace orvex
