// Building of QVR companions, compared with a sequential copy of the same bytes and with a program that makes
// an octree of them.
#include <algorithm>
#include <cstdint>
#include <exception>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "benchmarks/Bench.h"
#include "benchmarks/PointFiles.h"
#include "benchmarks/Probe.h"
#include "las/companion/QvrBuilder.h"
#include "support/Files.h"
#include "support/LDataError.h"
#include "support/ProgressIf.h"
#include "support/Text.h"

namespace orvex::bench {
namespace {

// Files of so many points are measured once, smaller ones several times.
constexpr std::uint64_t kManyPoints = 20'000'000;
constexpr int kRounds = 3;
// So little memory that a tenth of a gigabyte does not fit.
constexpr std::uint64_t kSmallMemory = std::uint64_t{64} << 20U;

struct Kind {
    std::string name;
    QvrSettings settings;
    Best best;
    double memory = 0;  ///< megabytes, the most beyond what was in use before
};

std::vector<Kind> Kinds() {
    std::vector<Kind> kinds{{"", {}, {}}, {"_64MB", {}, {}}, {"_1_thread", {}, {}}};
    kinds[1].settings.memory = kSmallMemory;
    kinds[2].settings.threads = 1;
    return kinds;
}

class Comparison {
  public:
    Comparison(Figures& figures, const BenchFolder& folder, std::wstring las, std::uint64_t points)
        : figures_(figures),
          folder_(folder),
          las_(std::move(las)),
          points_(static_cast<double>(points)),
          name_("companion_" + std::to_string(points)) {}

    void Run(int rounds) {
        // Copied once before, so that neither finds more of the file in memory than the other.
        Copy();
        for (int round = 0; round < rounds; ++round) {
            copy_.Take([&] { Copy(); });
            for (Kind& kind : kinds_) {
                Build(kind);
            }
        }
        figures_.Add(name_ + "_copy", copy_.time, "ms");
        figures_.Add(name_ + "_copy_processor", copy_.processor, "ms");
        for (const Kind& kind : kinds_) {
            Report(kind);
        }
        CompareWithOctree();
    }

  private:
    void Copy() {
        const std::wstring copy = folder_.Name("copy.las");
        const bool isCopied = CopySequentially(las_, copy);
        RemoveFile(copy);
        if (!isCopied) {
            throw LDataError(L"the copy cannot be written");
        }
    }

    void Build(Kind& kind) {
        ResetPeakMemory();
        const auto before = static_cast<double>(PeakMemory());
        kind.best.Take([&] {
            Kst::NullProgress progress;
            BuildQvr(PlanQvr(las_, kind.settings), kind.settings, progress);
        });
        constexpr double kMegabyte = 1e-6;
        kind.memory = std::max(kind.memory, (static_cast<double>(PeakMemory()) - before) * kMegabyte);
        RemoveFile(QvrPathOf(las_));
    }

    void Report(const Kind& kind) {
        const std::string name = name_ + kind.name;
        figures_.Add(name + "_built", kind.best.time, "ms");
        figures_.Add(name + "_processor", kind.best.processor, "ms");
        figures_.Add(name + "_points_per_second", points_ / kind.best.time * 1e-3, "million/s");
        figures_.Add(name + "_ratio_to_copy", kind.best.time / copy_.time, "ratio");
        figures_.Add(name + "_peak_memory", kind.memory, "MB");
    }

    void CompareWithOctree() {
        std::optional<int> result;
        const double time = Milliseconds([&] {
            result = RunProgram(
                {"PotreeConverter", ToUtf8(las_), "-o", ToUtf8(folder_.Name("octree")), "-m", "random"});
        });
        if (!result) {
            std::cerr << name_ << ": PotreeConverter is not on the PATH; not compared with it\n";
        } else if (*result != 0) {
            std::cerr << name_ << ": PotreeConverter failed (" << *result << "); not compared with it\n";
        } else {
            figures_.Add(name_ + "_octree", time, "ms");
            figures_.Add(name_ + "_times_as_fast_as_octree", time / kinds_.front().best.time, "ratio");
        }
    }

    Figures& figures_;
    const BenchFolder& folder_;
    std::wstring las_;
    double points_;
    std::string name_;
    Best copy_;
    std::vector<Kind> kinds_ = Kinds();
};

void MeasureAll(const BenchOptions& options, Figures& figures) {
    for (const std::uint64_t points : options.points) {
        const BenchFolder folder;
        const std::wstring las = folder.Name("a.las");
        if (options.tile.empty()) {
            WriteTerrain(las, points, PointLayout::Extended);
        } else {
            WriteRepeated(FromUtf8(options.tile), las, points);
        }
        Comparison(figures, folder, las, points).Run(points < kManyPoints ? kRounds : 1);
    }
}

}  // namespace
}  // namespace orvex::bench

int main(int argc, char** argv) {
    const auto options = orvex::bench::ParseBenchOptions(argc, argv, {{}, 0, {1'000'000, 10'000'000}, {}});
    if (!options) {
        return 2;
    }
    try {
        orvex::bench::Figures figures;
        orvex::bench::MeasureAll(*options, figures);
        return figures.Write(options->output) ? 0 : 1;
    } catch (...) {
        std::cerr << orvex::ToUtf8(orvex::CurrentExceptionText()) << '\n';
        return 1;
    }
}
