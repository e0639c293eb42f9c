#include "cloud/page/CloudRequest.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <mutex>
#include <utility>

#include "support/LDataError.h"
#include "support/QtText.h"
#include "support/Text.h"

namespace orvex {
namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kPatience = std::chrono::milliseconds(150);
constexpr std::size_t kMostWorkers = 8;

}  // namespace

/// What a request and its thread know of each other.
struct CloudRequest::Link {
    std::mutex lock;
    CloudRequest* request;  ///< null once nobody wants to hear of it; written on its own thread only

    explicit Link(CloudRequest* owner) : request(owner) {}

    /// Lets `tell` run on the request's thread, unless it has been cancelled by then. The lock keeps the
    /// request from going meanwhile; a message that it has not read goes with it.
    static void Post(const std::shared_ptr<Link>& link, std::function<void(CloudRequest&)> tell) {
        const std::lock_guard guard(link->lock);
        if (link->request != nullptr) {
            const auto deliver = [link, tell = std::move(tell)] {
                if (link->request != nullptr) {
                    tell(*link->request);
                }
            };
            QMetaObject::invokeMethod(link->request, deliver, Qt::QueuedConnection);
        }
    }
};

CloudRequest::~CloudRequest() {
    Cancel();
    for (BackgroundWorker& worker : workers_) {
        worker.RequestStop();
    }
    for (BackgroundWorker& worker : workers_) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(patienceEnds_ - Clock::now());
        worker.WaitForEnd(std::max(left, std::chrono::milliseconds(0)));
    }
}

void CloudRequest::Start(Work work) {
    Cancel();
    std::erase_if(workers_, [](BackgroundWorker& worker) { return worker.WaitForEnd({}); });
    if (workers_.size() >= kMostWorkers) {
        throw LDataError(Text(text::kCloudAccountSilent));
    }
    const auto link = std::make_shared<Link>(this);
    workers_.emplace_back(
        [link, work = std::move(work)](const std::stop_token& stop) { Run(link, work, stop); });
    link_ = link;
}

void CloudRequest::Cancel() {
    if (link_ != nullptr) {
        const std::lock_guard guard(link_->lock);
        link_->request = nullptr;
    }
    if (std::exchange(link_, nullptr) != nullptr) {
        workers_.back().RequestStop();
        patienceEnds_ = Clock::now() + kPatience;
    }
}

void CloudRequest::Run(const std::shared_ptr<Link>& link, const Work& work, const std::stop_token& stop) {
    CloudCall call;
    call.isCancelled = [stop] { return stop.stop_requested(); };
    call.waiting = [link](const std::wstring& text) {
        Link::Post(link, [text](CloudRequest& request) { emit request.Waiting(ToQString(text)); });
    };
    Answer answer;
    try {
        answer = work(call);
    } catch (...) {
        answer = [failure = std::current_exception()] { std::rethrow_exception(failure); };
    }
    Link::Post(link, [answer](CloudRequest& request) {
        request.link_.reset();
        request.workers_.back().WaitForEnd(kPatience);  // it has nothing more to do
        emit request.Answered(answer);
    });
}

}  // namespace orvex
