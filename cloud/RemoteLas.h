#pragma once
#include <chrono>
#include <cstdint>
#include <string>

#include "las/LasRow.h"
#include "orvexcommon/CloudAccount.h"

namespace orvex {

/// Most that a look into a remote file may cost.
inline constexpr std::uint64_t kMostRemoteBytes = std::uint64_t{512} << 10U;
inline constexpr int kMostRemoteReads = 40;
inline constexpr std::chrono::milliseconds kMostRemoteTime{120'000};

/// A look into a LAS, LAZ or COPC file on a server: its header and records, never its points.
struct RemoteLas {
    /// Its path is the URL without what gives access. Not loadable after a failure, with the failure's words.
    LasRow row;
    std::uint64_t transferred = 0;  ///< bytes received, without protocol headers
    CloudStatus status = CloudStatus::Ok;
};

/// Reads up to kMostRemoteBytes by up to kMostRemoteReads range requests; what they do not reach is a
/// finding. Ends after kMostRemoteTime. Never throws. Safe from any thread. The process must have a
/// QCoreApplication.
RemoteLas InspectRemoteLas(const std::wstring& url, const CloudCall& call = {});

/// The same through a reader. `shownUrl`: from ShownUrl.
RemoteLas InspectRemoteLas(RangeReader& reader, const std::wstring& shownUrl, const CloudCall& call = {},
                           std::chrono::milliseconds most = kMostRemoteTime);

}  // namespace orvex
