#include "raster/RasterWarnings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Format.h"
#include "support/Text.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(RasterWarnings, MessagesLoseTheNamesOfFilesAndFunctions) {
    const std::pair<const char*, const wchar_t*> cases[] = {
        {"/data/a.tif: It went wrong.", L"It went wrong"},
        {"C:\\data\\a.tif: It went wrong", L"It went wrong"},
        {"TIFFReadDirectory:It went wrong", L"It went wrong"},
        {"JPEG:Reader:It went wrong: twice", L"It went wrong: twice"},
        {"It went wrong\nHint for programmers", L"It went wrong"},
        {"`/data/a.tif' is odd: very", L"`/data/a.tif' is odd: very"},
        // Nothing behind the colon.
        {"Reading /data/a.tif failed:\nno such thing", L"Reading /data/a.tif failed"},
        {"/data/a.tif: ", L"/data/a.tif"},
    };
    for (const auto& [message, plain] : cases) {
        EXPECT_THAT(PlainMessages({message}), ElementsAre(FormatText(Text(41209_lsid), {plain}))) << message;
    }
    for (const char* silent : {"", "\n", " . ", "::", "TIFFOpen:."}) {
        EXPECT_THAT(PlainMessages({silent}), IsEmpty()) << silent;
    }
}

TEST(RasterWarnings, KnownOnesHaveTextsOfTheirOwnAndEachIsToldOnce) {
    EXPECT_THAT(
        PlainMessages({"TIFFFetchNormalTag:Incorrect count for \"GeoKeys\"", "IFD looping detected",
                       "again: IFD looping detected", "'a' not recognized as a supported file format."}),
        ElementsAre(FormatText(Text(41218_lsid), {L"GeoKeys"}), Text(41233_lsid)));
    EXPECT_EQ(PlainReason({"IFD looping detected", "Too many blocks"}), Text(41213_lsid)) << "the last one";
    EXPECT_EQ(PlainReason({}), L"");
}

}  // namespace
}  // namespace orvex
