#pragma once
// Adding files to a page's grid: duplicate check, inspection on worker threads, progress, Escape, and the
// question whether to go on.
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "support/Text.h"

namespace Kst {
class ProgressIf;
}

namespace orvex {

class UserPrompts;

/// What differs between the pages.
struct AddingDescription {
    StringId progressText;           ///< two %d: the ordinal of the file and how many there are
    StringId confirmText = {};       ///< one %d: how many files there are; 0: never asked
    StringId confirmCaption = {};    ///< of that question
    std::size_t confirmAtRows = 10;  ///< the question comes when the grid reaches exactly this many rows
    /// A second path under which a file may be listed already (the LAS file of a LAZ file and the reverse);
    /// empty text or no function: none. Called on worker threads.
    std::function<std::wstring(const std::wstring& path)> buddy;
};

/// What is to be added to what.
struct AddingRequest {
    std::vector<std::wstring> paths;                             ///< full paths, added in this order
    std::unordered_multimap<std::wstring, std::wstring> listed;  ///< the paths in the grid by their PathKey
    std::size_t rowsBefore = 0;                                  ///< rows in the grid
    bool asksAtMany = true;  ///< the question of AddingDescription; false for files agreed to before
};

struct AddingSummary {
    std::size_t offered = 0;  ///< paths asked for
    std::size_t added = 0;    ///< records delivered
    std::size_t skipped = 0;  ///< listed already, under their own path or their buddy's
    bool stopped = false;     ///< by Escape or by the answer to the question; the rest was not looked at
    std::vector<std::wstring> unread;  ///< that rest, in its order
    std::wstring abandonedPath;        ///< the file that did not answer when the run was stopped; empty: none
};

namespace adding {

/// A record whose type only the page knows.
struct Inspected {
    virtual ~Inspected() = default;
};
using InspectedPtr = std::unique_ptr<Inspected>;

struct Steps {
    /// As many records as paths; on worker threads.
    std::function<std::vector<InspectedPtr>(std::span<const std::wstring> paths)> inspect;
    std::size_t pathsAtOnce = 1;                                   ///< at most, in one call
    std::function<void(std::vector<InspectedPtr> batch)> deliver;  ///< on this thread
};

/// How many threads read files from now on, 1 to 4: one more while reading costs so much that the threads are
/// not in each other's way, else one less. `files`: read by all of them since the last call, in `spent`
/// together; none while a drive is awaited.
std::size_t NextReaders(std::size_t readers, std::size_t files, std::chrono::nanoseconds spent);

AddingSummary Run(const AddingDescription& description, AddingRequest request, const Steps& steps,
                  UserPrompts& prompts, Kst::ProgressIf& progress);

}  // namespace adding

/// Text of the exception that is being handled, as the row of the file shows it.
std::wstring InspectionFailureText();

/// Reads files for a page whose rows show records of one type (movable), one by one or several in a call.
template <typename Record>
class FileReader {
  public:
    /// Reads one file. Runs on worker threads, on several at a time when reading takes long, which may
    /// outlive the page (a network drive that never answers): it must own whatever it touches.
    using Inspect = std::function<Record(const std::wstring& path)>;
    /// Reads several files in one call; returns as many records, in the order of the paths.
    using InspectSeveral = std::function<std::vector<Record>(std::span<const std::wstring> paths)>;
    /// Makes the record of a file whose inspection threw; on the worker threads too.
    using Failed = std::function<Record(const std::wstring& path, const std::wstring& message)>;
    /// Takes records into the grid, in the order of the paths: a batch at most every 30 ms or 100 records.
    using Deliver = std::function<void(std::vector<Record> batch)>;

    FileReader(Inspect inspect, Failed failed)
        : FileReader(
              [inspect = std::move(inspect)](std::span<const std::wstring> paths) {
                  std::vector<Record> records;
                  records.push_back(inspect(paths.front()));
                  return records;
              },
              1, std::move(failed)) {}
    /// `pathsAtOnce`: the most that one call is given. When a call throws, each of its files has failed.
    FileReader(InspectSeveral inspect, std::size_t pathsAtOnce, Failed failed)
        : inspect_(std::move(inspect)), pathsAtOnce_(pathsAtOnce), failed_(std::move(failed)) {}

    /// Has each file that is read from now on pass a further step, as `Inspect`; not those whose inspection
    /// threw.
    void AddStep(std::function<void(Record& record)> step) {
        inspect_ = [inspect = std::move(inspect_),
                    step = std::move(step)](std::span<const std::wstring> paths) {
            std::vector<Record> records = inspect(paths);
            std::ranges::for_each(records, step);
            return records;
        };
    }

    /// Returns when all files are read or the run was stopped. The caller opens the DialogProgress::Run and
    /// keeps its controls disabled meanwhile: events are handled. An exception of `deliver` ends the run and
    /// passes.
    AddingSummary Add(const AddingDescription& description, AddingRequest request, const Deliver& deliver,
                      UserPrompts& prompts, Kst::ProgressIf& progress) const;

  private:
    struct Holder final : adding::Inspected {
        explicit Holder(Record taken) : record(std::move(taken)) {}
        Record record;
    };

    static std::vector<Record> Read(const InspectSeveral& inspect, const Failed& failed,
                                    std::span<const std::wstring> paths);

    InspectSeveral inspect_;
    std::size_t pathsAtOnce_;
    Failed failed_;
};

template <typename Record>
std::vector<Record> FileReader<Record>::Read(const InspectSeveral& inspect, const Failed& failed,
                                             std::span<const std::wstring> paths) {
    try {
        return inspect(paths);
    } catch (...) {
        const std::wstring message = InspectionFailureText();
        std::vector<Record> records;
        for (const std::wstring& path : paths) {
            records.push_back(failed(path, message));
        }
        return records;
    }
}

template <typename Record>
AddingSummary FileReader<Record>::Add(const AddingDescription& description, AddingRequest request,
                                      const Deliver& deliver, UserPrompts& prompts,
                                      Kst::ProgressIf& progress) const {
    adding::Steps steps;
    steps.pathsAtOnce = pathsAtOnce_;
    steps.inspect = [inspect = inspect_, failed = failed_](std::span<const std::wstring> paths) {
        std::vector<adding::InspectedPtr> inspected;
        for (Record& record : Read(inspect, failed, paths)) {
            inspected.push_back(std::make_unique<Holder>(std::move(record)));
        }
        return inspected;
    };
    steps.deliver = [&deliver](std::vector<adding::InspectedPtr> batch) {
        std::vector<Record> records;
        records.reserve(batch.size());
        for (adding::InspectedPtr& inspected : batch) {
            records.push_back(std::move(static_cast<Holder&>(*inspected).record));
        }
        deliver(std::move(records));
    };
    return adding::Run(description, std::move(request), steps, prompts, progress);
}

}  // namespace orvex
