#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orvex {

class SystemSettings;

/// How the files of the DEM page are to be converted and loaded. The member values are what a fresh machine
/// shows.
struct DemPageOptions {
    bool detailColumns = true;
    bool append = true;
    bool ignoreCrs = true;
    bool pyramid = true;
    bool readWrite = true;                                         ///< false: read-only
    std::wstring lasFolder = L"<ORVEX_PROJECT_PATH>\\DEM Import";  ///< as typed
    std::int32_t thinning = 16;                                    ///< 2 to 256
    // Chosen anew each time; not stored.
    std::int32_t lasVersion = 5;   ///< version code of the list item, see support/LasFormat.h
    std::int32_t pointFormat = 0;  ///< 0 to 8

    friend bool operator==(const DemPageOptions&, const DemPageOptions&) = default;
};

/// The host's settings; what it does not hold, or makes no sense, has its value of a fresh machine.
DemPageOptions ReadDemPageOptions(const SystemSettings& settings);

/// Writes everything that is stored but the thinning factor, which is checked first.
void SaveDemPageOptions(SystemSettings& settings, const DemPageOptions& options);
void SaveDemThinning(SystemSettings& settings, std::int32_t thinning);

/// The thinning factor in a text: its first nine characters, read as a leading integer. None when it is below
/// 2 or no number; more than 256 gives 256.
std::optional<std::int32_t> ParseDemThinning(std::wstring_view text);

}  // namespace orvex
