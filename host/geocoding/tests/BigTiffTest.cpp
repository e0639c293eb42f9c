#include <gtest/gtest.h>

#include <string>

#include "orvexcommon/Geocoding.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using testing::TemporaryFolder;
using namespace std::string_literals;

TEST(BigTiff, TheFirstBytesDecideWhateverTheName) {
    const struct {
        const char* about;
        std::string bytes;
        bool isBigTiff;
    } cases[] = {
        {"little-endian", "II\x2b\0\x08\0\0\0\x10\0\0\0\0\0\0\0"s, true},
        {"big-endian", "MM\0\x2b\0\x08\0\0\0\0\0\0\0\0\0\x10"s, true},
        {"TIFF", "II\x2a\0\x08\0\0\0"s, false},
        {"version 43 in the other byte order", "II\0\x2b\0\x08\0\0"s, false},
        {"offsets of four bytes", "II\x2b\0\x04\0\0\0"s, false},
        {"cut off within the signature", "II\x2b\0\x08\0\0"s, false},
        {"empty", "", false},
    };
    const TemporaryFolder folder;
    bool isBigTiff = false;
    std::wstring message = L"of the call before";
    for (const auto& c : cases) {
        EXPECT_TRUE(Is_BigTIFF(folder.Write(L"\u00dcb\u4e2d.jpg", c.bytes), isBigTiff, message)) << c.about;
        EXPECT_EQ(isBigTiff, c.isBigTiff) << c.about;
        EXPECT_EQ(message, L"") << c.about;
    }
    for (const std::wstring& path : {folder.Name(L"absent.tif"), folder.Name(L"")}) {
        isBigTiff = true;
        EXPECT_FALSE(Is_BigTIFF(path, isBigTiff, message));
        EXPECT_FALSE(isBigTiff);
        EXPECT_NE(message, L"");
    }
}

}  // namespace
}  // namespace orvex
