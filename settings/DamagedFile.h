#pragma once
#include <filesystem>

#include "settings/SqliteConnection.h"

namespace orvex {

/// True when the file is no sound SQLite file; false also when that cannot be found out now.
bool IsDamagedFile(const std::filesystem::path& file, const SqliteLimits& limits);

enum class AfreshResult {
    Emptied,  ///< copied and emptied
    Sound,    ///< another process has done it meanwhile
    Failed,   ///< no rights, no space, too large or no time
};

/// Copies a damaged SQLite file to "NAME.damaged-1" (the first free number) and empties it under SQLite's own
/// locks. It is not renamed: a process that still has it open would take the journal of the file in its place
/// for the renamed one's, and play it back. `kept` is the name of the copy when Emptied.
AfreshResult StartDamagedFileAfresh(const std::filesystem::path& file, const SqliteLimits& limits,
                                    std::filesystem::path& kept);

}  // namespace orvex
