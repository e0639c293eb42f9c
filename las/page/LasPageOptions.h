#pragma once
#include <cstdint>
#include <optional>
#include <string_view>

namespace orvex {

class OptionStore;

/// Kinds of companion index that the host builds; the numbers are those of the record and of the stored item.
enum class LasPyramidType : std::int32_t { None = 0, OrvexLas = 1, Qvr = 2 };

/// What happens to the original LAS files when OrvexLAS files are written; numbers as above.
enum class LasBackupOption : std::int32_t { Overwrite = 0, Backup = 1, BackupAndCompress = 2 };

/// How the files of the LAS page are to be loaded. The member values are what a fresh machine shows.
struct LasPageOptions {
    bool readWrite = false;
    bool footprintsOnly = false;
    bool append = true;
    std::int32_t thinning = 16;  ///< 2 to 256
    bool detailColumns = false;
    bool convertExistingQvr = false;
    LasPyramidType pyramidType = LasPyramidType::OrvexLas;
    LasBackupOption backup = LasBackupOption::Backup;
    bool reCreateOrvexLas = false;
    // Chosen anew each time; no stored item.
    bool ignoreIncompatibleCrs = false;
    bool loadCorruptFiles = false;

    friend bool operator==(const LasPageOptions&, const LasPageOptions&) = default;
};

/// The stored options. What is not stored, or makes no sense, has its value of a fresh machine; the older
/// on/off item decides the pyramid type as long as no type is stored.
LasPageOptions ReadLasPageOptions(const OptionStore& store);

/// Writes the options that have a stored item, always in the same order. A store that refuses is ignored: the
/// choice still holds for this run.
void SaveLasPageOptions(const OptionStore& store, const LasPageOptions& options);

/// The thinning factor in a text: its first ten characters, read as a leading integer. None when it is below
/// 2 or no number; more than 256 gives 256.
std::optional<std::int32_t> ParseThinning(std::wstring_view text);

}  // namespace orvex
