#include "raster/RasterWarnings.h"

#include <algorithm>
#include <cctype>
#include <string_view>

#include "support/Format.h"
#include "support/Text.h"

namespace orvex {
namespace {

/// A message of GDAL's that has a text of ours: it is known by words in it. A "%s" of that text takes what
/// stands between `before` and `after`; an empty `before` means the beginning, an empty `after` the end, less
/// a dot. Where both are empty, the text has none.
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
    // What libraries say to programmers, or beside the reason.
    {"is TIFF_SETGET_UNDEFINED", StringId{}, "", ""},
    {"RowsPerStrip not defined", StringId{}, "", ""},
    {"not recognized as a supported file format", StringId{}, "", ""},
};

bool IsNameLetter(char letter) {
    return std::isalnum(static_cast<unsigned char>(letter)) != 0 || letter == '_';
}

/// Without the prefixes "path: " and "FunctionOfALibrary:", of which there may be several.
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
    // Only the first line: the others tell programmers what GDAL will do about it.
    message = message.substr(0, message.find('\n'));
    // A path ends where its colon stands; one with a drive letter has an earlier colon.
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
    // The last one is the error, those before it are what led to it.
    return texts.empty() ? std::wstring() : texts.back();
}

}  // namespace orvex
