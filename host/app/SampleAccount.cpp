#include "host/app/SampleAccount.h"

#include <array>
#include <cstring>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "orvexcommon/OrvexUtilities.h"

namespace orvex {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

/// A file of the data folder as a layer of the account.
struct SampleLayer {
    const char* name;
    const char* file;    ///< in the data folder
    const char* stored;  ///< in the account's folder of files
    const char* modified;
};

struct SampleCloudProject {
    const char* id;
    const char* name;
    bool isDescribed;  ///< its listing tells more than name and URL
    std::vector<SampleLayer> layers;
};

std::vector<SampleCloudProject> SampleProjects() {
    const char* const flown = "2019-06-14T09:30:00Z";
    const char* const again = "2024-04-02T07:12:45Z";
    const SampleLayer tile1{"Tile 1", "survey 2019/tile_1.las", "survey-2019/tile_1.las", flown};
    return {{"p1",
             "Survey 2019",
             true,
             {tile1,
              {"Tile 2", "survey 2019/tile_2.las", "survey-2019/tile_2.las", flown},
              {"Tile 3", "survey 2019/tile_3.las", "survey-2019/tile_3.las", flown}}},
            {"p2",
             "Survey 2024",
             true,
             {{"Tile 4", "survey 2024/tile_4.las", "survey-2024/tile_4.las", again},
              {"Tile 7 (LAZ)", "survey 2024/tile_7.laz", "survey-2024/tile_7.laz", again}}},
            {"p3", "Survey 2019 Cycle - Archive 03", true, {tile1}},
            {"p4",
             "Einzelst\u00fccke",
             false,
             {{"Gel\u00e4nde ohne CRS", "no crs.las", "no-crs.las", ""},
              {"Truncated", "damaged/truncated.las", "truncated.las", ""}}},
            {"p5", "Empty", true, {}}};
}

template <typename Number>
Number NumberAt(const char* bytes) {
    Number number{};
    std::memcpy(&number, bytes, sizeof(number));
    return number;
}

/// Number of points that the header states.
std::uint64_t PointsOf(const fs::path& las) {
    constexpr std::size_t kMinorVersion = 25;
    constexpr std::size_t kLegacyPoints = 107;
    constexpr std::size_t kPoints = 247;
    std::array<char, 375> header{};
    std::ifstream(las, std::ios::binary).read(header.data(), header.size());
    return header[kMinorVersion] >= 4 ? NumberAt<std::uint64_t>(&header[kPoints])
                                      : NumberAt<std::uint32_t>(&header[kLegacyPoints]);
}

void Describe(Json& json, const SampleLayer& layer, const fs::path& file, const std::string& wkt) {
    json["type"] = file.extension() == ".laz" ? "LAZ" : "LAS";
    json["wkt"] = wkt;
    json["bytes"] = fs::file_size(file);
    json["points"] = std::to_string(PointsOf(file));
    json["crs"] = OrvexUtilities::CrsGetCRSName(wkt);
    json["modified"] = layer.modified;
}

Json LayersOf(const SampleCloudProject& project, const fs::path& folder, const fs::path& data,
              const std::string& wkt) {
    Json layers = Json::array();
    for (const SampleLayer& layer : project.layers) {
        const fs::path file = folder / "files" / layer.stored;
        fs::create_directories(file.parent_path());
        // The library's own option for this does not work on Windows.
        if (!fs::exists(file)) {
            fs::copy_file(data / layer.file, file);
        }
        Json json{{"name", layer.name}};
        if (project.isDescribed) {
            Describe(json, layer, file, wkt);
        }
        json["url"] = std::string("files/") + layer.stored;
        json["id"] = std::string(project.id) + "-" + std::to_string(layers.size() + 1);
        json["project"] = project.id;
        layers.push_back(std::move(json));
    }
    return layers;
}

void WriteJson(const fs::path& path, const Json& json) {
    std::ofstream file(path, std::ios::binary);
    file << json.dump(1) << '\n';
    if (!file.flush()) {
        throw fs::filesystem_error("write", path, std::make_error_code(std::errc::io_error));
    }
}

}  // namespace

void WriteSampleAccount(const fs::path& folder, const fs::path& data, int epsg) {
    const std::string wkt = OrvexUtilities::CrsGetPrettyWktFromEPSG(epsg);
    fs::create_directories(folder / "projects");
    Json projects = Json::array();
    for (const SampleCloudProject& project : SampleProjects()) {
        projects.push_back({{"id", project.id}, {"name", project.name}});
        WriteJson(folder / "projects" / (std::string(project.id) + ".json"),
                  {{"layers", LayersOf(project, folder, data, wkt)}});
    }
    WriteJson(folder / "projects.json", {{"projects", projects}});
}

}  // namespace orvex
