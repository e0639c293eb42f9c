#pragma once
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace orvex::testing {

/// What was changed is as before once this is released.
using Guard = std::shared_ptr<void>;

/// Gives the platform's store a place that nothing else uses, empty at first and removed in the end: two
/// SQLite files, or a key of the registry. One at a time.
Guard UseEmptyStore();
/// The machine's root of that store, to which something has been written, can only be read.
Guard DenyMachineWrites();
/// Nothing can be written to a folder and the files in it.
Guard DenyWritesIn(const std::filesystem::path& folder);

using Words = std::vector<std::wstring>;

/// Work of a child process; defined, and called by main, in the test program. Returns the exit code.
int ChildMain(const Words& words);
/// Runs a child process for each of `children` at the same time. Returns their exit codes, -1 if killed.
std::vector<int> RunChildren(const std::vector<Words>& children);

}  // namespace orvex::testing
