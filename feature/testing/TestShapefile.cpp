#include "feature/testing/TestShapefile.h"

#include <algorithm>

#include "support/testing/Bytes.h"

namespace orvex::testing {
namespace {

constexpr std::size_t kHeader = 100;
constexpr std::size_t kRecordHeader = 8;
constexpr std::size_t kContent = 20;

std::string Big(std::size_t number) {
    std::string bytes = Bytes(static_cast<std::uint32_t>(number));
    std::ranges::reverse(bytes);
    return bytes;
}

std::string Header(const TestShapefile& file, std::size_t bytes) {
    const auto& [minX, minY, maxX, maxY] = file.extent;
    return Big(9994) + std::string(20, '\0') + Big(bytes / 2) + Bytes(std::int32_t{1000}, file.type) +
           Bytes(minX, minY, maxX, maxY) + std::string(32, '\0');
}

}  // namespace

std::string TestShapefile::Shp() const {
    std::string bytes = Header(*this, kHeader + points.size() * (kRecordHeader + kContent));
    for (std::size_t i = 0; i < points.size(); ++i) {
        bytes += Big(i + 1) + Big(kContent / 2) + Bytes(type, points[i][0], points[i][1]);
    }
    return bytes;
}

std::string TestShapefile::Shx() const {
    std::string bytes = Header(*this, kHeader + points.size() * 8);
    for (std::size_t i = 0; i < points.size(); ++i) {
        bytes += Big((kHeader + i * (kRecordHeader + kContent)) / 2) + Big(kContent / 2);
    }
    return bytes;
}

std::string TestShapefile::Dbf() const {
    std::string descriptions;
    std::size_t width = 1;
    for (const TestField& field : fields) {
        std::string name = field.name;
        name.resize(11);
        descriptions += name + field.type + std::string(4, '\0') + Bytes(field.width, field.decimals) +
                        std::string(14, '\0');
        width += field.width;
    }
    const std::size_t header = 33 + descriptions.size();
    return Bytes(std::uint8_t{3}, std::uint8_t{124}, std::uint8_t{5}, std::uint8_t{17},
                 static_cast<std::uint32_t>(points.size()), static_cast<std::uint16_t>(header),
                 static_cast<std::uint16_t>(width)) +
           std::string(17, '\0') + Bytes(languageDriver, std::uint16_t{0}) + descriptions + '\x0D' +
           std::string(points.size() * width, ' ') + '\x1A';
}

std::wstring TestShapefile::Write(const TemporaryFolder& folder, const std::wstring& name) const {
    folder.Write(name + L".shx", Shx());
    folder.Write(name + L".dbf", Dbf());
    return folder.Write(name + L".shp", Shp());
}

}  // namespace orvex::testing
