#pragma once
#include <string>
#include <vector>

namespace orvex {

/// GDAL's messages as sentences for the user: without the names of files and functions, each once.
std::vector<std::wstring> PlainMessages(const std::vector<std::string>& messages);

/// Why GDAL could not open a file, in plain words; empty when it did not say.
std::wstring PlainReason(const std::vector<std::string>& messages);

}  // namespace orvex
