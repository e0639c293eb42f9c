#include "dialog/page/FolderScan.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <set>
#include <span>
#include <utility>

#include "dialog/page/BackgroundRun.h"
#include "dialog/page/PromptLines.h"
#include "support/DataKinds.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/NaturalOrder.h"
#include "support/ProgressIf.h"
#include "support/Text.h"

namespace orvex {
namespace {

class Scan {
  public:
    Scan(const ScanRequest& request, std::stop_token stop) : request_(request), stop_(std::move(stop)) {}

    ScanResult Run() {
        for (const std::wstring& path : request_.paths) {
            const std::wstring file = StandInFor(path);
            const bool isListed = HasExtension(file, request_.extensions);
            if (FolderExists(path) && !(isListed && file != path)) {
                AddTree(path);
            } else if (isListed) {
                result_.files.push_back(file);
            } else {
                result_.ignored.push_back(path);
            }
            if (Stopped()) {
                break;
            }
        }
        return std::move(result_);
    }

  private:
    const std::vector<std::wstring>& FolderExtensions() const {
        return request_.folderExtensions.empty() ? request_.extensions : request_.folderExtensions;
    }

    bool Stopped() { return result_.stopped = result_.stopped || stop_.stop_requested(); }

    void AddTree(const std::wstring& top) {
        const std::size_t first = result_.files.size();
        const std::size_t firstOther = result_.others.size();
        std::vector<std::wstring> waiting{top};
        while (!waiting.empty() && !Stopped()) {
            const std::wstring folder = std::move(waiting.back());
            waiting.pop_back();
            // Two links to one folder, or a link to a folder above, lead to the same name.
            if (visited_.insert(CanonicalPath(folder)).second) {
                AddFolder(folder, waiting);
            }
        }
        SortNaturally(std::span(result_.files).subspan(first));
        SortNaturally(std::span(result_.others).subspan(firstOther));
    }

    void AddFolder(const std::wstring& folder, std::vector<std::wstring>& waiting) {
        bool isHidden = false;  // its names may be read, but not what they stand for
        const SystemError error = ListFolder(folder, [&](FolderEntry entry) {
            isHidden = isHidden || (entry.kind == FileKind::NoAccess && !entry.isLink);
            if (entry.kind == FileKind::Folder && request_.recursive) {
                waiting.push_back(std::move(entry.path));
            } else if (entry.kind == FileKind::File) {
                AddFile(std::move(entry.path));
            }
            return !Stopped();
        });
        if (error != 0 || isHidden) {
            result_.unreadable.push_back(folder);
        }
    }

    void AddFile(std::wstring path) {
        if (HasExtension(path, FolderExtensions())) {
            result_.files.push_back(std::move(path));
        } else if (!HasExtension(path, request_.extensions) && DataKindOf(path).has_value()) {
            result_.others.push_back(std::move(path));
        }
    }

    const ScanRequest& request_;
    std::stop_token stop_;
    std::set<std::wstring> visited_;
    ScanResult result_;
};

}  // namespace

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

std::optional<Prompt> ScanPrompt(const ScanResult& found, const ScanTexts& texts, bool isOffering) {
    Prompt prompt{{}, Text(texts.caption), PromptIcon::Information, PromptButtons::Ok};
    if (!found.unreadable.empty()) {
        prompt.icon = PromptIcon::Error;
        prompt.text = Text(text::kFoldersNotSearched) + L"\n" +
                      PromptLines(found.unreadable, [](const std::wstring& path) { return path; });
    } else if (!found.stopped && !found.ignored.empty()) {
        prompt.text = FormatText(Text(texts.ignored), {found.ignored.size()});
        prompt.caption = Text(text::kFilesLeftOutCaption);
    } else if (!found.stopped && found.files.empty() && !isOffering) {
        prompt.text = Text(texts.nothingFound);
        prompt.icon = texts.nothingFoundIcon;
    } else {
        return std::nullopt;
    }
    return prompt;
}

}  // namespace orvex
