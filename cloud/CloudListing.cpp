#include "cloud/CloudListing.h"

#include <algorithm>
#include <boost/property_tree/json_parser.hpp>
#include <boost/property_tree/ptree.hpp>
#include <charconv>
#include <iterator>
#include <sstream>

#include "support/Format.h"
#include "support/JsonLimits.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

using Tree = boost::property_tree::ptree;

constexpr std::size_t kMostCharacters = 32'768;

/// The tree's reader is recursive and takes whatever comes.
void RefuseExcess(const std::string& json) {
    if (json.size() > kMostJsonBytes) {
        throw LDataError(FormatText(Text(text::kCloudListingTooLarge), {kMostJsonBytes >> 20U}));
    }
    switch (ExcessOf(json)) {
        case JsonExcess::Depth:
            throw LDataError(FormatText(Text(text::kCloudListingTooDeep), {kMostJsonDepth}));
        case JsonExcess::Values:
            throw LDataError(FormatText(Text(text::kCloudListingTooMany), {kMostJsonValues}));
        case JsonExcess::None:
            break;
    }
}

/// Replaces nulls by empty texts of the same length, since the tree cannot tell null from "null".
void EmptyNulls(std::string& json) {
    bool inString = false;
    char last = 0;  // that is no white space
    for (std::size_t i = 0; i < json.size(); ++i) {
        const char c = json[i];
        if (inString) {
            i += c == '\\' ? 1 : 0;
            inString = c != '"';
        } else if (c == 'n' && last == ':' && json.compare(i, 4, "null") == 0) {
            json.replace(i, 4, "\"\"  ");
            inString = true;
        } else {
            inString = c == '"';
            last = c == ' ' || c == '\t' || c == '\n' || c == '\r' ? last : c;
        }
    }
}

Tree ReadTree(const std::string& json) {
    RefuseExcess(json);
    std::string text = ValidUtf8(json);  // one name in another encoding does not hide a whole page
    EmptyNulls(text);
    std::istringstream stream(std::move(text));
    Tree tree;
    boost::property_tree::read_json(stream, tree);
    return tree;
}

/// The text or number of a key; empty if lacking.
std::string ValueOf(const Tree& object, const char* key) {
    const auto found = object.find(key);
    const bool isValue = found != object.not_found() && found->second.empty();
    return isValue ? found->second.data() : std::string();
}

/// Control characters, and marks and overrides of the direction of writing, with which one name can be made
/// to look like another.
bool IsControl(wchar_t c) {
    const auto isIn = [c](unsigned first, unsigned last) {
        return static_cast<unsigned>(c) >= first && static_cast<unsigned>(c) <= last;
    };
    return isIn(0, 0x1F) || isIn(0x7F, 0x9F) || c == 0x061C || c == 0x200B || isIn(0x200E, 0x200F) ||
           isIn(0x2028, 0x202E) || isIn(0x2066, 0x2069) || c == 0xFEFF;
}

std::wstring ShownValue(const Tree& layer, const char* key) {
    const std::wstring shown = ShownCloudText(ValueOf(layer, key));
    return shown.find_first_not_of(L' ') == std::wstring::npos ? Text(text::kUnknown) : shown;
}

/// A URL or an identifier; empty if nobody could request or print it. Mended it would stand for another
/// layer.
std::wstring ExactValue(const Tree& layer, const char* key) {
    std::wstring value = FromUtf8(ValueOf(layer, key));
    return value.size() > kMostCharacters || std::ranges::any_of(value, IsControl) ? std::wstring() : value;
}

std::optional<std::uint64_t> BytesValue(const Tree& layer) {
    const std::string text = ValueOf(layer, "bytes");
    std::uint64_t bytes = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, bytes);
    return error == std::errc() && stop == end ? std::optional(bytes) : std::nullopt;
}

CloudLayer LayerOf(const Tree& layer) {
    const std::optional<std::uint64_t> bytes = BytesValue(layer);
    return {.name = ShownValue(layer, "name"),
            .type = ShownValue(layer, "type"),
            .wkt = ShownValue(layer, "wkt"),
            .size = bytes ? FormatText(kGibibytesFormat, {Gibibytes(*bytes)}) : Text(text::kUnknown),
            .points = ShownValue(layer, "points"),
            .crs = ShownValue(layer, "crs"),
            .modified = ShownValue(layer, "modified"),
            .url = ExactValue(layer, "url"),
            .id = ExactValue(layer, "id"),
            .project = ExactValue(layer, "project"),
            .bytes = bytes};
}

}  // namespace

CloudListingPage ParseProjectFiles(const std::string& json) {
    const Tree tree = ReadTree(json);
    const auto layers = tree.find("layers");
    if (layers == tree.not_found() || !layers->second.data().empty()) {
        throw LDataError(Text(text::kCloudListingNoLayers));
    }
    CloudListingPage page;
    page.next = ValueOf(tree, "next");
    page.layers.reserve(layers->second.size());
    for (const auto& [key, layer] : layers->second) {
        if (layer.data().empty()) {
            page.layers.push_back(LayerOf(layer));
        }
    }
    return page;
}

bool IsCycleArchive(std::string_view name) {
    return name.find("Cycle - Archive") != std::string_view::npos;
}

std::wstring ShownCloudText(std::string_view utf8) {
    std::wstring shown = FromUtf8(utf8);
    if (shown.size() > kMostCharacters) {
        shown.resize(WholeLength(shown, kMostCharacters));
        shown += L"...";
    }
    std::ranges::replace_if(shown, IsControl, L' ');
    return shown;
}

double Gibibytes(std::uint64_t bytes) {
    constexpr double kGibibyte = 1024.0 * 1024.0 * 1024.0;
    return static_cast<double>(bytes) / kGibibyte;
}

}  // namespace orvex
