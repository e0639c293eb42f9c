#pragma once
#include <chrono>
#include <filesystem>
#include <functional>

namespace orvex {

/// Renames a damaged SQLite file and its journals to "NAME.damaged-1" (the first free number), so that a
/// fresh one can take its place and nothing is lost. Only one process does it at a time: `isDamaged` is asked
/// again when the others are done, since one of them may have put the file right. Returns the new name; empty
/// when nothing was renamed (not damaged any more, no rights, or others not done at `until`).
std::filesystem::path SetDamagedFileAside(const std::filesystem::path& file,
                                          std::chrono::steady_clock::time_point until,
                                          const std::function<bool()>& isDamaged);

}  // namespace orvex
