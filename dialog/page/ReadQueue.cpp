#include "dialog/page/ReadQueue.h"

#include <algorithm>
#include <utility>

namespace orvex::adding {
namespace {

constexpr std::size_t kMostReaders = 4;
// Time for one file from which another thread is worth it: a LAS file on a local drive takes half of it, a
// raster several times as much.
constexpr auto kWorthAReader = std::chrono::microseconds(100);
constexpr std::size_t kMostOverdue = 4;   // calls on a drive; it is not asked further meanwhile
constexpr std::size_t kMostThreads = 16;  // of all drives, without those in overdue calls
constexpr std::size_t kMostKept = 256;    // files of a drive that are read ahead of the grid
// A window that was busy for longer has not held up anything itself.
constexpr Clock::duration kLongestStep = std::chrono::milliseconds(50);

}  // namespace

struct ReadQueue::Folder {
    Drive& drive;
    std::deque<Place> unread = {};
    std::size_t reading = 0;
    std::size_t overdue = 0;  ///< of those
    bool isSkipped = false;
};

struct ReadQueue::Drive {
    std::map<Place, Folder*> offered = {};  ///< folders of which files may be claimed, by the first of these
    std::size_t unclaimed = 0;              ///< files, in all folders
    std::size_t threads = 0;
    std::size_t wanted = 1;   ///< calls at once, without those that are overdue
    std::size_t calls = 0;    ///< that have not returned
    std::size_t overdue = 0;  ///< of those
    std::size_t kept = 0;     ///< files claimed and not taken yet
    std::size_t ready = 0;    ///< of those: read before their turn
    std::size_t read = 0;     ///< files since the last adaption
    Clock::duration spent{};  ///< on them
    Clock::duration heldUp{};
    bool isSlow = false;
    bool isSkipped = false;

