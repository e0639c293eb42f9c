#include "benchmarks/Figures.h"

#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <iostream>

#include "host/inspect/JsonWriter.h"

namespace orvex::bench {

void Figures::Add(const std::string& name, double value, const std::string& unit) {
    std::cout << fmt::format("figure\t{}\t{:.6g}\t{}", name, value, unit) << std::endl;
    figures_.push_back({name, value, unit});
}

bool Figures::Write(const std::string& path) const {
    const std::string part = path + ".part";
    {
        std::ofstream file(part, std::ios::binary);
        JsonWriter json(file);
        json.BeginArray();
        for (const Figure& figure : figures_) {
            json.BeginObject();
            json.Member("name", figure.name);
            json.Member("value", figure.value);
            json.Member("unit", figure.unit);
            json.EndObject();
        }
        json.EndArray();
        if (!file.flush()) {
            return false;
        }
    }
    std::error_code error;
    std::filesystem::rename(part, path, error);
    return !error;
}

}  // namespace orvex::bench
