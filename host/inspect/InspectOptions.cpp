#include "host/inspect/InspectOptions.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

#include "host/inspect/InspectCommand.h"
#include "host/terminal/Terminal.h"
#include "support/Format.h"
#include "support/SignedUrl.h"

namespace orvex {
namespace {

constexpr unsigned kMostJobs = 256;
constexpr const wchar_t* kEnglish = L"en";
constexpr std::wstring_view kLanguages[] = {kEnglish, L"de"};

template <ReportFormat Format>
std::wstring ChooseFormat(InspectOptions& options, const wchar_t* name, const std::wstring& /*value*/) {
    const std::wstring earlier = std::exchange(options.formatOption, name);
    options.format = Format;
    return earlier.empty() || earlier == name ? L""
                                              : FormatText(Text(text::kInspectOneFormat), {earlier, name});
}

template <bool InspectOptions::*Member>
std::wstring Switch(InspectOptions& options, const wchar_t* /*name*/, const std::wstring& /*value*/) {
    options.*Member = true;
    return {};
}

std::wstring SetKind(InspectOptions& options, const wchar_t* /*name*/, const std::wstring& value) {
    options.kind = FindReportKind(value);
    return options.kind != nullptr ? L"" : Text(text::kInspectAsValues);
}

std::wstring SetJobs(InspectOptions& options, const wchar_t* /*name*/, const std::wstring& value) {
    const std::optional<std::uint64_t> jobs = ParseNumber(value, 1, kMostJobs);
    options.jobs = static_cast<unsigned>(jobs.value_or(0));
    return jobs ? L"" : FormatText(Text(text::kInspectJobsRange), {kMostJobs});
}

// The language itself is chosen before the first text is asked for.
std::wstring CheckLanguage(InspectOptions& /*options*/, const wchar_t* /*name*/, const std::wstring& value) {
    return std::ranges::find(kLanguages, value) != std::end(kLanguages) ? L""
                                                                        : Text(text::kInspectLanguageValues);
}

std::wstring SetFailOn(InspectOptions& options, const wchar_t* /*name*/, const std::wstring& value) {
    constexpr std::pair<std::wstring_view, FailOn> kValues[] = {
        {L"error", FailOn::Error}, {L"warning", FailOn::Warning}, {L"none", FailOn::None}};
    for (const auto& [word, failOn] : kValues) {
        if (value == word) {
            options.failOn = failOn;
            return {};
        }
    }
    return Text(text::kInspectFailOnValues);
}

using O = InspectOptions;
constexpr InspectOption kOptions[] = {
    {L"--table", L"", L"", L"", text::kInspectOptionTable, ChooseFormat<ReportFormat::Table>},
    {L"--csv", L"", L"", L"", text::kInspectOptionCsv, ChooseFormat<ReportFormat::Csv>},
    {L"--json", L"", L"", L"", text::kInspectOptionJson, ChooseFormat<ReportFormat::Json>},
    {L"--ndjson", L"", L"", L"", text::kInspectOptionNdjson, ChooseFormat<ReportFormat::Ndjson>},
    {L"--as", L"", L"KIND", L"las raster dem feature photo", text::kInspectOptionAs, SetKind},
    {L"--fail-on", L"", L"LEVEL", L"error warning none", text::kInspectOptionFailOn, SetFailOn},
    {L"--jobs", L"", L"N", L"", text::kInspectOptionJobs, SetJobs},
    {L"--language", L"", L"LANGUAGE", L"en de", text::kInspectOptionLanguage, CheckLanguage},
    {L"--null", L"-0", L"", L"", text::kInspectOptionNull, Switch<&O::namesEndWithNull>},
    {L"--progress", L"", L"", L"", text::kInspectOptionProgress, Switch<&O::progress>},
    {L"--quiet", L"-q", L"", L"", text::kInspectOptionQuiet, Switch<&O::quiet>},
    {L"--help", L"-h", L"", L"", text::kInspectOptionHelp, Switch<&O::help>},
    {L"--version", L"", L"", L"", text::kInspectOptionVersion, Switch<&O::version>},
    {L"--", L"", L"", L"", text::kInspectOptionEnd, Switch<&O::onlyPaths>},
    {kStandardInput, L"", L"", L"", text::kInspectOptionInput, nullptr},
};

constexpr InspectExitCode kExitCodes[] = {
    {kInspectOk, text::kInspectExitOk},           {kInspectPathMissing, text::kInspectExitPath},
    {kInspectUsage, text::kInspectExitUsage},     {kInspectFailed, text::kInspectExitFailed},
    {kInspectStopped, text::kInspectExitStopped},
};

/// Applies the option at `i`, and leaves `i` at its last argument. Returns what is wrong with it.
std::wstring ParseOption(const std::vector<std::wstring>& arguments, std::size_t& i,
                         InspectOptions& options) {
    for (const InspectOption& option : kOptions) {
        if (option.apply == nullptr) {
            continue;
        }
        std::optional<std::wstring> value;
        if (*option.value != L'\0') {
            value = ValueOf(option.name, arguments, i);
        } else if (arguments[i] == option.name || arguments[i] == option.letter) {
            value.emplace();
        }
        if (value) {
            return option.apply(options, option.name, *value);
        }
    }
    return PathLine(text::kInspectUnknownOption, arguments[i]);
}

bool IsOption(const std::wstring& argument) {
    return argument.size() > 1 && argument.front() == L'-';
}

/// Error of arguments that are right one by one.
std::wstring Contradiction(const InspectOptions& options) {
    if (options.paths.empty()) {
        return Text(text::kInspectNoPath);
    }
    const bool isInputRead = std::ranges::find(options.paths, kStandardInput) != options.paths.end();
    return options.namesEndWithNull && !isInputRead ? Text(text::kInspectNullAlone) : L"";
}

/// True for what may have been meant as a link; a drive's colon is its path's second character, and Windows
/// has paths that begin with "\\?\".
bool IsLikeUrl(const std::wstring& text) {
    const std::size_t colon = std::min(text.find(L":/"), text.find(L":\\"));
    const bool isLink = text.find(L'?') != std::wstring::npos || (colon != std::wstring::npos && colon > 1);
    return isLink && !text.starts_with(L"\\\\");
}

/// The text in lines of at most 80 characters; those behind the first begin with `indent` blanks.
std::wstring Wrapped(const std::wstring& text, std::size_t indent) {
    constexpr std::size_t kWidth = 80;
    std::wstring lines;
    std::size_t column = indent;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find(L' ', start), text.size());
        const bool isFirst = column == indent;
        if (!isFirst && column + 1 + end - start > kWidth) {
            lines += L'\n' + std::wstring(indent, L' ');
            column = indent;
        } else if (!isFirst) {
            lines += L' ';
            ++column;
        }
        lines += text.substr(start, end - start);
        column += end - start;
        start = end + 1;
    }
    return lines;
}

