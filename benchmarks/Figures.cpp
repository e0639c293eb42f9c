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
            json.Key("name");
            json.Utf8(figure.name);
            json.Key("value");
            json.Number(figure.value);
            json.Key("unit");
            json.Utf8(figure.unit);
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
