// A host in C++17 without Qt, for any compiler: nothing but the interface in C is shared with the component.
#include <orvexcommon/orvex.hpp>

#include <iostream>
#include <map>
#include <nlohmann/json.hpp>
#include <utility>

int main() {
    std::map<std::pair<std::string, std::string>, std::string>
        settings;  // JSON texts; a real host stores them
    orvexcommon::Host host;
    host.getSetting = [&](const std::string& section, const std::string& key) {
        const auto stored = settings.find({section, key});
        return stored == settings.end() ? std::nullopt : std::optional<std::string>(stored->second);
    };
    host.setSetting = [&](const std::string& section, const std::string& key, const std::string& json) {
        settings[{section, key}] = json;
    };
    host.projectFolder = [] { return std::string(); };  // none is open
    host.log = [](std::int32_t, const std::string& line) { std::clog << line + "\n"; };

    const nlohmann::json request = {{"existingLasLayers", {{"Survey 2019", ""}}}, {"showRasterTab", true}};
    try {
        const std::optional<std::string> result = orvexcommon::ShowAddFiles(request.dump(), host);
        if (!result) {
            std::cout << "Cancelled, or nothing was chosen\n";
            return 0;
        }
        const nlohmann::json chosen = nlohmann::json::parse(*result);
        for (const auto& [path, details] : chosen.at("lasFileDetails").items()) {
            std::cout << path << ": " << details.at("las").at("pointCount") << " points to layer "
                      << chosen.at("lasFileLayers").at(path).get<std::string>() << '\n';
        }
        return 0;
    } catch (const orvexcommon::Error& error) {
        std::cerr << "Error " << error.Status() << ": " << error.what() << '\n';
        return 1;
    }
}
