#include "host/app/MapPoints.h"

#include <QDeadlineTimer>
#include <QThreadPool>
#include <algorithm>
#include <atomic>
#include <cmath>
#include <functional>
#include <mutex>
#include <numeric>
#include <utility>

#include "host/app/MapItems.h"
#include "host/app/PointCanvas.h"
#include "support/QtText.h"

namespace orvex {

namespace {

constexpr int kPatienceMs = 1000;
constexpr std::int64_t kShowEveryMs = 250;
constexpr int kUsualThinning = 10;
/// Few pixels stay empty between so many.
constexpr double kPointsPerPixel = 2;
/// Points of a picture: some 32 bytes each are read, and drawing them takes a fraction of a second.
constexpr double kMostPoints = 2e6;
/// Of a view that moves, so many are drawn in any case: it looks the same then as when it rests.
constexpr double kFewPoints = 1e5;
constexpr std::uint64_t kPointsPerRead = 32768;
/// Points of a file that are held until the size of their pixels is known. Of more, samples are read before.
constexpr std::uint64_t kMostHeld = 1U << 18U;
constexpr std::uint64_t kSamples = 200;
/// Companions kept open; each takes a file descriptor and its index.
constexpr std::size_t kMostOpen = 256;

/// Pixels that a file takes in a view along one axis, at least one; none, 0, where it lies beside the view.
double PixelsAlong(double low, double high, double viewLow, double viewHigh, int pixels) {
    const double common = std::min(high, viewHigh) - std::max(low, viewLow);
    return common >= 0 ? std::max(1.0, common / (viewHigh - viewLow) * pixels) : 0;
}

std::uint64_t CountOf(const std::vector<LasPointRange>& ranges) {
    return std::accumulate(ranges.begin(), ranges.end(), std::uint64_t{0},
                           [](std::uint64_t sum, const LasPointRange& range) { return sum + range.count; });
}

}  // namespace

/// The files of the map, and their companions as far as they are open; these are the worker's.
struct MapPoints::Files {
    std::vector<PointFile> all;
    double low = 0;  ///< of all heights
    double high = 0;
    std::atomic<bool> isDropped = false;  ///< nothing of them is wanted any more

    struct Open {
        std::unique_ptr<LasCompanion> companion;
        std::uint64_t used = 0;  ///< the greater, the later
    };
    std::map<std::wstring, Open> open;
    std::uint64_t uses = 0;  ///< of all that are open
    std::map<std::wstring, CompanionUse> known;

    /// Leaves out those of damaged headers.
    void FindHeights() {
        low = kFarthest;
        high = -kFarthest;
        for (const PointFile& file : all) {
            if (std::abs(file.low) <= kFarthest && std::abs(file.high) <= kFarthest) {
                low = std::min(low, file.low);
                high = std::max(high, file.high);
            }
        }
        if (low > high) {
            low = high = 0;
        }
    }
    void CloseLeastUsed() {
        const auto isEarlier = [](const auto& a, const auto& b) { return a.second.used < b.second.used; };
        open.erase(std::min_element(open.begin(), open.end(), isEarlier));
    }
};

/// A view that is to be drawn.
struct MapPoints::Job {
    std::shared_ptr<Files> files;
    QRectF world;
    QSize pixels;
    std::atomic<bool> isOutdated = false;  ///< another view is wanted
};

struct MapPoints::Drawn {
    std::shared_ptr<Job> job;
    PointPicture picture;
    std::map<std::wstring, CompanionUse> uses;
    bool isComplete = false;
};

/// Shared with the worker, which may outlive the owner.
struct MapPoints::Link {
    const LasCompanions& companions;
    const Clock clock;
    std::mutex lock;
    MapPoints* owner;             ///< null once it is gone
    std::shared_ptr<Job> wanted;  ///< the next view to draw
    bool isWorking = false;

    Link(const LasCompanions& from, Clock milliseconds, MapPoints* points)
        : companions(from), clock(std::move(milliseconds)), owner(points) {}

    /// The next view; null ends the worker.
    std::shared_ptr<Job> Next() {
        const std::lock_guard guard(lock);
        isWorking = wanted != nullptr;
        return std::exchange(wanted, nullptr);
    }
    void Deliver(Drawn drawn) {
        const std::lock_guard guard(lock);
        if (MapPoints* const to = owner; to != nullptr) {
            QMetaObject::invokeMethod(
                to, [to, drawn = std::move(drawn)] { to->Take(drawn); }, Qt::QueuedConnection);
        }
    }
};

/// One view on the worker thread.
class MapPoints::Drawing {
  public:
    Drawing(const LasCompanions& companions, const Clock& clock, const Job& job)
        : companions_(companions), clock_(clock), job_(job), start_(clock()), shown_(start_) {
        double pixels = 0;
        for (const PointFile& file : job.files->all) {
            if (const double taken = PixelsOf(file.extent); taken > 0) {
                seen_.push_back({&file, taken});
                pixels += taken;
            }
        }
        density_ = std::min(kPointsPerPixel, kMostPoints / std::max(pixels, 1.0));
        hasMany_ = density_ * pixels > kFewPoints;
    }

