// Asks about arbitrary bytes as a CAD or KML file of each kind.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "host/utilities/testing/FeatureAnswer.h"
#include "support/testing/TemporaryFolder.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using orvex::testing::Ask;
using orvex::testing::FeatureAnswer;
using orvex::testing::FeatureQuestion;
using orvex::testing::TemporaryFolder;

void Require(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", what);
        std::abort();
    }
}

void Check(FeatureQuestion question, const std::wstring& path) {
    const FeatureAnswer answer = Ask(question, path);
    std::uint64_t sum = 0;
    for (const auto& [name, count] : answer.layers) {
        sum += count;
    }
    Require(answer.isRead == (answer.features != 0), "what is read has features");
    Require(sum == answer.features, "every feature is of a layer");
    Require(answer.isRead || !answer.message.empty(), "what cannot be read has a reason");
    const tagOrvexExtent& extent = answer.extent;
    Require(extent.minX > extent.maxX || extent.minY <= extent.maxY, "an extent is one in both directions");
    Require(std::isfinite(extent.minX) && std::isfinite(extent.maxY), "an extent is finite");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TemporaryFolder folder;
    // GDAL keeps an archive's contents by its name.
    static std::uint64_t number = 0;
    const std::wstring path = folder.Write(L"input" + std::to_wstring(number++),
                                           std::string(reinterpret_cast<const char*>(data), size));
    Check(&OrvexUtilities::GetDWGInfo, path);
    Check(&OrvexUtilities::GetDXFInfo, path);
    Check(&OrvexUtilities::GetDGNInfo, path);
    Check(&OrvexUtilities::GetKMLInfo, path);
    Require(folder.Entries() == 1, "nothing is written");
    std::filesystem::remove(folder.Path() / ("input" + std::to_string(number - 1)));
    return 0;
}
