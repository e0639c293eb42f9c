#include "host/app/SampleProject.h"

#include <fstream>
#include <string>

#include "host/app/SampleAccount.h"
#include "host/app/SampleLasFile.h"
#include "host/app/SamplePhotos.h"
#include "host/app/SampleRasters.h"
#include "host/app/SampleVectors.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/LDataError.h"

namespace orvex {

namespace {

namespace fs = std::filesystem;

constexpr int kUtm32 = 25832;
constexpr int kWgs84 = 4326;
constexpr double kWest = 512000;
constexpr double kSouth = 5403000;

void WriteFile(const fs::path& path, const std::string& bytes) {
    fs::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!file.flush()) {
        throw fs::filesystem_error("write", path, std::make_error_code(std::errc::io_error));
    }
}

SampleTile Tile(int column, int row) {
    SampleTile tile;
    tile.west = kWest + column * 200.0;
    tile.south = kSouth + row * 200.0;
    tile.epsg = kUtm32;
    return tile;
}

SampleTile NewTile(int column, int row) {
    SampleTile tile = Tile(column, row);
    tile.minorVersion = 4;
    tile.pointFormat = 7;
    tile.crs = SampleCrs::Wkt;
    tile.wkt = OrvexUtilities::CrsGetPrettyWktFromEPSG(kUtm32);
    return tile;
}

void WriteTiles(const fs::path& data) {
    for (int column = 0; column < 3; ++column) {
        WriteFile(data / "survey 2019" / ("tile_" + std::to_string(column + 1) + ".las"),
                  MakeSampleLas(Tile(column, 0)));
        WriteFile(data / "survey 2024" / ("tile_" + std::to_string(column + 4) + ".las"),
                  MakeSampleLas(NewTile(column, 1)));
    }
    SampleTile degrees = Tile(0, 0);
    degrees.west = 9.163;
    degrees.south = 48.778;
    degrees.spacing = 1e-5;
    degrees.epsg = kWgs84;
    WriteFile(data / "wgs84.las", MakeSampleLas(degrees));
    SampleTile unknown = Tile(3, 0);
    unknown.crs = SampleCrs::None;
    WriteFile(data / "no crs.las", MakeSampleLas(unknown));
}

void WriteDamaged(const fs::path& data) {
    const std::string whole = MakeSampleLas(Tile(3, 1));
    WriteFile(data / "damaged" / "truncated.las", whole.substr(0, whole.size() / 3));
    WriteFile(data / "damaged" / "not a las file.las", "This is a text file that somebody renamed.\n");
}

bool WriteCompressed(const fs::path& data) {
    const fs::path las = data / "survey 2024" / "tile_7.part";
    WriteFile(las, MakeSampleLas(NewTile(0, 2)));
    const bool done = CompressSample(las, data / "survey 2024" / "tile_7.laz");
    fs::remove(las);
    return done;
}

void WriteSurveys(const fs::path& data) {
    WriteTiles(data);
    WriteDamaged(data);
    if (!WriteCompressed(data)) {
        throw LDataError(L"LASzip");
    }
}

/// Builds a folder unless it exists, under a temporary name that is renamed when complete. Another process
/// may complete it first.
void EnsureFolder(const fs::path& folder, const std::function<void(const fs::path&)>& build) {
    if (fs::is_directory(folder)) {
        return;
    }
    const fs::path building = fs::path(folder) += ".new";
    fs::remove_all(building);
    fs::create_directories(building);
    build(building);
    std::error_code error;
    fs::rename(building, folder, error);
    fs::remove_all(building, error);
    if (!fs::is_directory(folder)) {
        throw fs::filesystem_error("rename", folder, std::make_error_code(std::errc::io_error));
    }
}

/// An empty path if `build` fails.
template <typename Build>
fs::path MadeFolder(const fs::path& folder, Build build) {
    try {
        build();
        return folder;
    } catch (const std::exception&) {
        return {};
    }
}

void EnsureSurveys(const fs::path& folder) {
    fs::create_directories(folder);
    EnsureFolder(SampleData(folder), WriteSurveys);
}

}  // namespace

fs::path EnsureSampleAccount(const fs::path& folder) {
    const fs::path account = folder / "cloud";
    return MadeFolder(account, [&] {
        EnsureSurveys(folder);
        EnsureFolder(account,
                     [&](const fs::path& part) { WriteSampleAccount(part, SampleData(folder), kUtm32); });
    });
}

fs::path EnsureSampleProject(const fs::path& folder) {
    return MadeFolder(folder, [&] {
        const fs::path data = SampleData(folder);
        EnsureSurveys(folder);
        // Separate parts: a project of an earlier version gets the ones it lacks.
        EnsureFolder(data / "rasters",
                     [](const fs::path& part) { WriteSampleRasters(part, kWest, kSouth, kUtm32); });
        EnsureFolder(data / "elevation",
                     [](const fs::path& part) { WriteSampleElevation(part, kWest, kSouth, kUtm32); });
        EnsureFolder(data / "features",
                     [](const fs::path& part) { WriteSampleVectors(part, kWest, kSouth, kUtm32); });
        EnsureFolder(data / "photos", [&data](const fs::path& part) {
            WriteSamplePhotos(part, data / "rasters" / "orthophoto.tif");
        });
    });
}

}  // namespace orvex
