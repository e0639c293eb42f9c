#include "host/app/SampleLasFile.h"

#include <laszip/laszip_api.h>

#include <array>
#include <cmath>
#include <cstring>
#include <fstream>
#include <vector>

#include "host/app/SampleTerrain.h"

namespace orvex {

namespace {

constexpr std::size_t kRecordHeader = 54;
constexpr double kScale = 0.001;
constexpr double kWeekSeconds = 302400;

/// Little-endian fields at their places in a block that grows as needed.
class Block {
  public:
    explicit Block(std::size_t size) : bytes_(size, '\0') {}

    template <typename T>
    void Put(std::size_t offset, T value) {
        std::memcpy(bytes_.data() + offset, &value, sizeof(T));
    }
    void PutText(std::size_t offset, const std::string& text) {
        std::memcpy(bytes_.data() + offset, text.data(), text.size());
    }
    const std::string& Bytes() const { return bytes_; }

  private:
    std::string bytes_;
};

std::string Record(const std::string& userId, std::uint16_t recordId, const std::string& description,
                   const std::string& data) {
    Block header(kRecordHeader);
    header.PutText(2, userId);
    header.Put<std::uint16_t>(18, recordId);
    header.Put<std::uint16_t>(20, static_cast<std::uint16_t>(data.size()));
    header.PutText(22, description);
    return header.Bytes() + data;
}

/// The GeoTIFF keys of a projected CRS in metres.
std::string GeoKeyDirectory(int epsg) {
    const bool projected = epsg >= 20000;
    const std::array<std::array<std::uint16_t, 4>, 4> keys = {{
        {1, 1, 0, 3},
        {1024, 0, 1, static_cast<std::uint16_t>(projected ? 1 : 2)},
        {1025, 0, 1, 1},
        {static_cast<std::uint16_t>(projected ? 3072 : 2048), 0, 1, static_cast<std::uint16_t>(epsg)},
    }};
    return {reinterpret_cast<const char*>(keys.data()), sizeof(keys)};
}

std::vector<std::string> RecordsOf(const SampleTile& tile) {
    std::vector<std::string> records;
    if (tile.crs == SampleCrs::GeoKeys) {
        records.push_back(
            Record("LASF_Projection", 34735, "GeoTiff GeoKeyDirectoryTag", GeoKeyDirectory(tile.epsg)));
    }
    if (tile.crs == SampleCrs::Wkt) {
        records.push_back(Record("LASF_Projection", 2112, "OGC coordinate system WKT", tile.wkt + '\0'));
    }
    records.push_back(Record("Orvex sample", 1, "How this file was made",
                             "Generated terrain: hills, a river and trees; no survey was flown."));
    return records;
}

/// A point record of format 3 (34 bytes) or 7 (36 bytes).
std::string PointRecord(const SampleTile& tile, const std::array<std::int32_t, 3>& position,
                        const SampleTerrain& terrain, double time) {
    const bool extended = tile.pointFormat >= 6;
    const std::size_t afterXyz = 12;
    Block point(extended ? 36 : 34);
    for (std::size_t axis = 0; axis < 3; ++axis) {
        point.Put(axis * 4, position[axis]);
    }
    const std::uint8_t classification = terrain.isWater ? 9 : (terrain.isTree ? 5 : 2);
    point.Put(afterXyz, static_cast<std::uint16_t>(terrain.isTree ? 700 : (terrain.isWater ? 150 : 1400)));
    point.Put(14, static_cast<std::uint8_t>(extended ? 0x11 : 0x09));  // the only return of its pulse
    point.Put(extended ? 16 : 15, classification);
    point.Put<double>(extended ? 22 : 20, time);
    const std::array<std::uint16_t, 3> colour =
        terrain.isWater  ? std::array<std::uint16_t, 3>{12000, 24000, 42000}
        : terrain.isTree ? std::array<std::uint16_t, 3>{14000, 34000, 12000}
                         : std::array<std::uint16_t, 3>{36000, 32000, 22000};
    for (std::size_t i = 0; i < 3; ++i) {
        point.Put((extended ? 30U : 28U) + i * 2, colour[i]);
    }
    return point.Bytes();
}

struct Points {
    std::string bytes;
    std::uint32_t count = 0;
    std::array<std::int32_t, 3> low{INT32_MAX, INT32_MAX, INT32_MAX};
    std::array<std::int32_t, 3> high{INT32_MIN, INT32_MIN, INT32_MIN};
};

/// Scale of x and y: a millimetre, or about as much in degrees.
double HorizontalScale(const SampleTile& tile) {
    return tile.spacing < 0.1 ? 1e-8 : kScale;
}

Points PointsOf(const SampleTile& tile) {
    Points points;
    const double scale = HorizontalScale(tile);
    const auto startX = static_cast<std::int64_t>(std::llround(tile.west / tile.spacing)) % 1000;
    const auto startY = static_cast<std::int64_t>(std::llround(tile.south / tile.spacing)) % 1000;
    for (int row = 0; row < tile.side; ++row) {
        for (int column = 0; column < tile.side; ++column) {
            const SampleTerrain terrain = SampleTerrainAt(startX + column, startY + row);
            const double jitter = 0.6 * SampleNoise(startX + column, startY + row);
            const std::array<std::int32_t, 3> position = {
                static_cast<std::int32_t>((column + jitter) * tile.spacing / scale),
                static_cast<std::int32_t>((row + jitter) * tile.spacing / scale),
                static_cast<std::int32_t>(terrain.height * tile.verticalFactor / kScale)};
            for (std::size_t axis = 0; axis < 3; ++axis) {
                points.low[axis] = std::min(points.low[axis], position[axis]);
                points.high[axis] = std::max(points.high[axis], position[axis]);
            }
            points.bytes += PointRecord(tile, position, terrain, kWeekSeconds + points.count * 5e-6);
            ++points.count;
        }
    }
    return points;
}

void PutCounts(Block& header, const SampleTile& tile, std::uint32_t count) {
    if (tile.minorVersion < 4) {
        header.Put<std::uint32_t>(107, count);
        header.Put<std::uint32_t>(111, count);
        return;
    }
    // Formats from 6 on leave the 32-bit counts at zero.
    header.Put<std::uint64_t>(247, count);
    header.Put<std::uint64_t>(255, count);
}

}  // namespace

std::string MakeSampleLas(const SampleTile& tile) {
    const Points points = PointsOf(tile);
    const std::vector<std::string> records = RecordsOf(tile);
    std::string recordBytes;
    for (const std::string& record : records) {
        recordBytes += record;
    }
    const std::size_t headerSize = tile.minorVersion >= 4 ? 375 : 227;
    Block header(headerSize);
    header.PutText(0, "LASF");
    header.Put<std::uint16_t>(6, tile.crs == SampleCrs::Wkt ? 0x10 : 0);
    header.Put<std::uint8_t>(24, 1);
    header.Put(25, static_cast<std::uint8_t>(tile.minorVersion));
    header.PutText(26, "Generated");
    header.PutText(58, "Orvex sample project");
    header.Put<std::uint16_t>(90, 152);
    header.Put<std::uint16_t>(92, 2024);
    header.Put(94, static_cast<std::uint16_t>(headerSize));
    header.Put(96, static_cast<std::uint32_t>(headerSize + recordBytes.size()));
    header.Put(100, static_cast<std::uint32_t>(records.size()));
    header.Put(104, static_cast<std::uint8_t>(tile.pointFormat));
    header.Put<std::uint16_t>(105, tile.pointFormat >= 6 ? 36 : 34);
    PutCounts(header, tile, points.count);
    const std::array<double, 3> scale = {HorizontalScale(tile), HorizontalScale(tile), kScale};
    const std::array<double, 3> offset = {tile.west, tile.south, 0};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        header.Put(131 + axis * 8, scale[axis]);
        header.Put(155 + axis * 8, offset[axis]);
        header.Put(179 + axis * 16, points.high[axis] * scale[axis] + offset[axis]);
        header.Put(187 + axis * 16, points.low[axis] * scale[axis] + offset[axis]);
    }
    return header.Bytes() + recordBytes + points.bytes;
}

