#include "host/strings/StringTable.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <unordered_set>
#include <vector>

namespace orvex {
namespace {

std::string_view TakeLine(std::string_view& rest) {
    const std::size_t end = rest.find('\n');
    std::string_view line = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    return line;
}

std::vector<std::string_view> SplitColumns(std::string_view line) {
    std::vector<std::string_view> columns;
    for (std::size_t tab = line.find('\t'); tab != std::string_view::npos; tab = line.find('\t')) {
        columns.push_back(line.substr(0, tab));
        line.remove_prefix(tab + 1);
    }
    columns.push_back(line);
    return columns;
}

std::optional<unsigned> ParseId(std::string_view digits) {
    unsigned id = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), id);
    if (error != std::errc() || end != digits.data() + digits.size() || id == 0) {
        return std::nullopt;
    }
    return id;
}

std::optional<std::string> Unescape(std::string_view escaped) {
    std::string text;
    text.reserve(escaped.size());
    for (std::size_t i = 0; i < escaped.size(); ++i) {
        if (escaped[i] != '\\') {
            text.push_back(escaped[i]);
            continue;
        }
        ++i;
        switch (i < escaped.size() ? escaped[i] : '\0') {
            case 'n':
                text.push_back('\n');
                break;
            case 't':
                text.push_back('\t');
                break;
            case '\\':
                text.push_back('\\');
                break;
            default:
                return std::nullopt;
        }
    }
    return text;
}

// The reason why a line is no entry; empty when `entry` was filled.
std::string ParseLine(std::string_view line, StringEntry& entry) {
    const auto columns = SplitColumns(line);
    if (columns.size() != 3 && columns.size() != 4) {
        return "not three or four columns";
    }
    const auto id = ParseId(columns[0]);
    if (!id) {
        return "the id is not a positive number";
    }
    const bool isNamed = columns.size() == 4;
    auto text = Unescape(columns[isNamed ? 2 : 1]);
    if (!text) {
        return "unknown escape";
    }
    if (std::ranges::any_of(columns, &std::string_view::empty)) {
        return "an empty column";
    }
    entry = {*id, std::string(isNamed ? columns[1] : ""), std::move(*text), std::string(columns.back())};
    return {};
}

}  // namespace

StringTable ParseStringTable(std::string_view file) {
    StringTable table;
    std::unordered_set<unsigned> known;
    for (std::size_t number = 1; !file.empty(); ++number) {
        const std::string_view line = TakeLine(file);
        if (line.empty() || line.front() == '#') {
            continue;
        }
        StringEntry entry;
        std::string reason = ParseLine(line, entry);
        if (reason.empty() && !known.insert(entry.id).second) {
            reason = "the id " + std::to_string(entry.id) + " is there already";
        }
        if (reason.empty()) {
            table.entries.push_back(std::move(entry));
        } else {
            table.problems.push_back({number, std::move(reason)});
        }
    }
    return table;
}

std::unordered_map<unsigned, std::string> MergeStringTables(std::string_view file,
                                                            std::string_view fallbackFile) {
    std::unordered_map<unsigned, std::string> texts;
    for (const std::string_view source : {file, fallbackFile}) {
        for (StringEntry& entry : ParseStringTable(source).entries) {
            texts.try_emplace(entry.id, std::move(entry.text));
        }
    }
    return texts;
}

}  // namespace orvex