/// A name in a column of its own, and the help beside it, or below it where the name is long.
std::wstring HelpLine(const std::wstring& name, const std::wstring& help) {
    constexpr std::size_t kColumn = 24;
    const std::wstring blanks = name.size() + 2 < kColumn ? std::wstring(kColumn - name.size(), L' ')
                                                          : L'\n' + std::wstring(kColumn, L' ');
    return name + blanks + Wrapped(help, kColumn) + L'\n';
}

}  // namespace

std::span<const InspectOption> InspectOptionTable() {
    return kOptions;
}

std::span<const InspectExitCode> InspectExitCodeTable() {
    return kExitCodes;
}

InspectOptions ParseInspectOptions(const std::vector<std::wstring>& arguments) {
    InspectOptions options;
    for (std::size_t i = 0; i < arguments.size() && options.error.empty(); ++i) {
        if (!options.onlyPaths && IsOption(arguments[i])) {
            options.error = ParseOption(arguments, i, options);
        } else {
            // Behind "--" even this is a file.
            const bool isFile = options.onlyPaths && arguments[i] == kStandardInput;
            options.paths.push_back(isFile ? L"./-" : arguments[i]);
        }
    }
    if (options.error.empty() && !options.help && !options.version) {
        options.error = Contradiction(options);
    }
    return options;
}

std::wstring InspectLanguage(const std::vector<std::wstring>& arguments) {
    std::wstring language = kEnglish;
    for (std::size_t i = 0; i < arguments.size() && arguments[i] != L"--"; ++i) {
        if (std::optional<std::wstring> value = ValueOf(L"--language", arguments, i)) {
            language = *std::move(value);
        }
    }
    return language;
}

std::wstring InspectHelp() {
    std::wstring help = Text(text::kInspectUsage) + L"\n\n" + Wrapped(Text(text::kInspectAbout), 0);
    help += L"\n\n" + Text(text::kInspectOptionsHeading) + L":\n";
    for (const InspectOption& option : kOptions) {
        std::wstring form = L"  ";
        form.append(option.letter).append(*option.letter == L'\0' ? L"" : L", ");
        form.append(option.name).append(*option.value == L'\0' ? L"" : L" ").append(option.value);
        help += HelpLine(form, Text(option.help));
    }
    help += L"\n" + Text(text::kInspectExitHeading) + L":\n";
    for (const InspectExitCode& code : kExitCodes) {
        help += HelpLine(L"  " + std::to_wstring(code.code), Text(code.help));
    }
    help.pop_back();
    return help;
}

std::wstring PathLine(StringId text, const std::wstring& path, const std::wstring& reason) {
    return WithoutControls(FormatText(Text(text), {IsLikeUrl(path) ? ShownUrl(path) : path, reason}));
}

}  // namespace orvex
