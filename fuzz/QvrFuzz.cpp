// Reads arbitrary bytes as the companion of a LAS file.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "las/companion/CompanionState.h"
#include "las/companion/QvrFile.h"
#include "las/companion/QvrVerify.h"
#include "las/testing/LasFiles.h"
#include "support/LDataError.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using namespace orvex;

void Require(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", what);
        std::abort();
    }
}

void Select(const QvrFile& qvr, const LasExtent& view, std::uint64_t most) {
    std::uint64_t end = 0;
    std::uint64_t count = 0;
    for (const PointRange& range : qvr.Select(view, most)) {
        Require(range.first >= end && range.count > 0, "ranges ascend");
        end = range.first + range.count;
        count += range.count;
    }
    Require(end <= qvr.PointCount(), "ranges are points of the file");
    Require(count / QvrFile::kMostBeside <= most, "no more points than asked for");
}

void ReadAll(const std::wstring& path) {
    try {
        const auto qvr = QvrFile::Open(path);
        const LasExtent whole = qvr->RootBox();
        for (const std::uint64_t most : {std::uint64_t{0}, std::uint64_t{10}, ~std::uint64_t{0}}) {
            Select(*qvr, whole, most);
            Select(*qvr, Octant(whole, 5), most);
        }
        Kst::NullProgress progress;
        VerifyQvrPoints(*qvr, progress);
    } catch (const LDataError& error) {
        Require(!error.Text().empty(), "a failure has a text");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const orvex::testing::LasFolder folder;
    static const std::wstring las =
        folder.Write(orvex::testing::LasBuilder(14, 6).AddPoints(40), L"input.las");
    // A file that is truncated and written anew goes to the disk when it is closed, which takes long.
    std::filesystem::remove(folder.Path() / "input.qvr");
    ReadAll(folder.Write(L"input.qvr", std::string(reinterpret_cast<const char*>(data), size)));
    const CompanionFacts facts = CheckCompanion(las);
    Require(facts.state != CompanionState::None, "there is a companion");
    Require((facts.state == CompanionState::Fresh) == facts.reason.empty(), "a reason unless it is fresh");
    return 0;
}
