#include "raster/RasterFindings.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <utility>

#include "crs/ExtentFindings.h"
#include "support/Format.h"
#include "support/Text.h"

namespace orvex {
namespace {

using enum FindingSeverity;
using Findings = std::vector<Finding>;

constexpr FindingKind kNoCrs{"no-crs", Note, text::kFileWithoutCrs, {.member = "/crs"}};
constexpr FindingKind kCrsUnreadable{"crs-unreadable", Warning, text::kCrsUnreadable, {.member = "/crs"}};
constexpr FindingKind kRotated{"rotated", Note, text::kRasterRotated, {.member = "/raster/transform"}};
constexpr FindingKind kControlPointsOnly{
    "control-points-only", Warning, text::kRasterControlPointsOnly, {.member = "/raster/controlPoints"}};
constexpr FindingKind kRpcOnly{"rpc-only", Warning, text::kRasterRpcOnly, {.member = "/raster/hasRpc"}};
constexpr FindingKind kNoGeoreference{
    "no-georeference", Warning, text::kRasterNoGeoreference, {.member = "/raster/transform"}};
constexpr FindingKind kNoOverviews{
    "no-overviews", Note, text::kRasterNoOverviews, {.member = "/raster/overviews"}};
constexpr FindingKind kSeveralBands{
    "dem-several-bands", Warning, text::kDemSeveralBands, {.member = "/raster/bands"}};
constexpr FindingKind kColors{"dem-colors", Warning, text::kDemColors, {.member = "/raster/colorModel"}};
constexpr FindingKind kComplexNumbers{
    "dem-complex-numbers", Error, text::kDemComplexNumbers, {.member = "/raster/dataType"}};
constexpr FindingKind kNoNoDataValue{
    "dem-no-nodata-value", Note, text::kDemNoNoDataValue, {.member = "/raster/nodata"}};
constexpr FindingKind kNoVerticalCrs{
    "dem-no-vertical-crs", Note, text::kDemNoVerticalCrs, {.member = "/crs/verticalName"}};

// 8192 x 8192. Larger images are slow to draw as a whole without overviews.
constexpr std::int64_t kManyPixels = std::int64_t{1} << 26U;

const RasterBandProperties* FirstBand(const RasterProperties& properties) {
    return properties.bandDetails->empty() ? nullptr : &properties.bandDetails->front();
}

void CheckCrs(const RasterProperties& properties, const CrsDescription& crs, Findings& findings) {
    if (properties.wkt->empty()) {
        findings.push_back(MakeFinding(kNoCrs));
    } else if (crs.name.empty()) {
        findings.push_back(MakeFinding(kCrsUnreadable));
    }
}

void CheckGeoreference(const RasterProperties& properties, Findings& findings) {
    if (properties.extent) {
        const auto& t = properties.transform;
        if (t && ((*t)[2] != 0 || (*t)[4] != 0)) {
            findings.push_back(MakeFinding(kRotated));
        }
    } else if (properties.controlPoints > 0) {
        findings.push_back(MakeFinding(kControlPointsOnly, {properties.controlPoints}));
    } else if (properties.hasRpc) {
        findings.push_back(MakeFinding(kRpcOnly));
    } else if (!(properties.pixelWidth > 0)) {
        findings.push_back(MakeFinding(kNoGeoreference));
    }
}

void CheckPlace(const RasterProperties& properties, const CrsDescription& crs, Findings& findings) {
    if (properties.extent) {
        const std::span<const double, 4> extent(*properties.extent);
        if (std::optional<Finding> finding = CheckExtent(crs, extent.first<2>(), extent.last<2>())) {
            finding->where.member = "/raster/extent";
            findings.push_back(*std::move(finding));
        }
    }
}

void CheckImage(const RasterProperties& properties, Findings& findings) {
    if (properties.overviews == 0 && std::int64_t{properties.width} * properties.height >= kManyPixels) {
        findings.push_back(MakeFinding(kNoOverviews, {properties.width, properties.height}));
    }
}

void CheckDem(const RasterProperties& properties, const CrsDescription& crs, Findings& findings) {
    if (properties.bands > 1) {
        findings.push_back(MakeFinding(kSeveralBands, {properties.bands}));
    }
    constexpr std::int32_t kColorModel = 2;
    constexpr std::int32_t kPaletteKind = 3;
    if (properties.colorModel == kColorModel || properties.rasterKind == kPaletteKind) {
        findings.push_back(MakeFinding(kColors));
    }
    if (const RasterBandProperties* band = FirstBand(properties)) {
        if (band->dataType.starts_with(L"C")) {
            findings.push_back(MakeFinding(kComplexNumbers));
        }
        if (band->dataType.starts_with(L"Float") && !band->nodata) {
            findings.push_back(MakeFinding(kNoNoDataValue));
        }
    }
    if (!properties.wkt->empty() && crs.verticalName.empty()) {
        findings.push_back(MakeFinding(kNoVerticalCrs));
    }
}

/// A message of GDAL, recognised by some of its words, and our text for it. The text's "%s" becomes the part
/// of the message between `before` (empty: from the start) and `after` (empty: to the end, without a full
/// stop); both are empty where the text has no "%s".
struct KnownMessage {
    std::string_view words;
    StringId text;
    std::string_view before;
    std::string_view after;
};
constexpr KnownMessage kKnownMessages[] = {
    {"missing codec", text::kRasterCompressionUnsupported, "missing codec ", ""},
    {"Too large image size", text::kRasterTooLarge, "image size: ", ""},
    {"Too large block size", text::kRasterTooManyBlocks, "", ""},
    {"Too many blocks", text::kRasterTooManyBlocks, "", ""},
    {"header file, but to open", text::kRasterIsHeaderOfSeveral, "", ""},
    {"Can not read TIFF directory", text::kRasterDirectoryUnreadable, "", ""},
    {"Failed to read directory", text::kRasterDirectoryUnreadable, "", ""},
    {"IFD looping", text::kRasterDirectoryLoop, "", ""},
    {" as horizontal datum", text::kRasterDatumNotWgs84, "indicates ", " as horizontal"},
    {"is missing required", text::kRasterTagUnreadable, "\"", "\""},
    {"Cannot read TIFF header", text::kRasterDamagedOrUnsupported, "", ""},
    {"Cannot handle zero", text::kRasterNoImage, "", ""},
    {"Image file is too small", text::kRasterShorterThanHeader, "", ""},
    {"\"StripByteCounts\" field, ", text::kRasterBlockSizesWrong, "", ""},
    {"\"TileByteCounts\" field, ", text::kRasterBlockSizesWrong, "", ""},
    {"Sanity check on size of", text::kRasterTagUnreadable, "\"", "\""},
    {"IO error during reading of", text::kRasterTagUnreadable, "\"", "\""},
    {"Incorrect count for", text::kRasterTagUnreadable, "\"", "\""},
    {"Invalid data type for tag", text::kRasterTagUnreadable, "for tag ", ""},
    {"Incompatible type for", text::kRasterTagUnreadable, "\"", "\""},
    {"incorrect count for", text::kRasterTagUnreadable, "\"", "\""},
    {"Bad value", text::kRasterTagUnreadable, "\"", "\""},
    {"different values per sample", text::kRasterTagUnreadable, "\"", "\""},
    {"unknown tag type", text::kRasterDirectoryUnreadable, "", ""},
    {"tags are not sorted", text::kRasterTagsUnsorted, "", ""},
    {"GeoTIFF tags apparently corrupt", text::kCrsUnreadable, "", ""},
    {"crs not found", text::kRasterCrsUnknown, "", ""},
    {"Key G", text::kCrsUnreadable, "", ""},
    {"of unknown type", text::kCrsUnreadable, "", ""},
    {"parsing CoordSys", text::kCrsUnreadable, "", ""},
    {"missing , or ]", text::kCrsUnreadable, "", ""},
    {"missing [", text::kCrsUnreadable, "", ""},
    {": No such file or directory", text::kRasterReferencedFileMissing, "", ": No such file"},
    {"File too large regarding tile size", text::kRasterTooManyBlocks, "", ""},
    {"IReadBlock failed", text::kRasterPixelsUnreadable, "", ""},
    {"TIFFReadScanline() failed", text::kRasterPixelsUnreadable, "", ""},
    {"Cannot read offset/size for strile", text::kRasterBlockTableUnreadable, "", ""},
    {"PartialReadStripArray", text::kRasterBlockTableUnreadable, "", ""},
    {"orrupt JPEG data", text::kRasterPixelsUnreadable, "", ""},
    {"VSIFReadL(", text::kRasterDirectoryUnreadable, "", ""},
    {"GDALMetadata", text::kRasterMetadataUnreadable, "", ""},
    {"EXIF", text::kRasterMetadataUnreadable, "", ""},
    {"XML", text::kRasterMetadataUnreadable, "", ""},
    {"Sum of Photometric", text::kRasterBandsUnexplained, "", ""},
    {"it has zero usable bands", text::kRasterNoImage, "", ""},
    {"Invalid dataset dimensions", text::kRasterNoImage, "", ""},
    {"datastream contains no image", text::kRasterNoImage, "", ""},
    {"libjpeg:", text::kRasterDamagedOrUnsupported, "", ""},
    {"libpng:", text::kRasterDamagedOrUnsupported, "", ""},
    {"opj_", text::kRasterDamagedOrUnsupported, "", ""},
    {"JP2", text::kRasterDamagedOrUnsupported, "", ""},
    {"ENVI header", text::kRasterDamagedOrUnsupported, "", ""},
    {"record missing", text::kRasterDamagedOrUnsupported, "", ""},
    {"Unable to parse", text::kRasterDamagedOrUnsupported, "", ""},
    {"Unsupported TIFF configuration", text::kRasterDamagedOrUnsupported, "", ""},
    // Meant for programmers, or said besides the cause.
    {"is TIFF_SETGET_UNDEFINED", StringId{}, "", ""},
    {"RowsPerStrip not defined", StringId{}, "", ""},
    {"not recognized as a supported file format", StringId{}, "", ""},
};

bool IsNameLetter(char letter) {
    return std::isalnum(static_cast<unsigned char>(letter)) != 0 || letter == '_';
}

/// The message without any number of prefixes such as "FunctionOfALibrary:".
std::string_view WithoutPrefixes(std::string_view message) {
    for (;;) {
        std::size_t length = 0;
        if (const std::size_t colon = message.find(':'); colon != std::string_view::npos) {
            const std::string_view prefix = message.substr(0, colon);
            const bool isFunction = !prefix.empty() && std::ranges::all_of(prefix, IsNameLetter) &&
                                    prefix.size() + 1 < message.size() && message[colon + 1] != ' ';
            length = isFunction ? colon + 1 : 0;
        }
        if (length == 0) {
            return message;
        }
        message.remove_prefix(length);
    }
}

std::string Clean(std::string_view message) {
    // Further lines tell programmers what GDAL does about it.
    message = message.substr(0, message.find('\n'));
    // A path in front ends at the first colon behind its last separator; a drive letter has a colon of its
    // own.
    if (const std::size_t slash = message.find_last_of("/\\"); slash != std::string_view::npos) {
        const std::size_t end = message.find(':', slash);
        const std::size_t rest = message.find_first_not_of(": ", end);
        const bool isPrefix =
            rest != std::string_view::npos && message.find('\'') > end && message.find('`') > end;
        message = isPrefix ? message.substr(rest) : message;
    }
    message = WithoutPrefixes(message);
    return std::string(message.substr(0, message.find_last_not_of(" .:") + 1));
}

std::wstring KnownText(std::string_view message, const KnownMessage& known) {
    if (known.before.empty() && known.after.empty()) {
        return Text(known.text);
    }
    const std::size_t at = message.find(known.before);
    std::string_view part = at == std::string_view::npos ? "" : message.substr(at + known.before.size());
    if (!known.after.empty()) {
        part = part.substr(0, part.find(known.after));
    }
    while (part.ends_with('.')) {
        part.remove_suffix(1);
    }
    return FormatText(Text(known.text), {FromUtf8(part)});
}

std::wstring PlainText(const std::string& message) {
    for (const KnownMessage& known : kKnownMessages) {
        if (message.find(known.words) != std::string::npos) {
            return KnownText(message, known);
        }
    }
    const std::string cleaned = Clean(message);
    return cleaned.empty() ? std::wstring() : FormatText(Text(text::kRasterReaderSays), {FromUtf8(cleaned)});
}

}  // namespace

std::vector<Finding> ValidateRaster(const RasterProperties& properties, const CrsDescription& crs,
                                    RasterUse use) {
    Findings findings;
    for (const std::wstring& text : properties.warnings) {
        findings.push_back({Warning, text, "reader-message"});
    }
    CheckCrs(properties, crs, findings);
    CheckGeoreference(properties, findings);
    CheckPlace(properties, crs, findings);
    if (use == RasterUse::Dem) {
        CheckDem(properties, crs, findings);
    } else {
        CheckImage(properties, findings);
    }
    std::ranges::stable_sort(findings, std::ranges::greater{}, &Finding::severity);
    return findings;
}

std::vector<std::wstring> PlainMessages(const std::vector<std::string>& messages) {
    std::vector<std::wstring> texts;
    for (const std::string& message : messages) {
        std::wstring text = PlainText(message);
        if (!text.empty() && std::ranges::find(texts, text) == texts.end()) {
            texts.push_back(std::move(text));
        }
    }
    return texts;
}

std::wstring PlainReason(const std::vector<std::string>& messages) {
    const std::vector<std::wstring> texts = PlainMessages(messages);
    // The last message is the error, the others led to it.
    return texts.empty() ? std::wstring() : texts.back();
}

}  // namespace orvex
