#include "dialog/FolderScan.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <mutex>
#include <set>
#include <span>
#include <utility>

#include "dialog/BackgroundRun.h"
#include "support/NaturalOrder.h"
#include "support/ProgressIf.h"
#include "support/Text.h"

namespace orvex {
namespace {

namespace fs = std::filesystem;

class Scan {
  public:
    Scan(const ScanRequest& request, std::stop_token stop) : request_(request), stop_(std::move(stop)) {}

    ScanResult Run() {
        for (const std::wstring& path : request_.paths) {
            std::error_code error;
            if (fs::is_directory(ToPath(path), error)) {
                AddTree(ToPath(path));
            } else if (HasExtension(path, request_.extensions)) {
                result_.files.push_back(path);
            } else {
                ++result_.ignored;
            }
            if (Stopped()) {
                break;
            }
        }
        return std::move(result_);
    }

  private:
    bool Stopped() { return result_.stopped = result_.stopped || stop_.stop_requested(); }

    void AddTree(const fs::path& top) {
        const std::size_t first = result_.files.size();
        std::vector<fs::path> waiting{top};
        while (!waiting.empty() && !Stopped()) {
            const fs::path folder = std::move(waiting.back());
            waiting.pop_back();
            if (IsNew(folder)) {
                AddFolder(folder, waiting);
            }
        }
        SortNaturally(std::span(result_.files).subspan(first));
    }

    // Two links to one folder, or a link to a folder above, have the same canonical path.
    bool IsNew(const fs::path& folder) {
        std::error_code error;
        const fs::path canonical = fs::canonical(folder, error);
        return visited_.insert(error ? folder : canonical).second;
    }

    void AddFolder(const fs::path& folder, std::vector<fs::path>& waiting) {
        std::error_code error;
        fs::directory_iterator entry(folder, error);
        for (; !error && entry != fs::directory_iterator() && !Stopped(); entry.increment(error)) {
            std::error_code unknown;  // of one entry: a link that leads nowhere is no file and no folder
            if (entry->is_directory(unknown)) {
                if (request_.recursive) {
                    waiting.push_back(entry->path());
                }
            } else if (entry->is_regular_file(unknown)) {
                std::wstring path = FromPath(entry->path());
                if (HasExtension(path, request_.extensions)) {
                    result_.files.push_back(std::move(path));
                }
            }
        }
        if (error) {
            result_.unreadable.push_back(FromPath(folder));
        }
    }

    const ScanRequest& request_;
    std::stop_token stop_;
    std::set<fs::path> visited_;
    ScanResult result_;
};

}  // namespace

bool HasExtension(const std::wstring& path, const std::vector<std::wstring>& extensions) {
    return std::find(extensions.begin(), extensions.end(), UpperExtensionOf(path)) != extensions.end();
}

ScanResult ScanPaths(const ScanRequest& request, const std::stop_token& stop) {
    return Scan(request, stop).Run();
}

ScanResult ScanPathsWithProgress(ScanRequest request, const std::wstring& progressText,
                                 Kst::ProgressIf& progress) {
    struct Shared {
        ScanRequest request;
        std::mutex lock;
        ScanResult result;
    };
    const auto shared = std::make_shared<Shared>();
    shared->request = std::move(request);
    progress.SetRange(0);
    progress.SetText(progressText);
    const RunEnd end = RunInBackground(
        [shared](const std::stop_token& stop) {
            ScanResult result = ScanPaths(shared->request, stop);
            const std::lock_guard guard(shared->lock);
            shared->result = std::move(result);
        },
        progress, [] { return PollResult::GoOn; });
    const std::lock_guard guard(shared->lock);
    ScanResult result = end == RunEnd::Abandoned ? ScanResult() : std::move(shared->result);
    result.stopped = result.stopped || end == RunEnd::Abandoned;
    return result;
}

}  // namespace orvex
