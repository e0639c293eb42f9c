#include "host/app/MapPoints.h"

#include <QElapsedTimer>
#include <QThreadPool>
#include <algorithm>
#include <atomic>
#include <cmath>
#include <functional>
#include <mutex>
#include <utility>

#include "host/app/PointCanvas.h"
#include "support/QtText.h"

namespace orvex {

namespace {

constexpr int kPatienceMs = 1000;
constexpr qint64 kShowEveryMs = 250;
constexpr int kUsualThinning = 10;
/// Few pixels stay empty between so many.
constexpr double kPointsPerPixel = 2;
/// Points of a picture: some 32 bytes each are read, and drawing them takes a fraction of a second.
constexpr double kMostPoints = 2e6;
/// Of a view that moves, so many are drawn in any case: it looks the same then as when it rests.
constexpr double kFewPoints = 1e5;
constexpr std::uint64_t kPointsPerRead = 32768;
constexpr std::uint64_t kSamples = 200;
/// Companions kept open; each takes a file descriptor.
constexpr std::size_t kMostOpen = 128;

double AreaOf(const QRectF& world) {
    return world.width() * world.height();
}

}  // namespace

/// The files of the map, and their companions as far as they are open; these are the worker's.
struct MapPoints::Files {
    std::vector<PointFile> all;
    double low = 0;  ///< of all heights
    double high = 0;
    std::atomic<bool> isDropped = false;  ///< nothing of them is wanted any more

    std::map<std::wstring, std::unique_ptr<LasCompanion>> open;
    std::map<std::wstring, CompanionUse> uses;
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
    std::mutex lock;
    MapPoints* owner;             ///< null once it is gone
    std::shared_ptr<Job> wanted;  ///< the next view to draw
    bool isWorking = false;

    Link(const LasCompanions& from, MapPoints* points) : companions(from), owner(points) {}

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
    Drawing(const LasCompanions& companions, const Job& job) : companions_(companions), job_(job) {
        sinceShown_.start();
        double pixels = 0;
        for (const PointFile& file : job.files->all) {
            if (file.extent.intersects(job.world)) {
                seen_.push_back({&file, PixelsOf(file)});
                pixels += seen_.back().pixels;
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
        PointCanvas canvas(job_.world, job_.pixels, files.low, files.high);
        for (const Seen& seen : seen_) {
            const int thinning = seen.file->thinning < 2 ? kUsualThinning : seen.file->thinning;
            DrawFile(seen, density_ * seen.pixels / (isThinned ? thinning : 1), canvas);
            if (!hasFirst_ && sinceShown_.elapsed() > kShowEveryMs) {
                show({canvas.Image(), job_.world});
                sinceShown_.start();
            }
        }
        return {canvas.Image(), job_.world};
    }
    /// There is some time for the first picture even if there is a later view; else one that moves would show
    /// none.
    bool IsGivenUp() const {
        return job_.files->isDropped ||
               (job_.isOutdated && (hasFirst_ || sinceShown_.elapsed() > kShowEveryMs));
    }
    void SetFirstDone() { hasFirst_ = true; }

  private:
    struct Seen {
        const PointFile* file;
        double pixels;  ///< of its part in the view
    };

    double PixelsOf(const PointFile& file) const {
        const double share = AreaOf(file.extent.intersected(job_.world)) / AreaOf(job_.world);
        return std::max(1.0, share * job_.pixels.width() * job_.pixels.height());
    }

    void DrawFile(const Seen& seen, double mostPoints, PointCanvas& canvas) {
        const LasCompanion* const companion = IsGivenUp() ? nullptr : Open(seen.file->path);
        if (companion == nullptr) {
            return;
        }
        const auto ranges =
            companion->Select({job_.world.left(), job_.world.top(), job_.world.right(), job_.world.bottom()},
                              static_cast<std::uint64_t>(std::max(1.0, mostPoints)));
        canvas.SetSpacing(std::sqrt(seen.pixels / CountInView(*companion, ranges)));
        for (const LasPointRange& range : ranges) {
            DrawRange(*companion, range, canvas);
        }
    }

    /// Number of the points in the view, at least 1: most may lie beside it. Estimated from samples.
    double CountInView(const LasCompanion& companion, const std::vector<LasPointRange>& ranges) {
        std::uint64_t count = 0;
        for (const LasPointRange& range : ranges) {
            count += range.count;
        }
        const std::uint64_t step = count / kSamples + 1;
        std::uint64_t before = 0;  // points of the ranges before
        points_.clear();
        for (const LasPointRange& range : ranges) {
            for (std::uint64_t i = (step - before % step) % step; i < range.count && !IsGivenUp();
                 i += step) {
                companion.Read({range.first + i, 1}, points_);
            }
            before += range.count;
        }
        const auto inView = std::ranges::count_if(
            points_, [this](const LasPoint& point) { return job_.world.contains(point.x, point.y); });
        return std::max(1.0, static_cast<double>(inView) * static_cast<double>(step));
    }

    void DrawRange(const LasCompanion& companion, LasPointRange range, PointCanvas& canvas) {
        while (range.count > 0 && !IsGivenUp()) {
            const LasPointRange piece{range.first, std::min(range.count, kPointsPerRead)};
            points_.clear();
            if (!companion.Read(piece, points_)) {
                return;
            }
            canvas.Draw(points_);
            range = {range.first + piece.count, range.count - piece.count};
        }
    }

    /// The companion of a file if it is fresh, else null.
    const LasCompanion* Open(const std::wstring& path) {
        Files& files = *job_.files;
        const auto use = files.uses.find(path);
        if (use != files.uses.end() && !use->second.isShown) {
            return nullptr;
        }
        const auto open = files.open.find(path);
        if (open != files.open.end()) {
            return open->second.get();
        }
        if (files.open.size() >= kMostOpen) {
            files.open.erase(files.open.begin());
        }
        std::wstring reason;
        std::unique_ptr<LasCompanion> companion = companions_.Open(path, reason);
        files.uses[path] = {companion != nullptr, ToQString(reason)};
        return companion == nullptr ? nullptr : (files.open[path] = std::move(companion)).get();
    }

    const LasCompanions& companions_;
    const Job& job_;
    std::vector<Seen> seen_;
    std::vector<LasPoint> points_;
    double density_ = 1;  ///< points for each pixel
    bool hasMany_ = false;
    bool hasFirst_ = false;
    QElapsedTimer sinceShown_;
};

MapPoints::MapPoints(const LasCompanions& companions)
    : link_(std::make_shared<Link>(companions, this)),
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
    const auto isLower = [](const PointFile& a, const PointFile& b) { return a.low < b.low; };
    const auto isLessHigh = [](const PointFile& a, const PointFile& b) { return a.high < b.high; };
    if (!files.empty()) {
        files_->low = std::ranges::min_element(files, isLower)->low;
        files_->high = std::ranges::max_element(files, isLessHigh)->high;
    }
    files_->all = std::move(files);
}

void MapPoints::Show(const QRectF& world, const QSize& pixels) {
    if (files_->all.empty() || !(AreaOf(world) > 0) || pixels.isEmpty()) {
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
    Drawing drawing(link.companions, *job);
    const auto show = [&](PointPicture picture) {
        link.Deliver({job, std::move(picture), job->files->uses, false});
    };
    for (const bool isThinned : {true, false}) {
        if (isThinned && !drawing.HasMany()) {
            continue;
        }
        PointPicture picture = drawing.Draw(isThinned, show);
        if (drawing.IsGivenUp()) {
            return;
        }
        link.Deliver({job, std::move(picture), job->files->uses, !isThinned});
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
