#include "host/inspect/InspectCommand.h"

#include <algorithm>
#include <iterator>
#include <ostream>
#include <thread>
#include <utility>

#include "host/inspect/InspectNames.h"
#include "host/inspect/InspectOptions.h"
#include "host/inspect/OrderedJobs.h"
#include "host/inspect/ReportWriter.h"
#include "host/terminal/Terminal.h"
#include "orvexcommon/Version.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/NaturalOrder.h"
#include "support/Text.h"

namespace orvex {

namespace {

/// Files to read, and lines for the user about paths that do not exist, cannot be read or hold nothing.
struct InputPaths {
    std::vector<std::wstring> files;
    std::vector<std::wstring> failures;
    std::vector<std::wstring> remarks;
};

bool IsSearched(const std::wstring& path, const InspectOptions& options) {
    return options.kind == nullptr ? ReportKindOf(path) != nullptr : options.kind->IsSearched(path);
}

/// Collects the files to read, of folders in natural order of their full paths.
class PathSearch {
  public:
    PathSearch(const InspectOptions& options, const InspectStreams& streams)
        : options_(options), streams_(streams) {}

    /// Throws InspectNameError for names that nobody can have meant.
    InputPaths Run() {
        for (const std::wstring& path : options_.paths) {
            if (path == kStandardInput) {
                const std::vector<std::wstring> names =
                    ReadNames(streams_.read, options_.namesEndWithNull ? '\0' : '\n');
                std::ranges::for_each(names, [this](const std::wstring& name) { Add(name); });
            } else {
                Add(path);
            }
        }
        return std::move(inputs_);
    }

  private:
    void Add(const std::wstring& text) {
        if (streams_.stop()) {
            return;
        }
        if (IsUrl(text)) {
            inputs_.files.push_back(text);
            return;
        }
        const std::wstring path = NativePath(text);
        const FileKind kind = KindOf(path);
        if (kind == FileKind::Missing) {
            inputs_.failures.push_back(PathLine(text::kPathDoesNotExist, path));
        } else if (kind == FileKind::Folder || kind == FileKind::NoAccess) {
            SearchFolder(path);
        } else {
            inputs_.files.push_back(path);
        }
    }

    void SearchFolder(const std::wstring& top) {
        const std::size_t failuresBefore = inputs_.failures.size();
        std::vector<std::wstring> found;
        std::vector<std::wstring> waiting{top};
        while (!waiting.empty() && !streams_.stop()) {
            const std::wstring folder = std::move(waiting.back());
            waiting.pop_back();
            ListInto(folder, found, waiting);
        }
        if (found.empty() && inputs_.failures.size() == failuresBefore && !streams_.stop()) {
            inputs_.remarks.push_back(PathLine(text::kInspectNothingFound, top));
        }
        SortNaturally(found);
        std::ranges::move(found, std::back_inserter(inputs_.files));
    }

    /// Links to folders are not followed (they can form cycles). What cannot be read is added to the
    /// failures.
    void ListInto(const std::wstring& folder, std::vector<std::wstring>& found,
                  std::vector<std::wstring>& waiting) {
        std::wstring hidden;  // of a folder whose names may be read, but not what they stand for
        SystemError error = ListFolder(folder, [&](FolderEntry entry) {
            if (entry.isLink && entry.kind != FileKind::File) {
                return true;
            }
            if (entry.kind == FileKind::NoAccess) {
                hidden = std::move(entry.path);
            } else if (entry.kind == FileKind::Folder) {
                waiting.push_back(std::move(entry.path));
            } else if (entry.kind == FileKind::File && IsSearched(entry.path, options_)) {
                found.push_back(std::move(entry.path));
            }
            return !streams_.stop();
        });
        if (error == 0 && !hidden.empty()) {
            error = ListFolder(hidden, [](const FolderEntry&) { return false; });
        }
        if (error != 0) {
            inputs_.failures.push_back(PathLine(text::kInspectUnreadable, folder, SystemErrorText(error)));
        }
    }

    const InspectOptions& options_;
    const InspectStreams& streams_;
    InputPaths inputs_;
};

/// Counts the files that were read: on a terminal in one line, else in a line for each whole percent.
class FileCount {
  public:
    FileCount(const InspectStreams& streams, bool isAsked, std::size_t files)
        : err_(streams.err),
          line_(streams.err, isAsked && streams.isTerminal),
          tellsLines_(isAsked && !streams.isTerminal),
          files_(files) {}

