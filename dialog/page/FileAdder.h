#pragma once
// Adding files to a page's grid: duplicate check, inspection on worker threads, progress, Escape, and the
// question whether to go on.
#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "dialog/page/ReadQueue.h"
#include "support/Drives.h"
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
    DriveAccess drives = {};
};

struct AddingSummary {
    std::size_t offered = 0;           ///< paths asked for
    std::size_t added = 0;             ///< rows of files that were read
    std::size_t skipped = 0;           ///< listed already, under their own path or their buddy's
    bool stopped = false;              ///< by Escape or by the answer to the question
    std::vector<std::wstring> unread;  ///< the files that were not read then, or were skipped, in their order
    std::wstring abandonedPath;        ///< the file that did not answer when the run was stopped; empty: none
};

namespace adding {

/// A record that takes the place of one. Rows are counted from 0 on in each run.
struct Replacement {
    std::size_t row;
    InspectedPtr record;
};

struct Steps {
    /// As many records as paths; on worker threads.
    std::function<std::vector<InspectedPtr>(std::span<const std::wstring> paths)> inspect;
    std::size_t pathsAtOnce = 1;  ///< at most, in one call
    /// The record of a file that is awaited. This one and those below are called on this thread.
    std::function<InspectedPtr(const std::wstring& path, const std::wstring& text)> await;
    std::function<void(std::vector<InspectedPtr> batch)> append;
    std::function<void(std::vector<Replacement> read)> replace;
    std::function<void(const std::vector<std::size_t>& rows)> remove;
    std::function<void(std::size_t files)> tellAwaited;
    std::function<bool()> mustSkip;
};

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
    /// Where records go. Rows are counted from 0 on in each run; their numbers ascend.
    struct Rows {
        /// Takes records to the end, in the order of the paths: a batch at most every 30 ms or 100 records.
        std::function<void(std::vector<Record> batch)> append;
        /// Takes the records of files that were awaited.
        std::function<void(std::vector<std::pair<std::size_t, Record>> read)> replace;
        /// Removes rows of files that were awaited and are not read in this run, or are listed already.
        std::function<void(const std::vector<std::size_t>& rows)> remove;
        /// Turns the record of a failure into one of a file that is awaited; may be empty.
        std::function<void(Record& record, const std::wstring& text)> await = {};
        /// Called when the number of files that are awaited has changed; may be empty.
        std::function<void(std::size_t files)> tellAwaited = {};
        /// True once when these are not to be waited for; may be empty.
        std::function<bool()> mustSkip = {};
    };

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
    /// keeps its controls disabled meanwhile: events are handled. An exception of `rows` ends the run and
    /// passes.
    AddingSummary Add(const AddingDescription& description, AddingRequest request, const Rows& rows,
                      UserPrompts& prompts, Kst::ProgressIf& progress) const;

  private:
    struct Holder final : adding::Inspected {
        explicit Holder(Record taken) : record(std::move(taken)) {}
        Record record;
    };

    static std::vector<Record> Read(const InspectSeveral& inspect, const Failed& failed,
                                    std::span<const std::wstring> paths);
    static Record& In(const adding::InspectedPtr& inspected) {
        return static_cast<Holder&>(*inspected).record;
    }
    void AddInspection(adding::Steps& steps, const std::function<void(const std::wstring&)>& reach) const;
    void AddRows(adding::Steps& steps, const Rows& rows) const;

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
void FileReader<Record>::AddInspection(adding::Steps& steps,
                                       const std::function<void(const std::wstring&)>& reach) const {
    steps.pathsAtOnce = pathsAtOnce_;
    steps.inspect = [inspect = inspect_, failed = failed_, reach](std::span<const std::wstring> paths) {
        if (reach) {
            std::ranges::for_each(paths, reach);
        }
        std::vector<adding::InspectedPtr> inspected;
        for (Record& record : Read(inspect, failed, paths)) {
            inspected.push_back(std::make_unique<Holder>(std::move(record)));
        }
        return inspected;
    };
}

template <typename Record>
void FileReader<Record>::AddRows(adding::Steps& steps, const Rows& rows) const {
    steps.await = [this, &rows](const std::wstring& path, const std::wstring& text) {
        Record record = failed_(path, text);
        if (rows.await) {
            rows.await(record, text);
        }
        return std::make_unique<Holder>(std::move(record));
    };
    steps.append = [&rows](const std::vector<adding::InspectedPtr>& batch) {
        std::vector<Record> records;
        records.reserve(batch.size());
        for (const adding::InspectedPtr& inspected : batch) {
            records.push_back(std::move(In(inspected)));
        }
        rows.append(std::move(records));
    };
    steps.replace = [&rows](const std::vector<adding::Replacement>& read) {
        std::vector<std::pair<std::size_t, Record>> records;
        records.reserve(read.size());
        for (const adding::Replacement& one : read) {
            records.emplace_back(one.row, std::move(In(one.record)));
        }
        rows.replace(std::move(records));
    };
    steps.remove = rows.remove;
    steps.tellAwaited = rows.tellAwaited;
    steps.mustSkip = rows.mustSkip;
}

template <typename Record>
AddingSummary FileReader<Record>::Add(const AddingDescription& description, AddingRequest request,
                                      const Rows& rows, UserPrompts& prompts,
                                      Kst::ProgressIf& progress) const {
    adding::Steps steps;
    AddInspection(steps, request.drives.reach);
    AddRows(steps, rows);
    return adding::Run(description, std::move(request), steps, prompts, progress);
}

}  // namespace orvex
