#include "host/app/Thumbnails.h"

#include <QThreadPool>
#include <algorithm>
#include <atomic>
#include <cmath>
#include <mutex>
#include <set>

#include "support/LDataError.h"
#include "support/QtText.h"

namespace orvex {

namespace {

constexpr int kThreads = 2;
constexpr int kPatienceMs = 1000;
constexpr int kLargestSide = 512;
constexpr int kSmallestSide = 64;
/// Pixels of all thumbnails together: 256 MB.
constexpr double kMaxPixels = 64.0 * 1024 * 1024;

}  // namespace

struct Thumbnails::Job {
    std::wstring path;
    std::atomic<bool> isCancelled = false;
};

/// Shared with the worker threads, which may outlive the owner.
struct Thumbnails::Link {
    std::mutex lock;
    Thumbnails* owner;  ///< null once it is gone
    std::atomic<int> longSide = kLargestSide;
    std::atomic<std::size_t> vertices = 0;

    explicit Link(Thumbnails* thumbnails) : owner(thumbnails) {}
};

Thumbnails::Thumbnails(QObject* parent, Read read)
    : QObject(parent),
      read_(std::move(read)),
      link_(std::make_shared<Link>(this)),
      pool_(std::make_unique<QThreadPool>()) {
    pool_->setMaxThreadCount(kThreads);
}

Thumbnails::~Thumbnails() {
    {
        const std::lock_guard guard(link_->lock);
        link_->owner = nullptr;
    }
    pool_->clear();
    for (const auto& [path, job] : jobs_) {
        job->isCancelled = true;
    }
    if (!pool_->waitForDone(kPatienceMs)) {
        (void)pool_.release();  // Deleting it would wait for the reader that does not return.
    }
}

void Thumbnails::Request(const std::vector<std::wstring>& paths) {
    const std::set<std::wstring> wanted(paths.begin(), paths.end());
    const auto isUnwanted = [&wanted](const auto& entry) { return !wanted.contains(entry.first); };
    std::erase_if(thumbnails_, isUnwanted);
    std::erase_if(jobs_, [&](const auto& entry) {
        entry.second->isCancelled = isUnwanted(entry);
        return entry.second->isCancelled.load();
    });
    link_->longSide = LongSideFor(wanted.size());
    link_->vertices = VerticesFor(wanted.size());
    for (const std::wstring& path : paths) {
        if (!jobs_.contains(path) && !thumbnails_.contains(path)) {
            Start(path);
        }
    }
}

void Thumbnails::Start(const std::wstring& path) {
    const auto job = std::make_shared<Job>();
    job->path = path;
    jobs_.emplace(path, job);
    pool_->start([job, link = link_, read = read_] {
        Thumbnail thumbnail;
        try {
            ThumbnailLimits limits;
            limits.longSide = link->longSide;
            limits.vertices = link->vertices;
            const auto isCancelled = [&job] { return job->isCancelled.load(); };
            thumbnail = isCancelled() ? Thumbnail() : read(job->path, isCancelled, limits);
        } catch (...) {
            thumbnail.problem = ToQString(CurrentExceptionText());
        }
        const std::lock_guard guard(link->lock);
        if (Thumbnails* owner = link->owner; owner != nullptr) {
            QMetaObject::invokeMethod(
                owner, [owner, job, thumbnail] { owner->Take(job, thumbnail); }, Qt::QueuedConnection);
        }
    });
}

void Thumbnails::Take(const std::shared_ptr<Job>& job, const Thumbnail& thumbnail) {
    if (!job->isCancelled) {
        jobs_.erase(job->path);
        thumbnails_[job->path] = thumbnail;
        emit Changed();
    }
}

const Thumbnail* Thumbnails::Find(const std::wstring& path) const {
    const auto found = thumbnails_.find(path);
    return found == thumbnails_.end() ? nullptr : &found->second;
}

int Thumbnails::LongSideFor(std::size_t count) {
    const double side = std::sqrt(kMaxPixels / static_cast<double>(std::max<std::size_t>(count, 1)));
    return static_cast<int>(std::clamp<double>(side, kSmallestSide, kLargestSide));
}

std::size_t Thumbnails::VerticesFor(std::size_t count) {
    constexpr std::size_t kMostOfAll = 400000;
    constexpr std::size_t kMostOfOne = 100000;
    constexpr std::size_t kLeastOfOne = 1000;
    return std::clamp(kMostOfAll / std::max<std::size_t>(count, 1), kLeastOfOne, kMostOfOne);
}

}  // namespace orvex
