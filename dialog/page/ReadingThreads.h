#pragma once
// The threads that read the files of a list.
#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>
#include <unordered_map>
#include <utility>
#include <vector>

#include "dialog/page/FileAdder.h"
#include "dialog/page/ReadQueue.h"

namespace orvex::adding {

/// The paths that are listed and those that are to be, by key; in the order of the list.
class KnownPaths {
  public:
    using Namesakes = std::pair<std::wstring, std::wstring>;  ///< paths with one key

    KnownPaths(std::unordered_multimap<std::wstring, std::wstring> listed,
               std::function<std::wstring(const std::wstring&)> buddy)
        : listed_(std::move(listed)), buddy_(std::move(buddy)) {}

    /// Returns those before that may be the same file; nullopt if one certainly is. The path is known
    /// afterwards.
    std::optional<std::vector<Namesakes>> Add(const std::wstring& path);

  private:
    void AddNamesakes(const std::wstring& path, std::vector<Namesakes>& namesakes) const;

    std::unordered_multimap<std::wstring, std::wstring> listed_;
    const std::function<std::wstring(const std::wstring&)> buddy_;
};

/// Files of a list and the threads that read them: one that plans, and others for every drive. May outlive
/// the run.
class ReadingThreads {
  public:
    using Place = ReadQueue::Place;
    using Taken = ReadQueue::Taken;

    /// `buddy`: as AddingDescription::buddy.
    ReadingThreads(AddingRequest request, std::function<std::wstring(const std::wstring&)> buddy,
                   const Steps& steps);

    const std::vector<std::wstring>& Paths() const { return paths_; }

    /// Reads until all are read, or the run is stopped or closed. No thread is left when it returns.
    void Run(const std::stop_token& stop);

    /// Safe from any thread, like those below. See ReadQueue.
    std::vector<Taken> Take();
    std::vector<Taken> TakeRest();
    /// Gives up the files that are awaited; returns those of `places` that were.
    std::vector<Place> Skip(std::vector<Place> places);
    /// The first file that is being read; empty if none is.
    std::wstring PathInWork();
    /// Nothing more is read from now on.
    void Close();

  private:
    using Namesakes = KnownPaths::Namesakes;
    struct Work {
        ReadQueue::Call* call;
        std::vector<std::vector<Namesakes>> namesakes;  ///< of each of its files
    };

    void Begin(const std::stop_token& stop);
    void End(const std::stop_token& stop);
    void Fail();
    void Plan(const std::stop_token& stop);
    void AddFile(Place place, std::optional<std::vector<Namesakes>> namesakes);
    void Staff();
    void Wake();
    void Read(ReadQueue::Drive& drive, const std::stop_token& stop);
    bool HasEnded() const { return closed_ || (isPlanned_ && queue_.Unread() == 0); }
    bool HasEnded(const ReadQueue::Drive& drive) const {
        return HasEnded() || (isPlanned_ && !ReadQueue::HasUnclaimed(drive));
    }
    std::optional<Work> Claim(ReadQueue::Drive& drive, const std::stop_token& stop);
    std::vector<InspectedPtr> Inspect(const Work& work) const;

    const std::vector<std::wstring> paths_;
    KnownPaths known_;  ///< of the thread that plans, as the next two
    DriveFinder driveOf_;
    std::unordered_map<std::wstring, std::wstring> drives_;  ///< by folder
    const std::function<std::vector<InspectedPtr>(std::span<const std::wstring>)> inspect_;
    std::mutex lock_;
    std::condition_variable_any changed_;
    ReadQueue queue_;
    std::unordered_map<Place, std::vector<Namesakes>> namesakes_;  ///< of files that are not read yet
    bool isPlanned_ = false;
    bool closed_ = false;
    std::optional<std::stop_token> stop_;  ///< while it runs
    std::vector<std::jthread> threads_;
    std::exception_ptr failure_;
};

}  // namespace orvex::adding
