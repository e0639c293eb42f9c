#include "dialog/grid/GridColumnChoice.h"

#include <algorithm>
#include <charconv>
#include <sstream>

namespace orvex {
namespace {

constexpr const char* kHeading = "columns 1";
constexpr int kLeastWidth = 8;
constexpr int kMostWidth = 10'000;

std::optional<int> WidthIn(const std::string& text) {
    int width = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, width);
    const bool good = error == std::errc() && stop == end && width >= kLeastWidth && width <= kMostWidth;
    return good ? std::optional(width) : std::nullopt;
}

/// False if the line says nothing that is known.
bool Take(GridColumnChoice& choice, const std::string& what, const std::string& column,
          const std::string& value) {
    if (what == "width") {
        const std::optional<int> width = WidthIn(value);
        choice.widths[column] = width.value_or(0);
        return width.has_value();
    }
    if (what == "shown") {
        choice.shown[column] = value == "yes";
        return value == "yes" || value == "no";
    }
    choice.sortColumn = column;
    choice.sortsDescending = value == "down";
    return what == "sort" && (value == "up" || value == "down");
}

}  // namespace

std::string GridColumnChoice::ToText() const {
    std::ostringstream out;
    out << kHeading << '\n';
    for (const auto& [column, width] : widths) {
        out << "width " << column << ' ' << std::to_string(width) << '\n';
    }
    for (const auto& [column, isShown] : shown) {
        out << "shown " << column << (isShown ? " yes\n" : " no\n");
    }
    if (!sortColumn.empty()) {
        out << "sort " << sortColumn << (sortsDescending ? " down\n" : " up\n");
    }
    return out.str();
}

std::optional<GridColumnChoice> GridColumnChoice::FromText(const std::string& text,
                                                           std::span<const GridColumn> columns) {
    std::istringstream in(text);
    std::string line;
    if (!std::getline(in, line) || line != kHeading) {
        return std::nullopt;
    }
    GridColumnChoice choice;
    while (std::getline(in, line)) {
        std::istringstream words(line);
        std::string what;
        std::string column;
        std::string value;
        std::string more;
        words >> what >> column >> value;
        const bool isKnown = std::any_of(columns.begin(), columns.end(), [&column](const GridColumn& known) {
            return column == known.name && !known.hidden;
        });
        if (!isKnown || words >> more || !Take(choice, what, column, value)) {
            return std::nullopt;
        }
    }
    return choice;
}

}  // namespace orvex
