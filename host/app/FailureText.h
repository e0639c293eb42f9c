#pragma once
#include <string>
#include <vector>

namespace orvex {

/// Why something could not be done with a file.
struct FileFailure {
    std::wstring path;
    std::wstring cause;  ///< plain words
};

/// One message for many files: the heading, then each file with its cause (the cause alone where it names the
/// file by itself); of a long list the first ones and how many more there are.
std::wstring FailureText(const std::wstring& heading, const std::vector<FileFailure>& failures);

}  // namespace orvex
