#pragma once
// Pages about the inspect command, made from its tables and the schema of its output.
#include <nlohmann/json_fwd.hpp>
#include <string>

namespace orvex {

/// The manual page, for man(1).
std::string ManualPage();

/// Completion of the command's options, for bash.
std::string BashCompletion();

/// Page of the documentation: options, exit codes, and each member of the output as `schema` describes it.
std::string MarkdownPage(const nlohmann::ordered_json& schema);

}  // namespace orvex
