// Lists arbitrary bytes as a shapefile with its sidecars. Two numbers of 16 bits, the lengths of the .shp and
// the .shx file, come first; what is left behind these is the .dbf file.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>

#include "feature/FeatureColumns.h"
#include "support/testing/Bytes.h"
#include "support/testing/TemporaryFolder.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using namespace orvex;

constexpr std::size_t kLeastShape = 12;  // bytes

void Require(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", what);
        std::abort();
    }
}

void List(const std::wstring& path) {
    std::vector<FeatureRow> rows;
    rows.push_back(InspectFeatureFile(path));
    const std::map<std::wstring, std::wstring> none;
    ApplyFeatureRules(rows, {none, false});
    const FeatureRow& row = rows.front();
    Require(!row.threw, "every failure is an expected one");
    Require(!row.summary.empty(), "a row says how the file is");
    Require(row.loadable || !row.findings.empty(), "what cannot be loaded has a reason");
    Require(row.loadable != row.place.layer.empty(), "what can be loaded has a key");
    Require(row.featureCount <= UINT16_MAX / kLeastShape, "there are no more shapes than bytes");
    for (const Column<FeatureRow>& column : FeatureColumns()) {
        CellText(column, row);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const orvex::testing::TemporaryFolder folder;
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    if (size < 2 * sizeof(std::uint16_t)) {
        return 0;
    }
    std::size_t at = 2 * sizeof(std::uint16_t);
    const auto take = [&](std::size_t length) {
        std::string part = bytes.substr(std::min(at, size), length);
        at += length;
        return part;
    };
    const std::wstring path = folder.Write(L"input.shp", take(orvex::testing::At<std::uint16_t>(bytes, 0)));
    folder.Write(L"input.shx", take(orvex::testing::At<std::uint16_t>(bytes, 2)));
    folder.Write(L"input.dbf", take(size));
    List(path);
    std::filesystem::remove(folder.Path() / "input.shx");
    List(path);
    return 0;
}
