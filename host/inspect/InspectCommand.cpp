#include "host/inspect/InspectCommand.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <ostream>
#include <thread>

#include "host/inspect/OrderedJobs.h"
#include "host/inspect/ReportWriter.h"
#include "host/terminal/Terminal.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/NaturalOrder.h"
#include "support/SignedUrl.h"
#include "support/Text.h"

namespace orvex {

namespace {

constexpr unsigned kMostJobs = 256;

struct Options {
    ReportFormat format = ReportFormat::Table;
    unsigned jobs = 0;                 ///< 0: one per processor
    const ReportKind* kind = nullptr;  ///< of all files; null: as their names imply
    bool help = false;
    std::vector<std::wstring> paths;
    std::wstring error;
};

/// True for what may have been meant as a link; a drive's colon is its path's second character, and Windows
/// has paths that begin with "\\?\".
bool IsLikeUrl(const std::wstring& text) {
    const std::size_t colon = std::min(text.find(L":/"), text.find(L":\\"));
    const bool isLink = text.find(L'?') != std::wstring::npos || (colon != std::wstring::npos && colon > 1);
    return isLink && !text.starts_with(L"\\\\");
}

/// A text about a path or an argument, as one line. A mistyped link gives access like one that is not.
std::wstring PathLine(StringId text, const std::wstring& path, const std::wstring& reason = {}) {
    return WithoutControls(FormatText(Text(text), {IsLikeUrl(path) ? ShownUrl(path) : path, reason}));
}

void ParseOption(const std::vector<std::wstring>& arguments, std::size_t& i, Options& options) {
    const std::wstring& argument = arguments[i];
    if (argument == L"--json") {
        options.format = ReportFormat::Json;
    } else if (argument == L"--csv") {
        options.format = ReportFormat::Csv;
    } else if (argument == L"--table") {
        options.format = ReportFormat::Table;
    } else if (argument == L"--help" || argument == L"-h") {
        options.help = true;
    } else if (const auto count = ValueOf(L"--jobs", arguments, i)) {
        const std::optional<std::uint64_t> jobs = ParseNumber(*count, 1, kMostJobs);
        options.jobs = static_cast<unsigned>(jobs.value_or(0));
        options.error = jobs ? L"" : FormatText(Text(text::kInspectJobsRange), {kMostJobs});
    } else if (const auto name = ValueOf(L"--as", arguments, i)) {
        options.kind = FindReportKind(*name);
        options.error = options.kind != nullptr ? L"" : Text(text::kInspectAsValues);
    } else {
        options.error = PathLine(text::kInspectUnknownOption, argument);
    }
}

Options ParseArguments(const std::vector<std::wstring>& arguments) {
    Options options;
    bool onlyPaths = false;
    for (std::size_t i = 0; i < arguments.size() && options.error.empty(); ++i) {
        if (!onlyPaths && arguments[i] == L"--") {
            onlyPaths = true;
        } else if (!onlyPaths && arguments[i].size() > 1 && arguments[i].front() == L'-') {
            ParseOption(arguments, i, options);
        } else {
            options.paths.push_back(arguments[i]);
        }
    }
    if (options.error.empty() && !options.help && options.paths.empty()) {
        options.error = Text(text::kInspectNoPath);
    }
    return options;
}

/// Files to read, and lines for the user about paths that do not exist, cannot be read or hold nothing.
struct InputPaths {
    std::vector<std::wstring> files;
    std::vector<std::wstring> failures;
    std::vector<std::wstring> remarks;
};

bool IsSearched(const std::wstring& path, const Options& options) {
    return options.kind == nullptr ? ReportKindOf(path) != nullptr : options.kind->IsSearched(path);
}

/// Files below a folder in natural order of their full paths. Links to folders are not followed (they can
/// form cycles). What cannot be read is added to the failures.
void SearchFolder(const std::wstring& top, const Options& options, InputPaths& inputs) {
    const std::size_t failuresBefore = inputs.failures.size();
    std::vector<std::wstring> found;
    std::vector<std::wstring> waiting{top};
    while (!waiting.empty()) {
        const std::wstring folder = std::move(waiting.back());
        waiting.pop_back();
        std::wstring hidden;  // of a folder whose names may be read, but not what they stand for
        SystemError error = ListFolder(folder, [&](FolderEntry entry) {
            if (entry.isLink && entry.kind != FileKind::File) {
                return true;
            }
            if (entry.kind == FileKind::NoAccess) {
                hidden = std::move(entry.path);
            } else if (entry.kind == FileKind::Folder) {
                waiting.push_back(std::move(entry.path));
            } else if (entry.kind == FileKind::File && IsSearched(entry.path, options)) {
                found.push_back(std::move(entry.path));
            }
            return true;
        });
        if (error == 0 && !hidden.empty()) {
            error = ListFolder(hidden, [](const FolderEntry&) { return false; });
        }
        if (error != 0) {
            inputs.failures.push_back(PathLine(text::kInspectUnreadable, folder, SystemErrorText(error)));
        }
    }
    if (found.empty() && inputs.failures.size() == failuresBefore) {
        inputs.remarks.push_back(PathLine(text::kInspectNothingFound, top));
    }
    SortNaturally(found);
    std::ranges::move(found, std::back_inserter(inputs.files));
}

InputPaths CollectInputPaths(const Options& options) {
    InputPaths inputs;
    for (const std::wstring& text : options.paths) {
        if (IsUrl(text)) {
            inputs.files.push_back(text);
            continue;
        }
        const std::wstring path = NativePath(text);
        const FileKind kind = KindOf(path);
        if (kind == FileKind::Missing) {
            inputs.failures.push_back(PathLine(text::kPathDoesNotExist, path));
        } else if (kind == FileKind::Folder || kind == FileKind::NoAccess) {
            SearchFolder(path, options, inputs);
        } else {
            inputs.files.push_back(path);
        }
    }
    return inputs;
}

/// What became of the files.
struct RunResult {
    bool isComplete = false;
    bool isUrlUnread = false;  ///< a URL leads to no file, or to none that can be read
};

RunResult WriteReports(const std::vector<std::wstring>& files, const Options& options,
                       const InspectStreams& streams) {
    RunResult result;
    const CloudCall call{streams.stop};
    const auto writer = MakeReportWriter(options.format, streams.out);
    ProgressLine counting(streams.err, streams.showProgress);
    const unsigned jobs =
        options.jobs != 0 ? options.jobs : std::max(1U, std::thread::hardware_concurrency());
    OrderedJobs<FileReport> work(files.size(), jobs,
                                 [&](std::size_t i) { return InspectFile(files[i], options.kind, call); });
    result.isComplete = work.Run(
        [&](std::size_t i, FileReport&& report) {
            writer->Write(report);
            result.isUrlUnread =
                result.isUrlUnread || report.cloudStatus.value_or(CloudStatus::Ok) != CloudStatus::Ok;
            if (counting.IsDue()) {
                counting.Tell(FormatText(Text(text::kInspectProgress), {i + 1, files.size()}));
            }
            return static_cast<bool>(streams.out);
        },
        streams.stop);
    writer->Finish();
    streams.out.flush();
    return result;
}

}  // namespace

bool NeedsNetwork(const std::vector<std::wstring>& arguments) {
    return std::ranges::any_of(arguments, IsUrl);
}

int RunInspectCommand(const std::vector<std::wstring>& arguments, const InspectStreams& streams) {
    const Options options = ParseArguments(arguments);
    if (!options.error.empty()) {
        WriteLine(streams.err, options.error);
        WriteLine(streams.err, Text(text::kInspectUsage));
        return kInspectUsage;
    }
    if (options.help) {
        WriteLine(streams.out, Text(text::kInspectUsage));
        return kInspectOk;
    }
    const InputPaths inputs = CollectInputPaths(options);
    const RunResult result = WriteReports(inputs.files, options, streams);
    for (const auto* lines : {&inputs.failures, &inputs.remarks}) {
        for (const std::wstring& line : *lines) {
            WriteLine(streams.err, line);
        }
    }
    if (!result.isComplete && streams.stop()) {
        return kInspectStopped;
    }
    if (!streams.out) {
        WriteLine(streams.err, Text(text::kInspectWriteFailed));
        return kInspectFailed;
    }
    return inputs.failures.empty() && !result.isUrlUnread ? kInspectOk : kInspectPathMissing;
}

}  // namespace orvex
