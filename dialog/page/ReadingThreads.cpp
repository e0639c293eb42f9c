#include "dialog/page/ReadingThreads.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <system_error>

#include "support/Files.h"

namespace orvex::adding {
namespace {

constexpr std::size_t kPlannedAtOnce = 256;

// Letters' case does not tell files apart, except two that are there, on a system where it does.
bool IsOneFile(const KnownPaths::Namesakes& namesakes) {
    const auto& [a, b] = namesakes;
    return KindOf(a) == FileKind::Missing || KindOf(b) == FileKind::Missing || IsSameFile(a, b);
}

}  // namespace

std::optional<std::vector<KnownPaths::Namesakes>> KnownPaths::Add(const std::wstring& path) {
    std::vector<Namesakes> namesakes;
    AddNamesakes(path, namesakes);
    const std::wstring buddy = buddy_ ? buddy_(path) : std::wstring();
    if (!buddy.empty()) {
        AddNamesakes(buddy, namesakes);
    }
    if (std::ranges::any_of(namesakes, [](const Namesakes& both) { return both.first == both.second; })) {
        return std::nullopt;
    }
    listed_.emplace(PathKey(path), path);
    return namesakes;
}

void KnownPaths::AddNamesakes(const std::wstring& path, std::vector<Namesakes>& namesakes) const {
    const auto [first, last] = listed_.equal_range(PathKey(path));
    std::transform(first, last, std::back_inserter(namesakes), [&](const auto& entry) {
        return Namesakes{path, entry.second};
    });
}

ReadingThreads::ReadingThreads(AddingRequest request, std::function<std::wstring(const std::wstring&)> buddy,
                               const Steps& steps)
    : paths_(std::move(request.paths)),
      known_(std::move(request.listed), std::move(buddy)),
      driveOf_(std::move(request.drives.driveOf)),
      inspect_(steps.inspect),
      queue_(steps.pathsAtOnce, std::chrono::duration_cast<Clock::duration>(request.drives.patience)) {}

void ReadingThreads::Run(const std::stop_token& stop) {
    Begin(stop);
    try {
        Plan(stop);
    } catch (...) {
        Fail();
    }
    End(stop);
    if (failure_) {
        std::rethrow_exception(failure_);
    }
}

std::vector<ReadingThreads::Taken> ReadingThreads::Take() {
    const std::lock_guard guard(lock_);
    std::vector<Taken> taken = queue_.Take(Clock::now());
    Staff();
    Wake();
    return taken;
}

std::vector<ReadingThreads::Taken> ReadingThreads::TakeRest() {
    const std::lock_guard guard(lock_);
    closed_ = true;
    changed_.notify_all();
    return queue_.TakeRest();
}

std::vector<ReadingThreads::Place> ReadingThreads::Skip(std::vector<Place> places) {
    const std::lock_guard guard(lock_);
    queue_.Skip();
    changed_.notify_all();
    std::erase_if(places, [this](Place place) { return !queue_.WasSkipped(place); });
    return places;
}

std::wstring ReadingThreads::PathInWork() {
    const std::lock_guard guard(lock_);
    const std::optional<Place> place = queue_.FirstInWork();
    return place ? paths_[*place] : std::wstring();
}

void ReadingThreads::Close() {
    std::vector<Taken> dropped;
    const std::lock_guard guard(lock_);
    closed_ = true;
    dropped = queue_.TakeRest();
    changed_.notify_all();
}

void ReadingThreads::Begin(const std::stop_token& stop) {
    const std::lock_guard guard(lock_);
    stop_ = stop;
}

void ReadingThreads::End(const std::stop_token& stop) {
    std::vector<std::jthread> threads;  // waited for without the lock, which they need
    std::unique_lock guard(lock_);
    isPlanned_ = true;
    changed_.notify_all();
    changed_.wait(guard, stop, [this] { return HasEnded(); });
    stop_.reset();
    threads.swap(threads_);
    guard.unlock();
}

void ReadingThreads::Fail() {
    Close();
    const std::lock_guard guard(lock_);
    failure_ = std::current_exception();
}

void ReadingThreads::Plan(const std::stop_token& stop) {
    if (!driveOf_) {
        driveOf_ = FindDrivesByName();
    }
    for (std::size_t first = 0; first < paths_.size() && !stop.stop_requested();) {
        const std::size_t end = std::min(first + kPlannedAtOnce, paths_.size());
        std::vector<std::optional<std::vector<Namesakes>>> planned;
        for (std::size_t i = first; i < end; ++i) {
            planned.push_back(known_.Add(paths_[i]));
            if (const std::wstring folder = FolderOf(paths_[i]); !drives_.contains(folder)) {
                drives_.emplace(folder, driveOf_(folder));
            }
        }
        const std::lock_guard guard(lock_);
        for (; first < end; ++first) {
            AddFile(first, std::move(planned[planned.size() - (end - first)]));
        }
        Staff();
        changed_.notify_all();
    }
}

// With the lock held.
void ReadingThreads::AddFile(Place place, std::optional<std::vector<Namesakes>> namesakes) {
    if (!namesakes) {
        queue_.AddFile(nullptr);
        return;
    }
    const std::wstring name = FolderOf(paths_[place]);
    ReadQueue::Folder* const folder = queue_.FindFolder(name);
    queue_.AddFile(folder != nullptr ? folder : &queue_.AddFolder(name, drives_.at(name)));
    if (!namesakes->empty()) {
        namesakes_.emplace(place, *std::move(namesakes));
    }
}

// With the lock held. Where the system refuses a thread, those that there are do the work; one is asked
// for again the next time.
void ReadingThreads::Staff() {
    if (!stop_ || stop_->stop_requested() || closed_) {
        return;
    }
    for (ReadQueue::Drive* const drive : queue_.Drives()) {
        if (queue_.LacksThread(*drive)) {
            try {
                threads_.emplace_back([this, drive, stop = *stop_] { Read(*drive, stop); });
                queue_.AddThread(*drive);
            } catch (const std::system_error&) {
                return;
            }
        }
    }
}

// With the lock held. Only if a thread that waits has something to do: all of them would wake up.
void ReadingThreads::Wake() {
    const auto isExpected = [this](const ReadQueue::Drive* drive) {
        return ReadQueue::HasIdleThread(*drive) && (queue_.CanClaim(*drive) || HasEnded(*drive));
    };
    if (std::ranges::any_of(queue_.Drives(), isExpected)) {
        changed_.notify_all();
    }
}

void ReadingThreads::Read(ReadQueue::Drive& drive, const std::stop_token& stop) {
    try {
        while (const std::optional<Work> work = Claim(drive, stop)) {
            std::vector<InspectedPtr> records = Inspect(*work);
            const std::lock_guard guard(lock_);
            queue_.Return(*work->call, std::move(records), Clock::now());
            if (HasEnded()) {
                changed_.notify_all();
            }
        }
    } catch (...) {
        Fail();
    }
}

// The next files to be read in one call; nullopt when there is nothing left to do, and the thread ends.
std::optional<ReadingThreads::Work> ReadingThreads::Claim(ReadQueue::Drive& drive,
                                                          const std::stop_token& stop) {
    std::unique_lock guard(lock_);
    changed_.wait(guard, stop, [&] { return HasEnded(drive) || queue_.CanClaim(drive); });
    if (HasEnded(drive) || stop.stop_requested()) {
        queue_.RemoveThread(drive);
        return std::nullopt;
    }
    Work work{&queue_.Claim(drive, Clock::now()), {}};
    for (const Place place : ReadQueue::Places(*work.call)) {
        const auto known = namesakes_.extract(place);
        work.namesakes.push_back(known.empty() ? std::vector<Namesakes>() : known.mapped());
    }
    return work;
}

// As many records as files; null for one that is listed already. Without the lock: files are looked at,
// on a drive that may not answer.
std::vector<InspectedPtr> ReadingThreads::Inspect(const Work& work) const {
    const std::vector<Place>& places = ReadQueue::Places(*work.call);
    std::vector<std::wstring> paths;
    std::vector<std::size_t> positions;
    for (std::size_t i = 0; i < places.size(); ++i) {
        if (std::ranges::none_of(work.namesakes[i], IsOneFile)) {
            paths.push_back(paths_[places[i]]);
            positions.push_back(i);
        }
    }
    std::vector<InspectedPtr> records(places.size());
    if (!paths.empty()) {
        std::vector<InspectedPtr> read = inspect_(paths);
        for (std::size_t i = 0; i < positions.size(); ++i) {
            records[positions[i]] = std::move(read[i]);
        }
    }
    return records;
}

}  // namespace orvex::adding