    /// True if Draw with and without thinning differ.
    bool HasMany() const { return hasMany_; }

    /// What is drawn when it is given up is of no use. `show` gets what there is from time to time:
    /// companions on a slow drive take long to be opened.
    PointPicture Draw(bool isThinned, const std::function<void(PointPicture)>& show) {
        const Files& files = *job_.files;
        // Opening others may close those that are open.
        std::stable_partition(seen_.begin(), seen_.end(),
                              [&](const Seen& seen) { return files.open.contains(seen.file->path); });
        PointCanvas canvas(job_.world, job_.pixels, files.low, files.high);
        for (const Seen& seen : seen_) {
            const int thinning = seen.file->thinning < 2 ? kUsualThinning : seen.file->thinning;
            DrawFile(seen, density_ * seen.pixels / (isThinned ? thinning : 1), canvas);
            if (!hasFirst_ && clock_() - shown_ > kShowEveryMs) {
                show({canvas.Image(), job_.world});
                shown_ = clock_();
            }
        }
        return {canvas.Image(), job_.world};
    }
    /// There is some time for the first picture even if there is a later view; else one that moves would show
    /// none.
    bool IsGivenUp() const {
        return job_.files->isDropped || (job_.isOutdated && (hasFirst_ || clock_() - start_ > kShowEveryMs));
    }
    void SetFirstDone() { hasFirst_ = true; }

  private:
    struct Seen {
        const PointFile* file;
        double pixels;  ///< of its part in the view
    };

    double PixelsOf(const QRectF& extent) const {
        const QRectF& world = job_.world;
        return PixelsAlong(extent.left(), extent.right(), world.left(), world.right(), job_.pixels.width()) *
               PixelsAlong(extent.top(), extent.bottom(), world.top(), world.bottom(), job_.pixels.height());
    }

    void DrawFile(const Seen& seen, double mostPoints, PointCanvas& canvas) {
        const LasCompanion* const companion = IsGivenUp() ? nullptr : Open(seen.file->path);
        if (companion == nullptr) {
            return;
        }
        const auto ranges =
            companion->Select({job_.world.left(), job_.world.top(), job_.world.right(), job_.world.bottom()},
                              static_cast<std::uint64_t>(std::max(1.0, mostPoints)));
        const std::uint64_t count = CountOf(ranges);
        if (count > kMostHeld) {
            DrawMany(*companion, ranges, count / kSamples, seen.pixels, canvas);
        } else {
            DrawFew(*companion, ranges, seen.pixels, canvas);
        }
    }

    void DrawFew(const LasCompanion& companion, const std::vector<LasPointRange>& ranges, double pixels,
                 PointCanvas& canvas) {
        points_.clear();
        ReadAll(companion, ranges, [] {});
        canvas.SetSpacing(std::sqrt(pixels / CountInView(1)));
        canvas.Draw(points_);
    }

    void DrawMany(const LasCompanion& companion, const std::vector<LasPointRange>& ranges, std::uint64_t step,
                  double pixels, PointCanvas& canvas) {
        points_.clear();
        ReadSamples(companion, ranges, step);
        canvas.SetSpacing(std::sqrt(pixels / CountInView(step)));
        points_.clear();
        ReadAll(companion, ranges, [&] {
            canvas.Draw(points_);
            points_.clear();
        });
    }

    /// Number of the points in the view, at least 1; one of `step` was read.
    double CountInView(std::uint64_t step) const {
        const auto inView = std::ranges::count_if(
            points_, [this](const LasPoint& point) { return job_.world.contains(point.x, point.y); });
        return std::max(1.0, static_cast<double>(inView) * static_cast<double>(step));
    }

    /// Appends one of `step` points of the ranges.
    void ReadSamples(const LasCompanion& companion, const std::vector<LasPointRange>& ranges,
                     std::uint64_t step) {
        std::uint64_t before = 0;  // points of the ranges before
        for (const LasPointRange& range : ranges) {
            for (std::uint64_t i = (step - before % step) % step; i < range.count && !IsGivenUp();
                 i += step) {
                companion.Read({range.first + i, 1}, points_);
            }
            before += range.count;
        }
    }

    /// Appends the points of the ranges piece by piece; `use` is called after each.
    void ReadAll(const LasCompanion& companion, const std::vector<LasPointRange>& ranges,
                 const std::function<void()>& use) {
        for (LasPointRange range : ranges) {
            while (range.count > 0 && !IsGivenUp()) {
                const LasPointRange piece{range.first, std::min(range.count, kPointsPerRead)};
                if (!companion.Read(piece, points_)) {
                    return;
                }
                use();
                range = {range.first + piece.count, range.count - piece.count};
            }
        }
    }