    bool IsAwaited() const { return isSlow || overdue >= kMostOverdue; }
};

struct ReadQueue::Call {
    Drive& drive;
    Clock::time_point since;
    std::vector<Place> places = {};
    bool isOverdue = false;
};

std::size_t NextReaders(std::size_t readers, std::size_t files, std::chrono::nanoseconds spent) {
    const bool isWorthOneMore = spent >= kWorthAReader * files;
    return isWorthOneMore ? std::min(readers + 1, kMostReaders) : std::max<std::size_t>(readers - 1, 1);
}

ReadQueue::ReadQueue(std::size_t pathsAtOnce, Clock::duration patience)
    : pathsAtOnce_(pathsAtOnce), patience_(patience) {}

ReadQueue::~ReadQueue() = default;

ReadQueue::Folder* ReadQueue::FindFolder(const std::wstring& name) {
    const auto found = folders_.find(name);
    return found == folders_.end() ? nullptr : found->second.get();
}

ReadQueue::Folder& ReadQueue::AddFolder(const std::wstring& name, const std::wstring& drive) {
    std::unique_ptr<Drive>& queue = drives_[drive];
    if (queue == nullptr) {
        queue = std::make_unique<Drive>();
    }
    return *folders_.emplace(name, std::make_unique<Folder>(Folder{*queue})).first->second;
}

void ReadQueue::AddFile(Folder* folder) {
    const Place place = files_.size();
    files_.push_back({folder, folder == nullptr ? State::Read : State::Unread});
    if (folder == nullptr || folder->isSkipped || folder->drive.isSkipped) {
        return;
    }
    folder->unread.push_back(place);
    ++folder->drive.unclaimed;
    ++unread_;
    if (folder->unread.size() == 1) {
        Offer(*folder);
    }
}

void ReadQueue::Offer(Folder& folder) {
    if (folder.overdue == 0 && !folder.unread.empty()) {
        folder.drive.offered.emplace(folder.unread.front(), &folder);
    }
}

std::vector<ReadQueue::Drive*> ReadQueue::Drives() {
    std::vector<Drive*> drives;
    for (const auto& [name, drive] : drives_) {
        drives.push_back(drive.get());
    }
    return drives;
}

// For the files for which the list waits there is room always.
bool ReadQueue::HasRoom(const Drive& drive) const {
    return !drive.offered.empty() && (drive.kept < kMostKept || drive.offered.begin()->first <= next_);
}

bool ReadQueue::CanClaim(const Drive& drive) const {
    return HasRoom(drive) && drive.overdue < kMostOverdue && drive.calls - drive.overdue < drive.wanted;
}

bool ReadQueue::LacksThread(const Drive& drive) const {
    const bool isAllowed = drive.threads == drive.overdue || threads_ < kMostThreads + overdue_;
    return isAllowed && CanClaim(drive) && !HasIdleThread(drive);
}

void ReadQueue::AddThread(Drive& drive) {
    ++drive.threads;
    ++threads_;
}

void ReadQueue::RemoveThread(Drive& drive) {
    --drive.threads;
    --threads_;
}

bool ReadQueue::HasIdleThread(const Drive& drive) {
    return drive.threads > drive.calls;
}

bool ReadQueue::HasUnclaimed(const Drive& drive) {
    return drive.unclaimed > 0;
}

ReadQueue::Call& ReadQueue::Claim(Drive& drive, Clock::time_point now) {
    Call& call = calls_.emplace_back(Call{drive, now});
    ++drive.calls;
    while (call.places.size() < pathsAtOnce_ && HasRoom(drive)) {
        Folder& folder = *drive.offered.begin()->second;
        drive.offered.erase(drive.offered.begin());
        const Place place = folder.unread.front();
        folder.unread.pop_front();
        Offer(folder);
        files_[place].state = State::Reading;
        ++folder.reading;
        --drive.unclaimed;
        ++drive.kept;
        call.places.push_back(place);
    }
    return call;
}

const std::vector<ReadQueue::Place>& ReadQueue::Places(const Call& call) {
    return call.places;
}

void ReadQueue::Return(Call& call, std::vector<InspectedPtr> records, Clock::time_point now) {
    Drive& drive = call.drive;
    for (std::size_t i = 0; i < call.places.size(); ++i) {
        const Place place = call.places[i];
        File& file = files_[place];
        --file.folder->reading;
        if (file.folder->isSkipped) {
            file.state = State::Unread;
            --drive.kept;
            continue;
        }
        file.state = State::Read;
        file.record = std::move(records[i]);
        --unread_;
        if (place < next_) {
            late_.push_back(place);
        } else {
            ++drive.ready;
        }
    }
    --drive.calls;
    drive.read += call.places.size();
    drive.spent += now - call.since;
    EndOverdue(call);
    calls_.remove_if([&](const Call& one) { return &one == &call; });
}

void ReadQueue::MarkOverdue(Clock::time_point now) {
    for (Call& call : calls_) {
        if (call.isOverdue || now - call.since < patience_) {
            continue;
        }
        call.isOverdue = true;
        ++call.drive.overdue;
        ++overdue_;
        for (const Place place : call.places) {
            Folder& folder = *files_[place].folder;
            if (folder.overdue++ == 0 && !folder.unread.empty()) {
                call.drive.offered.erase(folder.unread.front());
            }
        }
    }
}

void ReadQueue::EndOverdue(const Call& call) {
    if (!call.isOverdue) {
        return;
    }
    --call.drive.overdue;
    --overdue_;
    for (const Place place : call.places) {
        Folder& folder = *files_[place].folder;
        --folder.overdue;
        Offer(folder);
    }
}

// The next file holds up those of other drives that are read already.
void ReadQueue::NoteDelay(Clock::time_point now) {
    const Clock::duration step = std::min(now - std::exchange(lastTake_, now), kLongestStep);
    if (next_ == files_.size()) {
        return;
    }
    Drive& first = files_[next_].folder->drive;
    const bool holdsUp = std::ranges::any_of(
        drives_, [&](const auto& entry) { return entry.second.get() != &first && entry.second->ready > 0; });
    if (holdsUp) {
        first.heldUp += step;
        first.isSlow = first.isSlow || first.heldUp >= patience_;
    }
}

ReadQueue::Taken ReadQueue::TakeRead(Place place) {
    File& file = files_[place];
    if (file.folder != nullptr) {
        --file.folder->drive.kept;
    }
    const auto state = file.record == nullptr ? Taken::State::Listed : Taken::State::Read;
    return {place, state, std::move(file.record)};
}

void ReadQueue::TakeLate(std::vector<Taken>& taken) {
    for (const Place place : std::exchange(late_, {})) {
        taken.push_back(TakeRead(place));
    }
}

std::vector<ReadQueue::Taken> ReadQueue::Take(Clock::time_point now) {
    MarkOverdue(now);
    std::vector<Taken> taken;
    TakeLate(taken);
    for (; next_ < files_.size(); ++next_) {
        Folder* const folder = files_[next_].folder;
        if (files_[next_].state == State::Read) {
            if (folder != nullptr) {
                --folder->drive.ready;
            }
            taken.push_back(TakeRead(next_));
        } else if (WasSkipped(next_)) {
            taken.push_back({next_, Taken::State::Skipped, nullptr});
        } else if (folder->overdue > 0 || folder->drive.IsAwaited()) {
            taken.push_back({next_, Taken::State::Awaited, nullptr});
        } else {
            break;
        }
    }
    NoteDelay(now);
    for (const auto& [name, drive] : drives_) {
        drive->wanted =
            NextReaders(drive->wanted, std::exchange(drive->read, 0), std::exchange(drive->spent, {}));
    }
    return taken;
}

std::vector<ReadQueue::Taken> ReadQueue::TakeRest() {
    std::vector<Taken> taken;
    TakeLate(taken);
    for (; next_ < files_.size(); ++next_) {
        const bool isRead = files_[next_].state == State::Read;
        taken.push_back(isRead ? TakeRead(next_) : Taken{next_, Taken::State::Skipped, nullptr});
    }
    return taken;
}

void ReadQueue::Skip() {
    for (const auto& [name, drive] : drives_) {
        drive->isSkipped = drive->isSkipped || drive->IsAwaited();
    }
    for (const auto& [name, folder] : folders_) {
        if (!folder->isSkipped && (folder->overdue > 0 || folder->drive.isSkipped)) {
            GiveUp(*folder);
        }
    }
}

void ReadQueue::GiveUp(Folder& folder) {
    folder.isSkipped = true;
    unread_ -= folder.unread.size() + folder.reading;
    folder.drive.unclaimed -= folder.unread.size();
    if (folder.overdue == 0 && !folder.unread.empty()) {
        folder.drive.offered.erase(folder.unread.front());
    }
    folder.unread.clear();
}

bool ReadQueue::WasSkipped(Place place) const {
    const File& file = files_[place];
    return file.state != State::Read && (file.folder->isSkipped || file.folder->drive.isSkipped);
}

std::optional<ReadQueue::Place> ReadQueue::FirstInWork() const {
    std::optional<Place> first;
    for (const Call& call : calls_) {
        for (const Place place : call.places) {
            if (!WasSkipped(place)) {
                first = std::min(first.value_or(place), place);
            }
        }
    }
    return first;
}

}  // namespace orvex::adding