bool CompressSample(const std::filesystem::path& las, const std::filesystem::path& laz) {
    struct Codec {
        laszip_POINTER pointer = nullptr;
        Codec() { laszip_create(&pointer); }
        ~Codec() { laszip_destroy(pointer); }
        Codec(const Codec&) = delete;
        Codec& operator=(const Codec&) = delete;
    };
    // The codec's own opening takes names in the user's code page on Windows, which cannot name every file.
    std::ifstream input(las, std::ios::binary);
    std::ofstream output(laz, std::ios::binary);
    Codec reader;
    Codec writer;
    laszip_BOOL compressed = 0;
    laszip_header_struct* header = nullptr;
    laszip_point_struct* point = nullptr;
    if (laszip_open_reader_stream(reader.pointer, input, &compressed) != 0 ||
        laszip_get_header_pointer(reader.pointer, &header) != 0 ||
        laszip_get_point_pointer(reader.pointer, &point) != 0 ||
        laszip_set_header(writer.pointer, header) != 0 ||
        laszip_open_writer_stream(writer.pointer, output, 1, 0) != 0) {
        return false;
    }
    const std::uint64_t count = header->number_of_point_records != 0
                                    ? header->number_of_point_records
                                    : header->extended_number_of_point_records;
    for (std::uint64_t i = 0; i < count; ++i) {
        if (laszip_read_point(reader.pointer) != 0 || laszip_set_point(writer.pointer, point) != 0 ||
            laszip_write_point(writer.pointer) != 0) {
            return false;
        }
    }
    return laszip_close_writer(writer.pointer) == 0 && laszip_close_reader(reader.pointer) == 0 &&
           output.flush();
}

}  // namespace orvex
