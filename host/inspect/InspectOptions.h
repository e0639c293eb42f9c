#pragma once
// Arguments of the inspect command: one table for parsing, --help, the manual page, the completion and the
// documentation.
#include <span>
#include <string>
#include <vector>

#include "host/inspect/ReportWriter.h"
#include "report/FileReport.h"
#include "support/Text.h"

namespace orvex {

/// Lowest severity of a finding that makes the command end with kInspectPathMissing.
enum class FailOn { Warning, Error, None };

struct InspectOptions {
    ReportFormat format = ReportFormat::Table;
    std::wstring formatOption;         ///< option that chose the format; empty for none
    unsigned jobs = 0;                 ///< 0: one per processor
    const ReportKind* kind = nullptr;  ///< of all files; null: as their names imply
    FailOn failOn = FailOn::None;
    bool namesEndWithNull = false;  ///< those on standard input
    bool quiet = false;
    bool progress = false;
    bool help = false;
    bool version = false;
    bool onlyPaths = false;           ///< "--" was seen
    std::vector<std::wstring> paths;  ///< kStandardInput stands for the names on standard input
    std::wstring error;               ///< a sentence; empty if the arguments are right
};

inline constexpr const wchar_t* kStandardInput = L"-";

/// Row in the table of options.
struct InspectOption {
    const wchar_t* name;     ///< "--json"
    const wchar_t* letter;   ///< "-q"; empty for none
    const wchar_t* value;    ///< placeholder of the value: "N"; empty for an option without one
    const wchar_t* choices;  ///< values that the completion offers, separated by blanks
    StringId help;
    /// Applies the option under its name with its value; returns what is wrong with it as a sentence, or
    /// nothing. Null: this row is documentation only.
    std::wstring (*apply)(InspectOptions& options, const wchar_t* name, const std::wstring& value);
};

std::span<const InspectOption> InspectOptionTable();

struct InspectExitCode {
    int code;
    StringId help;
};

std::span<const InspectExitCode> InspectExitCodeTable();

InspectOptions ParseInspectOptions(const std::vector<std::wstring>& arguments);

/// Language of texts that the arguments ask for, as after --language; English if they do not ask.
std::wstring InspectLanguage(const std::vector<std::wstring>& arguments);

/// Text of --help.
std::wstring InspectHelp();

/// A text about a path or an argument, as one line. A mistyped link gives access like one that is not, so its
/// signature is left out.
std::wstring PathLine(StringId text, const std::wstring& path, const std::wstring& reason = {});

}  // namespace orvex
