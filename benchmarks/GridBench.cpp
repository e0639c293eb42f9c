// Sorting, filtering and scrolling of the grid with 100,000 rows, and what its time grows by from 10,000 rows
// on. Times are given as ratios to work that cannot be avoided, done in the same run, so that figures of
// different machines compare.
#include <QApplication>
#include <QScrollBar>
#include <QTableView>
#include <algorithm>
#include <chrono>
#include <ctime>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <numeric>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "benchmarks/Bench.h"
#include "crs/LayerAssignment.h"
#include "dialog/grid/GridFilter.h"
#include "dialog/grid/GridView.h"
#include "support/DesktopQt.h"
#include "support/NaturalOrder.h"
#include "support/Text.h"

namespace {

using namespace orvex;

constexpr std::size_t kRows = 100'000;
constexpr int kRepeats = 5;

constexpr GridColumn kColumns[] = {
    {.name = "name", .width = 200, .frozen = true, .footer = FooterKind::Count},
    {.name = "size", .width = 100, .kind = CellKind::Number, .format = L"%.2f", .footer = FooterKind::Sum},
    {.name = "folder", .width = 300},
    {.name = "crs", .width = 100},
    {.name = "state", .width = 200, .takesSpare = true},
    {.name = "points", .width = 100, .kind = CellKind::Number, .format = L"%.0f", .footer = FooterKind::Sum},
};

struct File {
    std::wstring name;
    double size;
};

// The same files in every run, unsorted.
std::vector<File> MakeFiles(std::size_t rows = kRows) {
    std::vector<File> files;
    files.reserve(rows);
    std::uint32_t state = 12345;
    for (std::size_t i = 0; i < rows; ++i) {
        state = state * 1664525U + 1013904223U;
        files.push_back({L"survey_2021_tile_" + std::to_wstring(state >> 12) + L".las", state / 1000.0});
    }
    return files;
}

class FilesModel : public GridModel {
  public:
    explicit FilesModel(std::size_t rows = kRows) : GridModel({std::begin(kColumns), std::end(kColumns)}) {
        std::vector<File> files = MakeFiles(rows);
        AppendRecords(files.size(), [&] { files_ = std::move(files); });
    }

    void Remove(const std::vector<std::size_t>& records) {
        RemoveRecords(records, [&] { EraseAt(files_, records); });
    }
    void Clear() {
        ClearRecords([this] { files_.clear(); });
    }

  protected:
    std::size_t RecordCount() const override { return files_.size(); }
    GridCell Cell(std::size_t record, int column) const override {
        switch (column) {
            case 0:
                return files_[record].name;
            case 1:
                return files_[record].size;
            case 2:
                return std::wstring(L"/data/surveys/2021/tiles");
            case 3:
                return std::wstring(record % 7 == 0 ? L"EPSG:25833" : L"EPSG:25832");
            case 4:
                return std::wstring(record % 5 == 0 ? L"The file has no coordinate system." : L"OK");
            default:
                return files_[record].size * 1000;
        }
    }

