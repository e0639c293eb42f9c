#pragma once
// Files of each kind to list, and reading them as the dialog does.
#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "benchmarks/Bench.h"
#include "dialog/page/FileAdder.h"
#include "support/ProgressIf.h"
#include "support/UserPrompts.h"

namespace orvex::bench {

/// LAS 1.4 files of a hundred points, each variant in another UTM zone.
Corpus::Kind LasFiles(std::size_t filesPerFolder);
/// Orthophotos: tiled, compressed, with overviews, each variant in another UTM zone.
Corpus::Kind Orthophotos(std::size_t filesPerFolder);
/// Photos of a drone: EXIF with maker notes, XMP, and 64 KiB that stand for the picture.
Corpus::Kind DronePhotos(std::size_t filesPerFolder);
/// KML files of a hundred placemarks.
Corpus::Kind KmlFiles(std::size_t filesPerFolder);

/// Answers every question with Yes.
class Agreeing final : public UserPrompts {
  public:
    PromptAnswer Show(const Prompt&) override { return PromptAnswer::Yes; }
    TaskAnswer ShowTask(const TaskPrompt&) override { return {PromptAnswer::Yes, false}; }
    PromptAnswer ShowReport(const ReportPrompt&) override { return PromptAnswer::Yes; }
};

/// Reads files on as many threads as the dialog's pages do. `inspect` returns the row of a path.
template <typename Row, typename Inspect>
std::vector<Row> ReadAsDialog(const std::vector<std::wstring>& paths, const Inspect& inspect) {
    const FileReader<Row> reader(inspect, [](const std::wstring&, const std::wstring&) { return Row(); });
    AddingDescription description;
    description.progressText = text::kRefreshProgress;
    std::vector<Row> rows;
    rows.reserve(paths.size());
    typename FileReader<Row>::Rows taken;
    taken.append = [&](std::vector<Row> batch) { std::ranges::move(batch, std::back_inserter(rows)); };
    taken.replace = [&](std::vector<std::pair<std::size_t, Row>> read) {
        for (auto& [row, record] : read) {
            rows[row] = std::move(record);
        }
    };
    taken.remove = [](const std::vector<std::size_t>&) {};
    Agreeing prompts;
    Kst::NullProgress progress;
    reader.Add(description, {paths, {}}, taken, prompts, progress);
    return rows;
}

}  // namespace orvex::bench
