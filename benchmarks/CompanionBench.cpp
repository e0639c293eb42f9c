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

// Memory of the builder: its default, and so little that a tenth of a gigabyte does not fit.
constexpr std::uint64_t kSmallMemory = std::uint64_t{64} << 20U;

void Build(const std::wstring& las, const QvrSettings& settings) {
    Kst::NullProgress progress;
    BuildQvr(PlanQvr(las, settings), settings, progress);
}

class Comparison {
  public:
    Comparison(Figures& figures, const BenchFolder& folder, std::wstring las, std::uint64_t points)
        : figures_(figures),
          folder_(folder),
          las_(std::move(las)),
          points_(static_cast<double>(points)),
          name_("companion_" + std::to_string(points)) {}

    void Run() {
        // Copied once before, so that neither finds more of the file in memory than the other.
        Copy();
        double processor = ProcessorTime();
        copy_ = Milliseconds([&] { Copy(); });
        processor = ProcessorTime() - processor;
        figures_.Add(name_ + "_copy", copy_, "ms");
        figures_.Add(name_ + "_copy_processor", processor, "ms");
        const double built = MeasureBuilding("", {});
        QvrSettings small;
        small.memory = kSmallMemory;
        MeasureBuilding("_64MB", small);
        QvrSettings oneThread;
        oneThread.threads = 1;
        MeasureBuilding("_1_thread", oneThread);
        CompareWithOctree(built);
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

    double MeasureBuilding(const std::string& kind, const QvrSettings& settings) {
        ResetPeakMemory();
        const auto before = static_cast<double>(PeakMemory());
        double processor = ProcessorTime();
        const double time = Milliseconds([&] { Build(las_, settings); });
        processor = ProcessorTime() - processor;
        const std::string name = name_ + kind;
        figures_.Add(name + "_built", time, "ms");
        figures_.Add(name + "_processor", processor, "ms");
        figures_.Add(name + "_points_per_second", points_ / time * 1e-3, "million/s");
        figures_.Add(name + "_ratio_to_copy", time / copy_, "ratio");
        figures_.Add(name + "_peak_memory", (static_cast<double>(PeakMemory()) - before) * 1e-6, "MB");
        RemoveFile(QvrPathOf(las_));
        return time;
    }

    void CompareWithOctree(double built) {
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
            figures_.Add(name_ + "_times_as_fast_as_octree", time / built, "ratio");
        }
    }

    Figures& figures_;
    const BenchFolder& folder_;
    std::wstring las_;
    double points_;
    std::string name_;
    double copy_ = 0;
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
        Comparison(figures, folder, las, points).Run();
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