  private:
    std::vector<File> files_;
};

/// The shortest of several runs in milliseconds; `prepare` runs before each and is not counted.
template <class Prepare, class Run>
double Shortest(const Prepare& prepare, const Run& run,
                double (*time)(const Run&) = bench::Milliseconds<Run>) {
    double shortest = std::numeric_limits<double>::infinity();
    for (int i = 0; i < kRepeats; ++i) {
        prepare();
        shortest = std::min(shortest, time(run));
    }
    return shortest;
}

/// Processor time in milliseconds: a long run shares the machine with other programs, a short one hardly.
template <class Run>
double ProcessorTime(const Run& run) {
    const std::clock_t start = std::clock();
    run();
    return static_cast<double>(std::clock() - start) * 1e3 / CLOCKS_PER_SEC;
}

/// std::stable_sort of row numbers over keys that are there already.
template <class Key>
double BareSort(const std::vector<Key>& keys) {
    std::vector<std::uint32_t> order(keys.size());
    return Shortest([&] { std::iota(order.begin(), order.end(), 0U); },
                    [&] {
                        std::stable_sort(order.begin(), order.end(),
                                         [&keys](auto a, auto b) { return keys[a] < keys[b]; });
                    });
}

void MeasureSorting(FilesModel& model, bench::Figures& figures) {
    std::vector<std::wstring> texts;
    std::vector<double> numbers;
    for (const File& file : MakeFiles()) {
        texts.push_back(NaturalKey(file.name));
        numbers.push_back(file.size);
    }
    const auto sorted = [&model](int column) {
        return Shortest([&] { model.sort(-1); }, [&] { model.sort(column); });
    };
    const double byText = sorted(0);
    const double byNumber = sorted(1);
    figures.Add("grid_sort_100k_text", byText, "ms");
    figures.Add("grid_sort_100k_text_to_stable_sort", byText / BareSort(texts), "ratio");
    figures.Add("grid_sort_100k_number", byNumber, "ms");
    figures.Add("grid_sort_100k_number_to_stable_sort", byNumber / BareSort(numbers), "ratio");
    model.sort(-1);
}

void MeasureScrolling(FilesModel& model, bench::Figures& figures) {
    UserPromptsQt prompts;
    GridView view(prompts);
    view.SetModel(&model);
    view.resize(900, 500);
    view.show();
    QCoreApplication::processEvents();
    QScrollBar* bar = view.Table()->verticalScrollBar();
    constexpr int kSteps = 200;
    const std::size_t before = view.CellsPainted();
    double longest = 0;
    const auto start = std::chrono::steady_clock::now();
    auto last = start;
    for (int step = 1; step <= kSteps; ++step) {
        bar->setValue(static_cast<int>(static_cast<std::int64_t>(bar->maximum()) * step / kSteps));
        QCoreApplication::processEvents();
        const auto now = std::chrono::steady_clock::now();
        longest = std::max(longest, std::chrono::duration<double, std::milli>(now - last).count());
        last = now;
    }
    const double whole = std::chrono::duration<double, std::milli>(last - start).count();
    figures.Add("grid_scroll_cells_per_step", static_cast<double>(view.CellsPainted() - before) / kSteps,
                "cells");
    figures.Add("grid_scroll_step_mean", whole / kSteps, "ms");
    figures.Add("grid_scroll_step_longest", longest, "ms");

    view.SelectAll();
    const double sort = Shortest([&] { model.sort(-1); }, [&] { model.sort(0); });
    figures.Add("grid_sort_100k_text_all_selected", sort, "ms");
}

/// Each key of a text as users type it, in a view; the longest, in milliseconds.
double LongestKey(FilesModel& model, const GridView& view, std::wstring_view text) {
    double longest = 0;
    for (std::size_t length = 1; length <= text.size(); ++length) {
        const auto before = [&] {
            const GridFilter filter(text.substr(0, length - 1), model, view.ShownColumns());
            model.SetFilter([filter](std::size_t record) { return filter.Keeps(record); });
            QCoreApplication::processEvents();
        };
        longest = std::max(longest, Shortest(before, [&] {
                               const GridFilter filter(text.substr(0, length), model, view.ShownColumns());
                               model.SetFilter([filter](std::size_t record) { return filter.Keeps(record); });
                               QCoreApplication::processEvents();
                           }));
    }
    return longest;
}

/// Looking for a word in one text of each row, by hand.
double BareSearch() {
    std::vector<std::wstring> names;
    for (const File& file : MakeFiles()) {
        names.push_back(ToUpper(file.name));
    }
    std::size_t found = 0;
    const double time = Shortest([] {},
                                 [&] {
                                     for (const std::wstring& name : names) {
                                         found += name.find(L"TILE_12") == name.npos ? 0 : 1;
                                     }
                                 });
    return found > 0 ? time : 0;
}

void MeasureFiltering(bench::Figures& figures) {
    FilesModel model;
    UserPromptsQt prompts;
    GridView view(prompts);
    view.SetModel(&model);
    view.resize(900, 500);
    view.show();
    QCoreApplication::processEvents();
    double slice = 0;
    double reading = 0;
    for (bool more = true; more;) {
        const double time = bench::Milliseconds([&] { more = model.PrepareSearch(view.ShownColumns()); });
        slice = std::max(slice, time);
        reading += time;
    }
    figures.Add("grid_filter_100k_reading_ahead", reading, "ms");
    figures.Add("grid_filter_100k_reading_ahead_slice_longest", slice, "ms");
    const double word = LongestKey(model, view, L"tile_12 -05");
    figures.Add("grid_filter_100k_key_longest", word, "ms");
    figures.Add("grid_filter_100k_key_longest_to_bare_search", word / BareSearch(), "ratio");
    figures.Add("grid_filter_100k_condition_key_longest",
                LongestKey(model, view, L"points > 1e6 crs = 25833"), "ms");
    for (const auto& [column, name] : {std::pair(0, "text"), std::pair(1, "number")}) {
        figures.Add(std::string("grid_sort_filtered_") + name,
                    Shortest([&] { model.sort(-1); }, [&, at = column] { model.sort(at); }), "ms");
    }
    figures.Add("grid_filter_100k_cleared", bench::Milliseconds([&] {
                    model.SetFilter({});
                    QCoreApplication::processEvents();
                }),
                "ms");
}

/// A list of so many rows in a view, sorted, as users have it before they change it.
struct Shown {
    explicit Shown(std::size_t rows) : model(rows) {
        view.SetModel(&model);
        view.resize(900, 500);
        view.show();
        model.sort(0);
        QCoreApplication::processEvents();
    }

