#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "cloud/RemoteLas.h"

namespace Kst {
class ProgressIf;
}

namespace orvex {

/// What was found of one of the URLs.
struct Inspected {
    std::size_t index;  ///< into the URLs
    std::shared_ptr<const RemoteLas> remote;
};

/// Reads a remote file, without its points; on worker threads.
using InspectRemote = std::function<RemoteLas(const std::wstring& url, const CloudCall& call)>;

/// Looks into remote files, a few at a time, with progress and Escape. `deliver` gets what was found, now and
/// then and at the end, on this thread; a file during which the user stopped is not among it. The caller
/// opens the DialogProgress::Run.
void InspectRemotes(std::vector<std::wstring> urls, const InspectRemote& inspect, Kst::ProgressIf& progress,
                    const std::function<void(std::vector<Inspected> batch)>& deliver);

}  // namespace orvex