    /// The companion of a file if it is fresh, else null.
    const LasCompanion* Open(const std::wstring& path) {
        Files& files = *job_.files;
        const auto known = files.known.find(path);
        if (known != files.known.end() && !known->second.isShown) {
            return nullptr;
        }
        const auto open = files.open.find(path);
        if (open != files.open.end()) {
            open->second.used = ++files.uses;
            return open->second.companion.get();
        }
        if (files.open.size() >= kMostOpen) {
            files.CloseLeastUsed();
        }
        std::wstring reason;
        std::unique_ptr<LasCompanion> companion = companions_.Open(path, reason);
        files.known[path] = {companion != nullptr, ToQString(reason)};
        return companion == nullptr
                   ? nullptr
                   : (files.open[path] = {std::move(companion), ++files.uses}).companion.get();
    }

    const LasCompanions& companions_;
    const Clock& clock_;
    const Job& job_;
    std::vector<Seen> seen_;
    std::vector<LasPoint> points_;
    double density_ = 1;  ///< points for each pixel
    bool hasMany_ = false;
    bool hasFirst_ = false;
    const std::int64_t start_;
    std::int64_t shown_;  ///< when the last picture went
};

MapPoints::MapPoints(const LasCompanions& companions, Clock clock)
    : link_(std::make_shared<Link>(companions, std::move(clock), this)),
      pool_(std::make_unique<QThreadPool>()),
      files_(std::make_shared<Files>()) {
    pool_->setMaxThreadCount(1);
}

MapPoints::~MapPoints() {
    Drop();
    {
        const std::lock_guard guard(link_->lock);
        link_->owner = nullptr;
    }
    if (!pool_->waitForDone(kPatienceMs)) {
        (void)pool_.release();  // Deleting it would wait for the read that does not return.
    }
}

std::int64_t MapPoints::SteadyMilliseconds() {
    return QDeadlineTimer::current().deadline();
}

/// Gives up the files and the view.
void MapPoints::Drop() {
    files_->isDropped = true;
    const std::lock_guard guard(link_->lock);
    link_->wanted = nullptr;
    job_ = nullptr;
}

void MapPoints::SetFiles(std::vector<PointFile> files) {
    Drop();
    files_ = std::make_shared<Files>();
    uses_.clear();
    picture_ = {};
    files_->all = std::move(files);
    files_->FindHeights();
}

void MapPoints::Close() {
    const std::shared_ptr<Files> closed = files_;  // pictures on their way hold it, too
    SetFiles({});
    if (pool_->waitForDone(kPatienceMs)) {
        // The worker took it last; Qt's wait is one that the thread sanitizer does not see.
        const std::lock_guard guard(link_->lock);
        closed->open.clear();
    }
}

void MapPoints::Show(const QRectF& world, const QSize& pixels) {
    if (files_->all.empty() || !(world.width() > 0 && world.height() > 0) || pixels.isEmpty()) {
        return;
    }
    if (job_ != nullptr) {
        job_->isOutdated = true;
    }
    job_ = std::make_shared<Job>();
    job_->files = files_;
    job_->world = world;
    job_->pixels = pixels;
    const std::lock_guard guard(link_->lock);
    link_->wanted = job_;
    if (!std::exchange(link_->isWorking, true)) {
        pool_->start([link = link_] { Work(link); });
    }
}

void MapPoints::Work(const std::shared_ptr<Link>& link) {
    while (const std::shared_ptr<Job> job = link->Next()) {
        try {
            DrawView(*link, job);
        } catch (...) {
            link->Deliver({job, {}, {}, true});  // not enough memory
        }
    }
}

void MapPoints::DrawView(Link& link, const std::shared_ptr<Job>& job) {
    Drawing drawing(link.companions, link.clock, *job);
    const auto show = [&](PointPicture picture) {
        link.Deliver({job, std::move(picture), job->files->known, false});
    };
    for (const bool isThinned : {true, false}) {
        if (isThinned && !drawing.HasMany()) {
            continue;
        }
        PointPicture picture = drawing.Draw(isThinned, show);
        if (drawing.IsGivenUp()) {
            return;
        }
        link.Deliver({job, std::move(picture), job->files->known, !isThinned});
        drawing.SetFirstDone();
    }
}

void MapPoints::Take(const Drawn& drawn) {
    if (drawn.job->files != files_) {
        return;
    }
    picture_ = drawn.picture;
    uses_ = drawn.uses;
    if (drawn.isComplete && drawn.job == job_) {
        job_ = nullptr;
    }
    emit Changed();
}

const CompanionUse* MapPoints::UseOf(const std::wstring& path) const {
    const auto found = uses_.find(path);
    return found == uses_.end() ? nullptr : &found->second;
}

}  // namespace orvex
