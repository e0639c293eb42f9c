#pragma once
// The order in which files are read and their rows appear.
#include <chrono>
#include <cstddef>
#include <deque>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace orvex::adding {

/// A record whose type only the page knows.
struct Inspected {
    virtual ~Inspected() = default;
};
using InspectedPtr = std::unique_ptr<Inspected>;

using Clock = std::chrono::steady_clock;

/// How many calls read files of a drive from now on, 1 to 4: one more while reading costs so much that the
/// threads are not in each other's way, else one less. `files`: read by all of them since the last call, in
/// `spent` together; none while a drive is awaited.
std::size_t NextReaders(std::size_t readers, std::size_t files, std::chrono::nanoseconds spent);

/// Files of a list, read in any order by calls that last as long as they like, and taken in the order of the
/// list. They are queued by drive, and on each drive by folder. A call that takes longer than `patience` is
/// overdue: until it returns no other file of its folder is claimed, and the files of that folder which are
/// not read yet are awaited, those of the whole drive when four of its calls are. So are the files of a drive
/// that is slow: it has held up files of other drives for so long altogether. Awaited files hold up nothing:
/// they are taken as such when their turn comes, and once more when they are read. Not thread-safe.
class ReadQueue {
  public:
    using Place = std::size_t;  ///< of a file in the list
    struct Drive;
    struct Folder;
    struct Call;

    struct Taken {
        enum class State { Read, Listed, Awaited, Skipped };
        Place place;
        State state;
        InspectedPtr record;  ///< of a file that was read, else null
    };

    /// `patience`: see DriveAccess.
    ReadQueue(std::size_t pathsAtOnce, Clock::duration patience);
    ~ReadQueue();

    /// The folder of that name; null before it is added.
    Folder* FindFolder(const std::wstring& name);
    Folder& AddFolder(const std::wstring& name, const std::wstring& drive);
    /// Adds the next file of the list. Null: it is listed already and not to be read.
    void AddFile(Folder* folder);

    std::vector<Drive*> Drives();
    /// True if a call may read files of the drive now: there are some, and room for what is found in them.
    bool CanClaim(const Drive& drive) const;
    /// True if such a call needs a thread more than the drive has, and may have it: of the threads that are
    /// not in overdue calls there are 16 in all, but each drive has one in any case.
    bool LacksThread(const Drive& drive) const;
    void AddThread(Drive& drive);
    void RemoveThread(Drive& drive);
    /// True if a thread of the drive has no call.
    static bool HasIdleThread(const Drive& drive);
    /// True if files of the drive wait for a call, now or later.
    static bool HasUnclaimed(const Drive& drive);
    /// Begins to read the next files, as many as one call is given. Only if CanClaim. Valid until Return.
    Call& Claim(Drive& drive, Clock::time_point now);
    static const std::vector<Place>& Places(const Call& call);
    /// Ends it. `records`: as many as it has places; null for files that turned out to be listed.
    void Return(Call& call, std::vector<InspectedPtr> records, Clock::time_point now);

    /// Those that can be taken: files that were taken as awaited and have been read since, then the next ones
    /// of the list. To be called regularly: how many calls read at once is decided anew each time.
    std::vector<Taken> Take(Clock::time_point now);
    /// The rest, in its order, without waiting: what is not read is skipped.
    std::vector<Taken> TakeRest();
    /// Gives up the files that are awaited: they are taken as skipped when their turn comes.
    void Skip();
    /// True if a file was given up before it was read.
    bool WasSkipped(Place place) const;

    /// Number of files that are still to be read, or are being read; without those that were skipped.
    std::size_t Unread() const { return unread_; }
    /// The first file that is being read; nullopt if none is.
    std::optional<Place> FirstInWork() const;

  private:
    enum class State { Unread, Reading, Read };
    struct File {
        Folder* folder;
        State state = State::Unread;
        InspectedPtr record = {};
    };

    static void Offer(Folder& folder);
    bool HasRoom(const Drive& drive) const;
    void MarkOverdue(Clock::time_point now);
    void EndOverdue(const Call& call);
    void NoteDelay(Clock::time_point now);
    void GiveUp(Folder& folder);
    Taken TakeRead(Place place);
    void TakeLate(std::vector<Taken>& taken);

    const std::size_t pathsAtOnce_;
    const Clock::duration patience_;
    std::vector<File> files_;
    std::map<std::wstring, std::unique_ptr<Drive>> drives_;
    std::unordered_map<std::wstring, std::unique_ptr<Folder>> folders_;
    std::list<Call> calls_;
    Place next_ = 0;           ///< the first file whose turn has not come
    std::vector<Place> late_;  ///< read since they were taken as awaited
    std::size_t unread_ = 0;
    std::size_t threads_ = 0;  ///< of all drives
    std::size_t overdue_ = 0;  ///< calls, of all drives
    Clock::time_point lastTake_{};
};

}  // namespace orvex::adding
