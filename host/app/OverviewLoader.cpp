#include "host/app/OverviewLoader.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <utility>

#include "support/LDataError.h"

namespace orvex {

namespace {

constexpr std::size_t kThreads = 2;
constexpr int kLargestSide = 512;
constexpr int kSmallestSide = 64;
/// Pixels of all overviews together: 256 MB.
constexpr double kMostPixels = 64.0 * 1024 * 1024;

struct Job {
    std::wstring path;
    int longSide = 0;
    std::atomic<bool> cancelled = false;
};
using JobPtr = std::shared_ptr<Job>;

RasterOverview ReadWithin(const std::wstring& path, int longSide, const std::function<bool()>& isCancelled) {
    OverviewLimits limits;
    limits.longSide = longSide;
    return ReadRasterOverview(path, isCancelled, limits);
}

}  // namespace

/// What the threads own together with the loader: they may outlive it.
struct OverviewLoader::Shared {
    mutable std::mutex lock;
    std::condition_variable changed;
    std::condition_variable ended;
    std::function<void()> loaded;  ///< empty once the loader has gone
    Read read;
    std::deque<std::wstring> waiting;
    std::vector<JobPtr> reading;
    std::vector<Loaded> done;
    int longSide = kLargestSide;
    std::size_t running = 0;  ///< threads
    bool stop = false;

    void Run();
    void Finish(const JobPtr& job, RasterOverview overview);
    RasterOverview ReadOne(const Job& job) const;
};

RasterOverview OverviewLoader::Shared::ReadOne(const Job& job) const {
    try {
        return read(job.path, job.longSide, [&job] { return job.cancelled.load(); });
    } catch (...) {
        RasterOverview none;
        none.problem = CurrentExceptionText();
        return none;
    }
}

/// With the lock held, so that the loader cannot go while it is told.
void OverviewLoader::Shared::Finish(const JobPtr& job, RasterOverview overview) {
    std::erase(reading, job);
    if (!job->cancelled) {
        done.push_back({job->path, std::move(overview)});
    }
    if (loaded) {
        loaded();
    }
}

void OverviewLoader::Shared::Run() {
    std::unique_lock guard(lock);
    while (true) {
        changed.wait(guard, [this] { return stop || !waiting.empty(); });
        if (stop) {
            break;
        }
        const auto job = std::make_shared<Job>();
        job->path = std::move(waiting.front());
        job->longSide = longSide;
        waiting.pop_front();
        reading.push_back(job);
        guard.unlock();
        RasterOverview overview = ReadOne(*job);
        guard.lock();
        Finish(job, std::move(overview));
    }
    --running;
    ended.notify_all();
}

OverviewLoader::OverviewLoader(std::function<void()> loaded, Read read)
    : shared_(std::make_shared<Shared>()) {
    shared_->loaded = std::move(loaded);
    shared_->read = read ? std::move(read) : ReadWithin;
}

OverviewLoader::~OverviewLoader() {
    {
        std::unique_lock guard(shared_->lock);
        shared_->stop = true;
        shared_->loaded = nullptr;
        std::ranges::for_each(shared_->reading, [](const JobPtr& job) { job->cancelled = true; });
        shared_->changed.notify_all();
        if (!shared_->ended.wait_for(guard, kPatience, [this] { return shared_->running == 0; })) {
            // With the lock held, so that none ends meanwhile: with some runtimes a thread that starts later
            // fails otherwise.
            std::ranges::for_each(threads_, &std::thread::detach);
            return;
        }
    }
    std::ranges::for_each(threads_, &std::thread::join);
}

/// Threads are made when there is work for the first time; one that the system refuses is done without.
void OverviewLoader::StartThreads() {
    while (threads_.size() < kThreads) {
        try {
            threads_.emplace_back([shared = shared_] { shared->Run(); });
        } catch (const std::system_error&) {
            return;
        }
        ++shared_->running;
    }
}

void OverviewLoader::Want(const std::vector<std::wstring>& paths) {
    const std::set<std::wstring> now(paths.begin(), paths.end());
    const std::lock_guard guard(shared_->lock);
    const auto isUnwanted = [&now](const std::wstring& path) { return !now.contains(path); };
    std::erase_if(shared_->waiting, isUnwanted);
    std::erase_if(shared_->done, [&](const Loaded& loaded) { return isUnwanted(loaded.path); });
    for (const JobPtr& job : shared_->reading) {
        job->cancelled = job->cancelled || isUnwanted(job->path);
    }
    for (const std::wstring& path : paths) {
        if (wanted_.insert(path).second) {
            shared_->waiting.push_back(path);
        }
    }
    wanted_ = now;
    shared_->longSide = LongSideFor(now.size());
    if (!shared_->waiting.empty()) {
        StartThreads();
    }
    shared_->changed.notify_all();
}

int OverviewLoader::LongSideFor(std::size_t count) {
    const double side = std::sqrt(kMostPixels / static_cast<double>(std::max<std::size_t>(count, 1)));
    return static_cast<int>(std::clamp<double>(side, kSmallestSide, kLargestSide));
}

std::vector<OverviewLoader::Loaded> OverviewLoader::Take() {
    const std::lock_guard guard(shared_->lock);
    return std::exchange(shared_->done, {});
}

bool OverviewLoader::IsIdle() const {
    const std::lock_guard guard(shared_->lock);
    return shared_->waiting.empty() && shared_->reading.empty() && shared_->done.empty();
}

}  // namespace orvex
