#include "host/app/SampleLasFile.h"

#include <laszip/laszip_api.h>

#include <array>
#include <cmath>
#include <fstream>
#include <vector>

#include "host/dem/LasWriter.h"
#include "support/LasFormat.h"

namespace orvex {

namespace {

constexpr double kScale = 0.001;
constexpr double kWeekSeconds = 302400;

/// The GeoTIFF keys of a projected CRS in metres.
std::string GeoKeyDirectory(int epsg) {
    const bool projected = epsg >= 20000;
    namespace key = las::geo_key;
    const std::array<std::array<std::uint16_t, 4>, 4> keys = {{
        {1, 1, 0, 3},
        {key::kModelType, 0, 1, projected ? key::kModelProjected : key::kModelGeographic},
        {key::kRasterType, 0, 1, key::kPixelIsArea},
        {projected ? key::kProjectedType : key::kGeographicType, 0, 1, static_cast<std::uint16_t>(epsg)},
    }};
    return {reinterpret_cast<const char*>(keys.data()), sizeof(keys)};
}

std::vector<std::string> RecordsOf(const SampleTile& tile) {
    std::vector<std::string> records;
    const auto add = [&](std::string_view userId, std::uint16_t recordId, std::string_view description,
                         const std::string& data) {
        records.push_back(LasRecordBytes(tile.minorVersion, userId, recordId, description, data));
    };
    if (tile.crs == SampleCrs::GeoKeys) {
        add(las::kProjectionUserId, las::kGeoKeyDirectoryRecordId, las::kGeoKeyDirectoryDescription,
            GeoKeyDirectory(tile.epsg));
    }
    if (tile.crs == SampleCrs::Wkt) {
        add(las::kProjectionUserId, las::kWktRecordId, las::kWktDescription, tile.wkt + '\0');
    }
    add("Orvex sample", 1, "How this file was made",
        "Generated terrain: hills, a river and trees; no survey was flown.");
    return records;
}

std::uint16_t RecordLength(const SampleTile& tile) {
    return las::FindPointFormat(tile.pointFormat)->minimumLength;
}

/// A point record of format 3 or 7.
std::string PointRecord(const SampleTile& tile, const std::array<std::int32_t, 3>& position,
                        const SampleTerrain& terrain, double time) {
    const bool extended = tile.pointFormat >= las::kFirstExtendedFormat;
    namespace at = las::point_at;
    FieldBlock point(RecordLength(tile));
    for (std::size_t axis = 0; axis < 3; ++axis) {
        point.Put(at::kPosition + axis * 4, position[axis]);
    }
    const std::uint8_t classification = terrain.isWater ? 9 : (terrain.isTree ? 5 : 2);
    point.Put(at::kIntensity,
              static_cast<std::uint16_t>(terrain.isTree ? 700 : (terrain.isWater ? 150 : 1400)));
    point.Put(at::kReturns, extended ? las::kOnlyReturn : las::kLegacyOnlyReturn);
    point.Put(extended ? at::kClassification : at::kLegacyClassification, classification);
    point.Put<double>(extended ? at::kGpsTime : at::kLegacyGpsTime, time);
    const std::array<std::uint16_t, 3> colour =
        terrain.isWater  ? std::array<std::uint16_t, 3>{12000, 24000, 42000}
        : terrain.isTree ? std::array<std::uint16_t, 3>{14000, 34000, 12000}
                         : std::array<std::uint16_t, 3>{36000, 32000, 22000};
    for (std::size_t i = 0; i < 3; ++i) {
        point.Put((extended ? at::kColor : at::kLegacyColor) + i * 2, colour[i]);
    }
    return point.Take();
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

}  // namespace

double SampleNoise(std::int64_t x, std::int64_t y) {
    auto bits = static_cast<std::uint64_t>(x) * 0x9E3779B97F4A7C15ULL ^
                static_cast<std::uint64_t>(y) * 0xC2B2AE3D27D4EB4FULL;
    bits ^= bits >> 29U;
    bits *= 0xBF58476D1CE4E5B9ULL;
    bits ^= bits >> 32U;
    return static_cast<double>(bits % 65536) / 65535.0;
}

SampleTerrain SampleTerrainAt(std::int64_t x, std::int64_t y) {
    const double fx = static_cast<double>(x);
    const double fy = static_cast<double>(y);
    const double hills = 40 * std::sin(fx / 131) * std::cos(fy / 97) + 18 * std::sin(fx / 53 + fy / 71);
    const double river = std::abs(fy - 210 - 60 * std::sin(fx / 120));
    const bool isWater = river < 12;
    const bool isTree = !isWater && std::sin(fx / 17) + std::sin(fy / 23) > 0.7 && SampleNoise(x, y) > 0.5;
    const double ground = isWater ? 212 : 250 + hills + 0.3 * SampleNoise(y, x) - 40 / (1 + river / 20);
    return {ground + (isTree ? 4 + 12 * SampleNoise(x + 7, y) : 0), isTree, isWater};
}

std::string MakeSampleLas(const SampleTile& tile) {
    const Points points = PointsOf(tile);
    const std::vector<std::string> records = RecordsOf(tile);
    std::string recordBytes;
    for (const std::string& record : records) {
        recordBytes += record;
    }
    LasHeaderFields header;
    header.minorVersion = tile.minorVersion;
    header.pointFormat = tile.pointFormat;
    header.recordLength = RecordLength(tile);
    header.globalEncoding = tile.crs == SampleCrs::Wkt ? las::encoding::kWkt : 0;
    header.systemIdentifier = "Generated";
    header.generatingSoftware = "Orvex sample project";
    header.creationDay = 152;
    header.creationYear = 2024;
    header.recordCount = static_cast<std::uint32_t>(records.size());
    header.offsetToPoints = LasHeaderSize(tile.minorVersion) + static_cast<std::uint32_t>(recordBytes.size());
    header.points = points.count;
    header.scale = {HorizontalScale(tile), HorizontalScale(tile), kScale};
    header.offset = {tile.west, tile.south, 0};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        header.min[axis] = points.low[axis] * header.scale[axis] + header.offset[axis];
        header.max[axis] = points.high[axis] * header.scale[axis] + header.offset[axis];
    }
    return LasHeaderBytes(header) + recordBytes + points.bytes;
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
