// Looking into LAS, LAZ and COPC files of 50 MB on a server of this machine.
#include <httplib.h>

#include <QCoreApplication>
#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <limits>
#include <stdexcept>
#include <string>

#include "benchmarks/Bench.h"
#include "cloud/RemoteLas.h"
#include "host/cloudserver/CloudServer.h"
#include "las/testing/LasBuilder.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex::bench {
namespace {

using testing::LasBuilder;

constexpr std::size_t kFileBytes = 50'000'000;
constexpr std::size_t kHierarchyBytes = 1'000'000;
constexpr int kRounds = 50;
constexpr const char* kWkt =
    R"(GEOGCS["WGS 84",DATUM["WGS_1984",SPHEROID["WGS 84",6378137,298.257223563]],PRIMEM["Greenwich",0],)"
    R"(UNIT["degree",0.0174532925199433],AUTHORITY["EPSG","4326"]])";

std::string PointBytes() {
    return std::string(kFileBytes, 'p');
}

struct Sample {
    const char* name;
    std::string bytes;
};

/// COPC has its hierarchy behind the points; here its CRS as well.
std::vector<Sample> Samples() {
    const LasBuilder plain = LasBuilder(14, 6).AddPoints(1);
    const LasBuilder compressed =
        LasBuilder(plain).MarkCompressed().AddVlr("laszip encoded", 22204, std::string(46, 'z'));
    return {{"las", LasBuilder(plain).Wkt(kWkt).Append(PointBytes()).Build()},
            {"laz", LasBuilder(compressed).Wkt(kWkt).Append(PointBytes()).Build()},
            {"copc", LasBuilder(compressed)
                         .AddVlr("copc", 1, std::string(160, 'c'))
                         .Gap(PointBytes())
                         .AddEvlr("copc", 1000, std::string(kHierarchyBytes, 'h'))
                         .Wkt(kWkt, true)
                         .Build()}};
}

/// Milliseconds of the fastest of some runs.
template <typename Run>
double Fastest(const Run& run) {
    double fastest = std::numeric_limits<double>::infinity();
    for (int round = 0; round < kRounds; ++round) {
        fastest = std::min(fastest, Milliseconds(run));
    }
    return fastest;
}

/// What one look takes, compared with a client that requests the first part of the file and does nothing with
/// it.
void Measure(const Sample& sample, CloudServer& server, Figures& figures) {
    const std::string url = server.SignedUrl(std::string(sample.name) + ".las", 3600);
    const std::string prefix = std::string("cloud_") + sample.name;
    const std::size_t requestsBefore = server.Requests().size();
    const RemoteLas remote = InspectRemoteLas(FromUtf8(url));
    const std::size_t requests = server.Requests().size() - requestsBefore;
    if (!remote.row.loadable || !remote.row.file->HasProjectionRecords()) {
        throw std::runtime_error(ToUtf8(remote.row.summary));
    }
    figures.Add(prefix + "_bytes", static_cast<double>(remote.transferred), "bytes");
    figures.Add(prefix + "_bytes_ratio",
                static_cast<double>(remote.transferred) / static_cast<double>(sample.bytes.size()), "ratio");
    figures.Add(prefix + "_requests", static_cast<double>(requests), "requests");
    const double bare = Fastest([&] {
        httplib::Client client(server.Address());
        const auto answer =
            client.Get(url.substr(server.Address().size()), {httplib::make_range_header({{0, 65'535}})});
        if (!answer || answer->body.size() != 65'536) {
            throw std::runtime_error("the server did not answer");
        }
    });
    const double look = Fastest([&] { InspectRemoteLas(FromUtf8(url)); });
    figures.Add(prefix + "_bare", bare, "ms");
    figures.Add(prefix + "_look", look, "ms");
    figures.Add(prefix + "_look_ratio", look / bare, "ratio");
}

}  // namespace
}  // namespace orvex::bench

int main(int argc, char** argv) {
    const auto options = orvex::bench::ParseBenchOptions(argc, argv);
    if (!options) {
        return 2;
    }
    std::signal(SIGPIPE, SIG_IGN);  // of the bare client
    QCoreApplication application(argc, argv);
    const orvex::testing::TemporaryFolder folder;
    folder.Write(L"projects.json", R"({"projects":[]})");
    const std::vector<orvex::bench::Sample> samples = orvex::bench::Samples();
    for (const orvex::bench::Sample& sample : samples) {
        folder.Write(L"files/" + orvex::FromUtf8(sample.name) + L".las", sample.bytes);
    }
    orvex::CloudServer server({.folder = folder.Path()});
    orvex::bench::Figures figures;
    for (const orvex::bench::Sample& sample : samples) {
        orvex::bench::Measure(sample, server, figures);
    }
    return figures.Write(options->output) ? 0 : 1;
}
