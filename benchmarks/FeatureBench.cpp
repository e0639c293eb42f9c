// Describing the CAD, KML and shapefiles of a folder, compared with the program ogrinfo, which summarizes one
// file per call; and one large DXF file: its throughput, and the memory that it takes.
#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "benchmarks/Bench.h"
#include "benchmarks/Probe.h"
#include "crs/GdalSetup.h"
#include "feature/FeatureRow.h"
#include "support/DataKinds.h"
#include "support/Text.h"

namespace orvex::bench {
namespace {

constexpr int kRounds = 5;
constexpr std::uint64_t kLargeFile = 500'000'000;  // bytes
constexpr int kLayers = 20;

/// A drawing of lines, with the marks that programs write; a tenth of them inserted as blocks.
std::string Entity(std::uint64_t number) {
    const double x = 500000 + 1.5 * static_cast<double>(number % 1000);
    const std::uint64_t line = number / 1000;
    const double y = 4000000 + 1.5 * static_cast<double>(line);
    if (number % 10 == 0) {
        return fmt::format(
            "  0\nINSERT\n  5\n{:X}\n100\nAcDbEntity\n  8\nLayer{}\n100\nAcDbBlockReference\n  2\n"
            "Tree\n 10\n{:.3f}\n 20\n{:.3f}\n 30\n0.0\n",
            number + 256, number % kLayers, x, y);
    }
    return fmt::format(
        "  0\nLINE\n  5\n{:X}\n100\nAcDbEntity\n  8\nLayer{}\n100\nAcDbLine\n 10\n{:.3f}\n 20\n"
        "{:.3f}\n 30\n0.0\n 11\n{:.3f}\n 21\n{:.3f}\n 31\n0.0\n",
        number + 256, number % kLayers, x, y, x + 1, y + 1);
}

void WriteDxf(const std::filesystem::path& path, std::uint64_t size) {
    std::ofstream file(path, std::ios::binary);
    file << "  0\nSECTION\n  2\nHEADER\n  9\n$ACADVER\n  1\nAC1032\n  0\nENDSEC\n  0\nSECTION\n  2\nBLOCKS\n"
            "  0\nBLOCK\n  8\n0\n  2\nTree\n 10\n0.0\n 20\n0.0\n  0\nCIRCLE\n  8\n0\n 10\n0.0\n 20\n0.0\n "
            "40\n0.5\n"
            "  0\nENDBLK\n  0\nENDSEC\n  0\nSECTION\n  2\nENTITIES\n";
    std::uint64_t written = 0;
    for (std::uint64_t number = 0; written < size; ++number) {
        const std::string entity = Entity(number);
        file << entity;
        written += entity.size();
    }
    file << "  0\nENDSEC\n  0\nEOF\n";
    if (!file.flush()) {
        throw std::runtime_error("cannot write " + path.string());
    }
}

void WriteKml(const std::filesystem::path& path, std::size_t variant) {
    std::ofstream file(path, std::ios::binary);
    file << "<kml xmlns=\"http://www.opengis.net/kml/2.2\"><Document><name>Plan</name>";
    for (std::size_t i = 0; i < 100 * (variant + 1); ++i) {
        file << fmt::format(
            "<Placemark><name>{0}</name><Point><coordinates>{0}.5,{0}.25</coordinates></Point>"
            "</Placemark>",
            i % 90);
    }
    file << "</Document></kml>";
}

/// Feature files below a folder.
std::vector<std::wstring> FilesIn(const std::filesystem::path& folder) {
    std::vector<std::wstring> paths;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        const std::wstring path = FromPath(entry.path());
        const std::wstring extension = UpperExtensionOf(path);
        for (const wchar_t* known : {L".DWG", L".DXF", L".DGN", L".KML", L".KMZ", L".SHP"}) {
            if (extension == known) {
                paths.push_back(path);
            }
        }
    }
    std::ranges::sort(paths);
    return paths;
}

std::size_t InspectAll(const std::vector<std::wstring>& paths) {
    return static_cast<std::size_t>(std::ranges::count_if(
        paths, [](const std::wstring& path) { return InspectFeatureFile(path).loadable; }));
}

/// Runs the program once per file; 0 if this machine has no such program. It fails on what it cannot read.
double OgrinfoMilliseconds(const std::vector<std::wstring>& paths, const std::filesystem::path& output) {
    const std::string to = " >\"" + output.string() + "\" 2>&1";
    if (std::system(("ogrinfo --version" + to).c_str()) != 0) {
        return 0;
    }
    return Milliseconds([&] {
        for (const std::wstring& path : paths) {
            static_cast<void>(
                std::system(fmt::format("ogrinfo -al -so -ro \"{}\"{}", ToUtf8(path), to).c_str()));
        }
    });
}

void MeasureFolder(const std::vector<std::wstring>& paths, const std::filesystem::path& output,
                   Figures& figures) {
    double inspected = std::numeric_limits<double>::infinity();
    double ogrinfo = inspected;
    std::size_t loadable = 0;
    for (int round = 0; round < kRounds; ++round) {
        inspected = std::min(inspected, Milliseconds([&] { loadable = InspectAll(paths); }));
        ogrinfo = std::min(ogrinfo, OgrinfoMilliseconds(paths, output));
    }
    figures.Add("feature_files", static_cast<double>(paths.size()), "files");
    figures.Add("feature_loadable", static_cast<double>(loadable), "files");
    figures.Add("feature_inspected", inspected, "ms");
    if (ogrinfo > 0) {
        figures.Add("feature_ogrinfo", ogrinfo, "ms");
        figures.Add("feature_ogrinfo_ratio", inspected / ogrinfo, "ratio");
    }
}

void MeasureLarge(const std::filesystem::path& folder, Figures& figures) {
    const std::filesystem::path path = folder / "large.dxf";
    WriteDxf(path, kLargeFile);
    constexpr double kMegabyte = 1e6;
    const std::uint64_t before = PeakMemory();
    FeatureRow row;
    const double inspected = Milliseconds([&] { row = InspectFeatureFile(FromPath(path)); });
    if (!row.loadable) {
        throw std::runtime_error(ToUtf8(row.summary));
    }
    figures.Add("feature_dxf_size", static_cast<double>(std::filesystem::file_size(path)) / kMegabyte, "MB");
    figures.Add("feature_dxf_features", static_cast<double>(row.featureCount), "features");
    figures.Add("feature_dxf_inspected", inspected, "ms");
    figures.Add("feature_dxf_throughput", static_cast<double>(kLargeFile) / kMegabyte / (inspected / 1000),
                "MB/s");
    figures.Add("feature_dxf_memory", static_cast<double>(PeakMemory() - before) / kMegabyte, "MB");
    if (const double ogrinfo = OgrinfoMilliseconds({FromPath(path)}, folder / "ogrinfo.txt"); ogrinfo > 0) {
        figures.Add("feature_dxf_ogrinfo_ratio", inspected / ogrinfo, "ratio");
    }
}

}  // namespace
}  // namespace orvex::bench

