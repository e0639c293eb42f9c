#pragma once
#include <chrono>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "host/app/RasterOverview.h"

namespace orvex {

/// Reads the overviews of rasters on worker threads. To be used from one thread.
class OverviewLoader {
  public:
    /// Reads one overview of at most `longSide` pixels; must come back soon once it is cancelled.
    using Read = std::function<RasterOverview(const std::wstring& path, int longSide,
                                              const std::function<bool()>& isCancelled)>;

    struct Loaded {
        std::wstring path;
        RasterOverview overview;
    };

    /// `loaded` is called on a worker thread when there is something to take, and never after the loader has
    /// gone.
    explicit OverviewLoader(std::function<void()> loaded, Read read = {});
    /// Cancels everything. What does not answer within `kPatience`, as a drive that has gone, is left to
    /// itself.
    ~OverviewLoader();
    OverviewLoader(const OverviewLoader&) = delete;
    OverviewLoader& operator=(const OverviewLoader&) = delete;

    /// The rasters whose overviews are wanted from now on: new ones are read in this order, those that are no
    /// longer among them are cancelled and forgotten. Of many rasters smaller overviews are read.
    void Want(const std::vector<std::wstring>& paths);
    /// What has been read since the last call, of what is still wanted.
    std::vector<Loaded> Take();
    /// True when nothing is being read or waits for it, and nothing waits to be taken.
    bool IsIdle() const;

    static constexpr std::chrono::milliseconds kPatience{1000};
    /// Pixels on the long side of each overview, so that `count` of them take bounded memory.
    static int LongSideFor(std::size_t count);

  private:
    struct Shared;

    void StartThreads();

    std::shared_ptr<Shared> shared_;
    std::vector<std::thread> threads_;
    std::set<std::wstring> wanted_;
};

}  // namespace orvex
