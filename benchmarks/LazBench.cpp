// Decompression of LAZ files on all cores, compared with the codec on one.
#include <laszip/laszip_api.h>

#include <algorithm>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>

#include "benchmarks/Bench.h"
#include "benchmarks/PointFiles.h"
#include "benchmarks/Probe.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/ProgressIf.h"
#include "support/Text.h"

namespace orvex::bench {
namespace {

constexpr int kRounds = 3;

/// Copies the points of a LAS or LAZ file into another, point by point, as the codec's own programs do.
void CopyByCodec(const std::wstring& from, const std::wstring& to, bool compress) {
    std::ifstream input(ToPath(from), std::ios::binary);
    std::ofstream output(ToPath(to), std::ios::binary);
    laszip_POINTER reader = nullptr;
    laszip_POINTER writer = nullptr;
    laszip_BOOL isCompressed = 0;
    laszip_header_struct* header = nullptr;
    laszip_point_struct* point = nullptr;
    const auto check = [](laszip_I32 result) {
        if (result != 0) {
            throw std::runtime_error("the codec cannot copy the points");
        }
    };
    check(laszip_create(&reader));
    check(laszip_create(&writer));
    check(laszip_open_reader_stream(reader, input, &isCompressed));
    check(laszip_get_header_pointer(reader, &header));
    check(laszip_get_point_pointer(reader, &point));
    check(laszip_request_native_extension(writer, 1));
    check(laszip_set_header(writer, header));
    check(laszip_open_writer_stream(writer, output, compress ? 1 : 0, 0));
    const std::uint64_t points =
        std::max<std::uint64_t>(header->number_of_point_records,
                                header->version_minor >= 4 ? header->extended_number_of_point_records : 0);
    for (std::uint64_t i = 0; i < points; ++i) {
        check(laszip_read_point(reader));
        check(laszip_set_point(writer, point));
        check(laszip_write_point(writer));
    }
    check(laszip_close_writer(writer));
    check(laszip_close_reader(reader));
    laszip_destroy(writer);
    laszip_destroy(reader);
}

void Decompress(const std::wstring& laz, const std::wstring& las) {
    Kst::NullProgress progress;
    std::wstring reason;
    if (!OrvexUtilities::LAZDecompress(laz, las, progress, reason)) {
        throw std::runtime_error(ToUtf8(reason));
    }
}

void ReadOnly(const std::wstring& laz) {
    std::wstring reason;
    if (!OrvexUtilities::LAZReadPoints(
            laz, 0, [](auto, auto) { return true; }, reason)) {
        throw std::runtime_error(ToUtf8(reason));
    }
}

void Measure(const std::string& name, const std::wstring& las, std::uint64_t points, Figures& figures) {
    const BenchFolder folder;
    const std::wstring laz = folder.Name("a.laz");
    CopyByCodec(las, laz, true);
    Best codec;
    Best ours;
    Best reading;
    for (int round = 0; round < kRounds; ++round) {
        codec.Take([&] { CopyByCodec(laz, folder.Name("codec.las"), false); });
        ours.Take([&] { Decompress(laz, folder.Name("ours.las")); });
        reading.Take([&] { ReadOnly(laz); });
    }
    figures.Add(name + "_codec_one_core", codec.time, "ms");
    figures.Add(name + "_codec_processor", codec.processor, "ms");
    figures.Add(name + "_decompressed", ours.time, "ms");
    figures.Add(name + "_decompressed_processor", ours.processor, "ms");
    figures.Add(name + "_times_as_fast", codec.time / ours.time, "ratio");
    figures.Add(name + "_points_per_second", static_cast<double>(points) / ours.time * 1e-3, "million/s");
    figures.Add(name + "_read_only", reading.time, "ms");
}

void MeasureAll(const BenchOptions& options, Figures& figures) {
    figures.Add("laz_cores", std::thread::hardware_concurrency(), "cores");
    for (const std::uint64_t points : options.points) {
        const BenchFolder folder;
        const std::wstring las = folder.Name("a.las");
        const std::string size = std::to_string(points);
        if (!options.tile.empty()) {
            WriteRepeated(FromUtf8(options.tile), las, points);
            Measure("laz_tile_" + size, las, points, figures);
            continue;
        }
        WriteTerrain(las, points, PointLayout::Legacy);
        Measure("laz_format1_" + size, las, points, figures);
        WriteTerrain(las, points, PointLayout::Extended);
        Measure("laz_format6_" + size, las, points, figures);
    }
    figures.Add("laz_peak_memory", static_cast<double>(PeakMemory()) * 1e-6, "MB");
}

}  // namespace
}  // namespace orvex::bench

int main(int argc, char** argv) {
    constexpr std::uint64_t kPoints = 5'000'000;
    const auto options = orvex::bench::ParseBenchOptions(argc, argv, {{}, 0, {kPoints}, {}});
    if (!options) {
        return 2;
    }
    try {
        orvex::bench::Figures figures;
        orvex::bench::MeasureAll(*options, figures);
        return figures.Write(options->output) ? 0 : 1;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