int main(int argc, char** argv) {
    const auto options = orvex::bench::ParseBenchOptions(argc, argv, 60);
    if (!options) {
        return 2;
    }
    if (!orvex::EnsureGdal()) {
        std::cerr << "GDAL's data is missing beside this program\n";
        return 1;
    }
    orvex::bench::Figures figures;
    const std::size_t half = options->files / 2;
    const orvex::bench::Corpus drawings(half, {".dxf", half, [](const auto& path, std::size_t variant) {
                                                   orvex::bench::WriteDxf(path, 20'000 * (variant + 1));
                                               }});
    const orvex::bench::Corpus documents(half, {".kml", half, orvex::bench::WriteKml});
    std::vector<std::wstring> paths = drawings.Paths();
    std::ranges::copy(documents.Paths(), std::back_inserter(paths));
    // A folder of real files, if one is named.
    if (const char* folder = std::getenv("ORVEX_BENCH_FOLDER"); folder != nullptr) {
        paths = orvex::bench::FilesIn(folder);
    }
    // First, so that its memory is that of the program.
    orvex::bench::MeasureLarge(drawings.Folder(), figures);
    orvex::bench::MeasureFolder(paths, drawings.Folder() / "ogrinfo.txt", figures);
    return figures.Write(options->output) ? 0 : 1;
}
