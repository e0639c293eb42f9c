#include "host/strings/Language.h"

#include <cstdlib>

namespace orvex {

Environment ProcessEnvironment() {
    return [](const char* name) {
        const char* value = std::getenv(name);
        return std::string(value == nullptr ? "" : value);
    };
}

// The order of setlocale(3) for messages, behind the product's own variable.
std::string UserLocaleName(const Environment& environment) {
    for (const char* name : {"ORVEX_LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) {
        std::string value = environment(name);
        if (!value.empty()) {
            return value;
        }
    }
    return {};
}

}  // namespace orvex
