#pragma once
#include <cstddef>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

#include "report/FileReport.h"

namespace orvex {

/// Version of the object's members; docs/inspect.schema.json describes it. It grows when a member changes its
/// meaning or goes, not when one is added.
inline constexpr int kReportSchema = 1;

/// A report as an object; its members do not depend on the kind of file, those that it has not are null.
nlohmann::ordered_json FileReportJson(const FileReport& report);

/// Appends a value as text: two blanks of indentation per level, lists of numbers on one line, each number
/// as the shortest decimal that reads back as the same one. NaN and infinity, which JSON lacks, become null.
/// `depth`: level of the line that the value begins on; nullopt: everything on one line.
void AppendJson(std::string& out, const nlohmann::ordered_json& value, std::optional<std::size_t> depth);

}  // namespace orvex
