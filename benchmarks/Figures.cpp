#include "benchmarks/Figures.h"

#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>


namespace orvex::bench {

void Figures::Add(const std::string& name, double value, const std::string& unit) {
    std::cout << fmt::format("figure\t{}\t{:.6g}\t{}", name, value, unit) << std::endl;
    figures_.push_back({name, value, unit});
}

bool Figures::Write(const std::string& path) const {
    const std::string part = path + ".part";
    {
        std::ofstream file(part, std::ios::binary);
        nlohmann::ordered_json list = nlohmann::ordered_json::array();
        for (const Figure& figure : figures_) {
            list.push_back({{"name", figure.name}, {"value", figure.value}, {"unit", figure.unit}});
        }
        file << list.dump(2) << '\n';
        if (!file.flush()) {
            return false;
        }
    }
    std::error_code error;
    std::filesystem::rename(part, path, error);
    return !error;
}

}  // namespace orvex::bench