    /// Removes every `step`-th row as a user does.
    void Remove(int step) {
        std::vector<int> rows;
        for (int row = 0; row < model.rowCount(); row += step) {
            rows.push_back(row);
        }
        view.SelectRows(rows);
        view.RemoveSelection([this](std::vector<std::size_t> records) {
            std::ranges::sort(records);
            model.Remove(records);
        });
    }

    UserPromptsQt prompts;
    FilesModel model;
    GridView view{prompts};
};

/// CRSs of so many files, `different` of them different.
std::vector<CrsPtr> MakeCrss(std::size_t files, std::size_t different) {
    std::vector<CrsPtr> crss;
    for (std::size_t i = 0; i < files; ++i) {
        if (i < different) {
            auto crs = std::make_shared<CrsDescription>();
            crs->sourceWkt = "CRS number " + std::to_string(i);
            crss.push_back(std::move(crs));
        } else {
            crss.push_back(crss[i % different]);
        }
    }
    return crss;
}

/// Time of what is done to a list of so many rows, in milliseconds.
using TimeOf = std::function<double(std::size_t rows)>;

/// The time with 100,000 rows, and by what it is longer than ten times that with 10,000.
void AddGrowth(bench::Figures& figures, const std::string& name, const TimeOf& time) {
    const double few = time(kRows / 10);
    const double many = time(kRows);
    figures.Add(name + "_100k", many, "ms");
    figures.Add(name + "_growth", many / few / 10, "ratio");
}

TimeOf InList(const std::function<void(Shown&)>& change) {
    return [change](std::size_t rows) {
        std::unique_ptr<Shown> list;
        const auto run = [&] {
            change(*list);
            QCoreApplication::processEvents();
        };
        return Shortest([&] { list = std::make_unique<Shown>(rows); }, run, ProcessorTime);
    };
}

TimeOf Naming(std::size_t filesPerCrs) {
    return [filesPerCrs](std::size_t rows) {
        const std::vector<CrsPtr> files = MakeCrss(rows, rows / filesPerCrs);
        std::map<std::wstring, std::wstring> existing;
        for (std::size_t i = 1; i < rows; i += 2) {
            existing.emplace(L"LAS Layer_" + std::to_wstring(i), L"");
        }
        const auto run = [&] { PlaceInLayers(files, existing, {.append = false}, L"LAS Layer_"); };
        return Shortest([] {}, run, ProcessorTime);
    };
}

void MeasureGrowth(bench::Figures& figures) {
    AddGrowth(figures, "grid_list_sort", InList([](Shown& list) { list.model.sort(2); }));
    AddGrowth(figures, "grid_list_clear", InList([](Shown& list) { list.model.Clear(); }));
    AddGrowth(figures, "grid_list_remove_all", InList([](Shown& list) { list.Remove(1); }));
    AddGrowth(figures, "grid_list_remove_every_second", InList([](Shown& list) { list.Remove(2); }));
    AddGrowth(figures, "grid_list_remove_every_hundredth", InList([](Shown& list) { list.Remove(100); }));
    AddGrowth(figures, "grid_list_names_of_layers", Naming(1000));
    AddGrowth(figures, "grid_list_names_of_a_layer_each", Naming(1));
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QApplication application(argc, argv);
    const auto options = bench::ParseBenchOptions(argc, argv);
    if (!options) {
        return 2;
    }
    bench::Figures figures;
    FilesModel model;
    MeasureSorting(model, figures);
    MeasureScrolling(model, figures);
    MeasureFiltering(figures);
    MeasureGrowth(figures);
    return figures.Write(options->output) ? 0 : 1;
}
