#include "host/strings/Language.h"

namespace orvex {

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
