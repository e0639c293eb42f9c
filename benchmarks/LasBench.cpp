// Listing ten thousand LAS files, through the inspection and through the dialog.
#include <QApplication>
#include <QTemporaryDir>
#include <algorithm>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "benchmarks/Bench.h"
#include "benchmarks/DialogBench.h"
#include "benchmarks/Probe.h"
#include "host/objects/HostClasses.h"
#include "las/LasRow.h"
#include "las/testing/LasBuilder.h"
#include "settings/RegistryKey.h"
#include "support/QtText.h"
#include "support/Text.h"

namespace orvex::bench {
namespace {

constexpr std::size_t kFilesPerFolder = 1000;

/// WKT record of a UTM zone.
std::string Wkt(std::size_t zone) {
    return fmt::format(
        "PROJCS[\"WGS 84 / UTM zone {0}N\",GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\","
        "SPHEROID[\"WGS "
        "84\",6378137,298.257223563,AUTHORITY[\"EPSG\",\"7030\"]],AUTHORITY[\"EPSG\",\"6326\"]],"
        "PRIMEM[\"Greenwich\",0,AUTHORITY[\"EPSG\",\"8901\"]],UNIT[\"degree\",0.0174532925199433,"
        "AUTHORITY[\"EPSG\",\"9122\"]],AUTHORITY[\"EPSG\",\"4326\"]],PROJECTION[\"Transverse_Mercator\"],"
        "PARAMETER[\"latitude_of_origin\",0],PARAMETER[\"central_meridian\",{1}],PARAMETER[\"scale_factor\","
        "0.9996],"
        "PARAMETER[\"false_easting\",500000],PARAMETER[\"false_northing\",0],UNIT[\"metre\",1,"
        "AUTHORITY[\"EPSG\",\"9001\"]],AXIS[\"Easting\",EAST],AXIS[\"Northing\",NORTH],"
        "AUTHORITY[\"EPSG\",\"{2}\"]]",
        zone, static_cast<int>(zone) * 6 - 183, 32600 + zone);
}

std::string VariantBytes(std::size_t variant) {
    return testing::LasBuilder(14, 6)
        .AddPoints(100, 400000.0 + 100.0 * static_cast<double>(variant), 5000000)
        .Wkt(Wkt(variant + 20))
        .AddVlr("Vendor", 100, std::string(64, 'v'), "what another program writes")
        .AddExtraBytes("Amplitude", 3, 2)
        .Build();
}

/// LAS files with different WKTs.
Corpus LasCorpus(std::size_t files) {
    const auto write = [](const std::filesystem::path& path, std::size_t variant) {
        const std::string bytes = VariantBytes(variant);
        std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    };
    return {files, {".las", kFilesPerFolder, write}};
}

constexpr int kRounds = 7;

/// Listing files through the inspection, compared with a bare loop over the same files in the same run.
void MeasureListing(const Corpus& corpus, Figures& figures) {
    std::vector<std::string> names;
    for (const std::wstring& path : corpus.Paths()) {
        names.push_back(ToUtf8(path));
    }
    // The first file brings GDAL and PROJ up; that is a figure of its own.
    figures.Add("las_first_file", Milliseconds([&] { InspectLasFile(corpus.Paths().front()); }), "ms");
    double bare = std::numeric_limits<double>::infinity();
    double inspected = bare;
    std::uint64_t bytes = 0;
    std::size_t loadable = 0;
    for (int round = 0; round < kRounds; ++round) {
        bare = std::min(bare, Milliseconds([&] {
                            for (const std::string& name : names) {
                                bytes += ReadBarely(name);
                            }
                        }));
        std::vector<LasRow> rows;
        rows.reserve(names.size());
        inspected = std::min(inspected, Milliseconds([&] {
                                 for (const std::wstring& path : corpus.Paths()) {
                                     rows.push_back(InspectLasFile(path));
                                 }
                             }));
        loadable = static_cast<std::size_t>(
            std::count_if(rows.begin(), rows.end(), [](const LasRow& row) { return row.loadable; }));
    }
    figures.Add("las_list_files", static_cast<double>(loadable), "files");
    figures.Add("las_list_bare", bare, "ms");
    figures.Add("las_list_inspected", inspected, "ms");
    figures.Add("las_list_ratio", inspected / bare, "ratio");
    figures.Add("las_list_bytes_per_file",
                static_cast<double>(bytes) / kRounds / static_cast<double>(names.size()), "bytes");
}

}  // namespace
}  // namespace orvex::bench

int main(int argc, char** argv) {
    const auto options = orvex::bench::ParseBenchOptions(argc, argv, 10000);
    if (!options) {
        return 2;
    }
    // Options that the user has chosen neither change the figures nor are changed.
    const QTemporaryDir folder;
    const orvex::PrivateSettings settings(orvex::ToPath(orvex::ToWide(folder.path())));
    QApplication application(argc, argv);
    const orvex::host::HostClasses classes(
        {orvex::host::DefaultSettingsFile(), [] { return std::wstring(); }});

    orvex::bench::Figures figures;
    orvex::bench::MeasureOpening(figures);
    const orvex::bench::Corpus corpus = orvex::bench::LasCorpus(options->files);
    orvex::bench::MeasureAdding(corpus, figures);
    orvex::bench::MeasureEscape(corpus, figures);
    // Files that no run before has met, so that each of them is counted whole.
    orvex::bench::MeasureMemory(orvex::bench::LasCorpus(options->files), figures);
    orvex::bench::MeasureListing(corpus, figures);
    return figures.Write(options->output) ? 0 : 1;
}
