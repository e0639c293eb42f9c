#include "raster/RasterFindings.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <string_view>

#include "support/Format.h"
#include "support/Text.h"

namespace orvex {
namespace {

using enum FindingSeverity;
using Findings = std::vector<Finding>;

// 8192 x 8192. Larger images are slow to draw as a whole without overviews.
constexpr std::int64_t kManyPixels = std::int64_t{1} << 26U;

const RasterBandProperties* FirstBand(const RasterProperties& properties) {
    return properties.bandDetails.empty() ? nullptr : &properties.bandDetails.front();
}

void CheckCrs(const RasterProperties& properties, const CrsDescription& crs, Findings& findings) {
    if (properties.wkt.empty()) {
        findings.push_back({Note, Text(40121_lsid)});
    } else if (crs.name.empty()) {
        findings.push_back({Warning, Text(40122_lsid)});
    }
}

void CheckGeoreference(const RasterProperties& properties, Findings& findings) {
    if (properties.extent) {
        const auto& t = properties.transform;
        if (t && ((*t)[2] != 0 || (*t)[4] != 0)) {
            findings.push_back({Note, Text(41224_lsid)});
        }
    } else if (properties.controlPoints > 0) {
        findings.push_back({Warning, FormatText(Text(41222_lsid), {properties.controlPoints})});
    } else if (properties.hasRpc) {
        findings.push_back({Warning, Text(41223_lsid)});
    } else if (!(properties.pixelWidth > 0)) {
        findings.push_back({Warning, Text(41221_lsid)});
    }
}

void CheckImage(const RasterProperties& properties, Findings& findings) {
    if (properties.overviews == 0 && std::int64_t{properties.width} * properties.height >= kManyPixels) {
        findings.push_back({Note, FormatText(Text(41225_lsid), {properties.width, properties.height})});
    }
}

void CheckDem(const RasterProperties& properties, const CrsDescription& crs, Findings& findings) {
    if (properties.bands > 1) {
        findings.push_back({Warning, FormatText(Text(41226_lsid), {properties.bands})});
    }
    constexpr std::int32_t kColorModel = 2;
    constexpr std::int32_t kPaletteKind = 3;
    if (properties.colorModel == kColorModel || properties.rasterKind == kPaletteKind) {
        findings.push_back({Warning, Text(41227_lsid)});
    }
    if (const RasterBandProperties* band = FirstBand(properties)) {
        if (band->dataType.starts_with(L"C")) {
            findings.push_back({Error, Text(41228_lsid)});
        }
        if (band->dataType.starts_with(L"Float") && !band->nodata) {
            findings.push_back({Note, Text(41229_lsid)});
        }
    }
    if (!properties.wkt.empty() && crs.verticalName.empty()) {
        findings.push_back({Note, Text(41230_lsid)});
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
    {"missing codec", 41205_lsid, "missing codec ", ""},
    {"Too large image size", 41206_lsid, "image size: ", ""},
    {"Too large block size", 41213_lsid, "", ""},
    {"Too many blocks", 41213_lsid, "", ""},
    {"header file, but to open", 41208_lsid, "", ""},
    {"Can not read TIFF directory", 41214_lsid, "", ""},
    {"Failed to read directory", 41214_lsid, "", ""},
    {"IFD looping", 41233_lsid, "", ""},
    {" as horizontal datum", 41504_lsid, "indicates ", " as horizontal"},
    {"is missing required", 41218_lsid, "\"", "\""},
    {"Cannot read TIFF header", 41500_lsid, "", ""},
    {"Cannot handle zero", 41216_lsid, "", ""},
    {"Image file is too small", 41217_lsid, "", ""},
    {"\"StripByteCounts\" field, ", 41219_lsid, "", ""},
    {"\"TileByteCounts\" field, ", 41219_lsid, "", ""},
    {"Sanity check on size of", 41218_lsid, "\"", "\""},
    {"IO error during reading of", 41218_lsid, "\"", "\""},
    {"Incorrect count for", 41218_lsid, "\"", "\""},
    {"Invalid data type for tag", 41218_lsid, "for tag ", ""},
    {"tags are not sorted", 41232_lsid, "", ""},
    {"GeoTIFF tags apparently corrupt", 40122_lsid, "", ""},
    {"crs not found", 41231_lsid, "", ""},
    {": No such file or directory", 41502_lsid, "", ": No such file"},
    {"File too large regarding tile size", 41213_lsid, "", ""},
    {"IReadBlock failed", 41503_lsid, "", ""},
    {"TIFFReadScanline() failed", 41503_lsid, "", ""},
    {"Cannot read offset/size for strile", 41212_lsid, "", ""},
    {"PartialReadStripArray", 41212_lsid, "", ""},
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
    return cleaned.empty() ? std::wstring() : FormatText(Text(41209_lsid), {FromUtf8(cleaned)});
}

}  // namespace

std::vector<Finding> ValidateRaster(const RasterProperties& properties, const CrsDescription& crs,
                                    RasterUse use) {
    Findings findings;
    for (const std::wstring& text : properties.warnings) {
        findings.push_back({Warning, text});
    }
    CheckGeoreference(properties, findings);
    CheckCrs(properties, crs, findings);
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
