#pragma once
// Generated terrain, and LAS files of it.
#include <cstdint>
#include <filesystem>
#include <string>

namespace orvex {

/// The made-up landscape of the sample data at one place.
struct SampleTerrain {
    double height;  ///< metres, with the tree
    bool isTree;
    bool isWater;
};

/// The landscape at whole metres from the sample area's corner; the same whenever it is asked.
SampleTerrain SampleTerrainAt(std::int64_t x, std::int64_t y);

/// The same number between 0 and 1 for the same place, whatever made it.
double SampleNoise(std::int64_t x, std::int64_t y);

/// How a sample file says its CRS.
enum class SampleCrs { None, GeoKeys, Wkt };

/// One tile of terrain: a square of ground with trees and a river, one point a unit and a little noise.
struct SampleTile {
    double west = 0;   ///< least x, units of the CRS
    double south = 0;  ///< least y
    double spacing = 1;
    int side = 200;  ///< points along an edge
    int minorVersion = 2;
    int pointFormat = 3;
    SampleCrs crs = SampleCrs::GeoKeys;
    int epsg = 0;
    std::string wkt;            ///< for SampleCrs::Wkt, UTF-8
    double verticalFactor = 1;  ///< heights times this
};

/// Bytes of the whole LAS file. Formats 3 (LAS 1.2) and 7 (LAS 1.4) are written.
std::string MakeSampleLas(const SampleTile& tile);

/// Compresses a LAS file. False when LASzip refuses; the target may then be half written.
bool CompressSample(const std::filesystem::path& las, const std::filesystem::path& laz);

}  // namespace orvex
