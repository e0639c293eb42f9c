#include "raster/RasterFindings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Format.h"
#include "support/Text.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::wstring Said(const std::wstring& message) {
    return FormatText(Text(text::kRasterReaderSays), {message});
}

TEST(RasterFindings, MessagesOfGdalBecomePlain) {
    const std::pair<const char*, std::wstring> cases[] = {
        // Without a text of our own: less the names of files and functions.
        {"/data/a.tif: It went wrong.", Said(L"It went wrong")},
        {"C:\\data\\a.tif: It went wrong", Said(L"It went wrong")},
        {"TIFFReadDirectory:It went wrong", Said(L"It went wrong")},
        {"JPEG:Reader:It went wrong: twice", Said(L"It went wrong: twice")},
        {"/a/b.tif: Function:It went wrong.", Said(L"It went wrong")},
        {"It went wrong\nHint for programmers", Said(L"It went wrong")},
        {"`/data/a.tif' is odd: very", Said(L"`/data/a.tif' is odd: very")},
        {"Reading /data/a.tif failed:\nno such thing", Said(L"Reading /data/a.tif failed")},
        {"/data/a.tif: ", Said(L"/data/a.tif")},
        // With one, and with a part of the message in it.
        {"/a b/part.tif: No such file or directory",
         FormatText(Text(text::kRasterReferencedFileMissing), {L"/a b/part.tif"})},
        {"/a/b.tif, band 1: IReadBlock failed at X offset 0, Y offset 0: TIFFReadEncodedStrip() failed.",
         Text(text::kRasterPixelsUnreadable)},
        {"/a/b.tif: _TIFFPartialReadStripArray:Cannot read offset/size for strile around ~0",
         Text(text::kRasterBlockTableUnreadable)},
        {"The DTED file /a/b.dt0 indicates WGS72 as horizontal datum. \nAs this is outdated, complain.",
         FormatText(Text(text::kRasterDatumNotWgs84), {L"WGS72"})},
        {"/a/b.tif: TIFF directory is missing required \"ImageLength\" field",
         FormatText(Text(text::kRasterTagUnreadable), {L"ImageLength"})},
        {"Incompatible type for \"Compression\"",
         FormatText(Text(text::kRasterTagUnreadable), {L"Compression"})},
        {"libpng: IHDR: CRC error", Text(text::kRasterDamagedOrUnsupported)},
        {"VSIFReadL(0x7f8a084f4c90,6*4) @ 71384 failed in HFAEntry()",
         Text(text::kRasterDirectoryUnreadable)},
        {"Unable to open /vsiorvex1//a/b.img, it has zero usable bands", Text(text::kRasterNoImage)},
        {"Key GTCitationGeoKey is of type ASCII but GeoAsciiParams is missing or corrupted",
         Text(text::kCrsUnreadable)},
        {"missing codec LZ99.", FormatText(Text(text::kRasterCompressionUnsupported), {L"LZ99"})},
    };
    for (const auto& [message, text] : cases) {
        EXPECT_THAT(PlainMessages({message}), ElementsAre(text)) << message;
    }
    for (const char* silent :
         {"", "\n", " . ", "::", "TIFFOpen:.", "'a' not recognized as a supported file format.",
          "Defined set_field_type of custom tag 8 (Tag 8) is TIFF_SETGET_UNDEFINED"}) {
        EXPECT_THAT(PlainMessages({silent}), IsEmpty()) << silent;
    }
}

TEST(RasterFindings, EachMessageOnceAndTheLastIsTheReason) {
    EXPECT_THAT(PlainMessages({"TIFFFetchNormalTag:Incorrect count for \"GeoKeys\"", "IFD looping detected",
                               "again: IFD looping detected"}),
                ElementsAre(FormatText(Text(text::kRasterTagUnreadable), {L"GeoKeys"}),
                            Text(text::kRasterDirectoryLoop)));
    EXPECT_EQ(PlainReason({"IFD looping detected", "Too many blocks"}), Text(text::kRasterTooManyBlocks));
    EXPECT_EQ(PlainReason({}), L"");
}

}  // namespace
}  // namespace orvex