    void Tell(std::size_t read) {
        const std::size_t percent = read * 100 / files_;
        const bool isLineDue = tellsLines_ && percent != std::exchange(percent_, percent);
        if (!isLineDue && !line_.IsDue()) {
            return;
        }
        const std::wstring text = FormatText(Text(text::kInspectProgress), {read, files_});
        line_.Tell(text);
        if (isLineDue) {
            WriteLine(err_, text);
            err_.flush();
        }
    }

  private:
    std::ostream& err_;
    ProgressLine line_;
    const bool tellsLines_;
    const std::size_t files_;
    std::size_t percent_ = 0;
};

/// What became of the files.
struct RunResult {
    bool isComplete = false;
    bool isUrlUnread = false;  ///< a URL leads to no file, or to none that can be read
    std::size_t failed = 0;    ///< files that have what --fail-on names
};

bool IsFailure(const FileReport& report, FailOn failOn) {
    const FindingSeverity least = failOn == FailOn::Error ? FindingSeverity::Error : FindingSeverity::Warning;
    return failOn != FailOn::None &&
           (!report.loadable || std::ranges::any_of(report.findings, [least](const Finding& finding) {
               return finding.severity >= least;
           }));
}

RunResult WriteReports(const std::vector<std::wstring>& files, const InspectOptions& options,
                       const InspectStreams& streams) {
    RunResult result;
    const CloudCall call{streams.stop};
    const auto writer = MakeReportWriter(options.format, streams.out);
    FileCount count(streams, options.progress, files.size());
    const unsigned jobs =
        options.jobs != 0 ? options.jobs : std::max(1U, std::thread::hardware_concurrency());
    OrderedJobs<FileReport> work(files.size(), jobs,
                                 [&](std::size_t i) { return InspectFile(files[i], options.kind, call); });
    result.isComplete =
        !streams.stop() && work.Run(
                               [&](std::size_t i, FileReport&& report) {
                                   writer->Write(report);
                                   result.isUrlUnread =
                                       result.isUrlUnread ||
                                       report.cloudStatus.value_or(CloudStatus::Ok) != CloudStatus::Ok;
                                   result.failed += IsFailure(report, options.failOn) ? 1 : 0;
                                   count.Tell(i + 1);
                                   return static_cast<bool>(streams.out);
                               },
                               streams.stop);
    writer->Finish();
    streams.out.flush();
    return result;
}

void WriteLines(std::ostream& out, const std::vector<std::wstring>& lines) {
    std::ranges::for_each(lines, [&](const std::wstring& line) { WriteLine(out, line); });
}

int RefuseArguments(const InspectStreams& streams, const std::wstring& error) {
    WriteLines(streams.err, {error, Text(text::kInspectUsage), Text(text::kInspectTryHelp)});
    return kInspectUsage;
}

/// Reads and prints the files; returns the exit code.
int InspectPaths(const InputPaths& inputs, const InspectOptions& options, const InspectStreams& streams) {
    const RunResult result = WriteReports(inputs.files, options, streams);
    WriteLines(streams.err, inputs.failures);
    if (!options.quiet) {
        WriteLines(streams.err, inputs.remarks);
    }
    if (!result.isComplete && streams.stop()) {
        return kInspectStopped;
    }
    if (!streams.out) {
        WriteLine(streams.err, Text(text::kInspectWriteFailed));
        return kInspectFailed;
    }
    if (result.failed > 0) {
        WriteLine(streams.err,
                  FormatText(Text(text::kInspectFoundToFail), {result.failed, inputs.files.size()}));
    }
    return inputs.failures.empty() && !result.isUrlUnread && result.failed == 0 ? kInspectOk
                                                                                : kInspectPathMissing;
}

}  // namespace

bool NeedsNetwork(const std::vector<std::wstring>& arguments) {
    return std::ranges::any_of(arguments, [](const std::wstring& argument) {
        return argument == kStandardInput || IsUrl(argument);
    });
}

int RunInspectCommand(const std::vector<std::wstring>& arguments, const InspectStreams& streams) {
    const InspectOptions options = ParseInspectOptions(arguments);
    if (!options.error.empty()) {
        return RefuseArguments(streams, options.error);
    }
    if (options.help || options.version) {
        WriteLine(streams.out, options.help ? InspectHelp() : L"orvex-inspect " ORVEX_VERSION_TEXT);
        return kInspectOk;
    }
    InputPaths inputs;
    try {
        inputs = PathSearch(options, streams).Run();
    } catch (const InspectNameError& error) {
        return RefuseArguments(streams, error.Text());
    }
    return InspectPaths(inputs, options, streams);
}

}  // namespace orvex
