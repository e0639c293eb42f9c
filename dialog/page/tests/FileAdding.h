#pragma once
#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "dialog/page/FileAdder.h"
#include "support/ProgressIf.h"
#include "support/testing/Scripted.h"

namespace orvex::testing {

struct Row {
    std::wstring path;
    std::wstring note;
};

// Stops when a condition that the test names holds.
class ConditionalProgress final : public Kst::ProgressIf {
  public:
    std::function<bool()> stopWhen = [] { return false; };
    std::vector<std::wstring> texts;
    std::vector<std::uint64_t> positions;
    std::uint64_t total = 0;
    void SetRange(std::uint64_t range) override { total = range; }
    void SetText(const std::wstring& text) override { texts.push_back(text); }
    void SetPosition(std::uint64_t done) override { positions.push_back(done); }
    bool IsCancelled() override { return stopWhen(); }
};

class FileAdding : public ::testing::Test {
  protected:
    std::vector<std::wstring> Files(int count) {
        std::vector<std::wstring> paths;
        paths.reserve(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            paths.push_back(L"/data/" + std::to_wstring(i) + L".las");
        }
        return paths;
    }

    AddingSummary Add(AddingRequest request) {
        return Add(FileReader<Row>(inspect, Failed), std::move(request));
    }
    AddingSummary Add(const FileReader<Row>& reader, AddingRequest request) {
        FileReader<Row>::Rows listing;
        listing.append = [this](std::vector<Row> batch) {
            batchSizes.push_back(batch.size());
            std::move(batch.begin(), batch.end(), std::back_inserter(rows));
            shown();
        };
        listing.replace = [this](auto read) {
            for (auto& [row, record] : read) {
                rows.at(row) = std::move(record);
            }
            shown();
        };
        listing.remove = [this](const std::vector<std::size_t>& gone) {
            for (auto row = gone.rbegin(); row != gone.rend(); ++row) {
                rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(*row));
            }
        };
        listing.tellAwaited = [this](std::size_t files) { awaited.push_back(files); };
        listing.mustSkip = [this] { return mustSkip(); };
        return reader.Add(description, std::move(request), listing, prompts, progress);
    }

    static Row Failed(const std::wstring& path, const std::wstring& message) { return {path, message}; }

    std::vector<std::wstring> Paths() const {
        std::vector<std::wstring> paths;
        std::ranges::transform(rows, std::back_inserter(paths), &Row::path);
        return paths;
    }

    AddingDescription description{text::kLasReadingProgress, text::kLasManyFilesQuestion,
                                  text::kLasManyFilesCaption, 10, nullptr};
    std::function<Row(const std::wstring&)> inspect = [](const std::wstring& path) {
        return Row{path, L"ok"};
    };
    ConditionalProgress progress;
    ScriptedPrompts prompts;
    std::vector<Row> rows;
    std::vector<std::size_t> batchSizes;
    std::vector<std::size_t> awaited;     ///< numbers that were told
    std::function<void()> shown = [] {};  ///< after a change of the rows
    std::function<bool()> mustSkip = [] { return false; };
    std::atomic<bool> seen_ = false;
};

}  // namespace orvex::testing
