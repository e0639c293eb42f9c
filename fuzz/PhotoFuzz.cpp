// Lists arbitrary bytes as a photo.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "orvexcommon/OrvexUtilities.h"
#include "photo/PhotoColumns.h"
#include "photo/PhotoSeries.h"
#include "support/testing/TemporaryFolder.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using namespace orvex;

void Require(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", what);
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const orvex::testing::TemporaryFolder folder;
    const std::wstring path =
        folder.Write(L"input.jpg", std::string(reinterpret_cast<const char*>(data), size));
    std::vector<PhotoRow> rows;
    rows.push_back(InspectPhoto(path));
    ComparePhotos(rows);
    const PhotoRow& row = rows.front();
    Require(!row.threw, "every failure is an expected one");
    Require(!row.summary.empty(), "a row says how the file is");
    Require(row.loadable == (row.state != PhotoState::Failed), "a photo is loadable if it was read");
    Require(row.loadable || !row.findings.empty(), "what cannot be read has a reason");
    for (const Column<PhotoRow>& column : PhotoColumns()) {
        CellText(column, row);
    }
    constexpr std::size_t kMostThumbnail = std::size_t{1} << 20U;
    Require(OrvexUtilities::GetExifThumbnail(path).size() <= kMostThumbnail, "a thumbnail is small");
    return 0;
}
