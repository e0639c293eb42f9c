#include "support/JsonLimits.h"

namespace orvex {

JsonExcess ExcessOf(std::string_view json) {
    std::size_t depth = 0;
    std::size_t values = 0;
    bool inString = false;
    for (std::size_t i = 0; i < json.size(); ++i) {
        const char c = json[i];
        if (inString) {
            i += c == '\\' ? 1 : 0;
            inString = c != '"';
            continue;
        }
        const bool opens = c == '[' || c == '{';
        inString = c == '"';
        depth += opens ? 1 : 0;
        depth -= depth > 0 && (c == ']' || c == '}') ? 1 : 0;
        values += opens || c == ',' ? 1 : 0;
        if (depth > kMostJsonDepth || values > kMostJsonValues) {
            return depth > kMostJsonDepth ? JsonExcess::Depth : JsonExcess::Values;
        }
    }
    return JsonExcess::None;
}

}  // namespace orvex
