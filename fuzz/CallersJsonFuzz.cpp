// Reads arbitrary bytes as the JSON of a caller.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "support/JsonText.h"
#include "support/LDataError.h"
#include "support/Text.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using namespace orvex;

void Require(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", what);
        std::abort();
    }
}

void Try(const std::string& parsed) {
    const std::wstring text = JsonWide(parsed);
    Require(text.find(L'\0') == std::wstring::npos, "no text has a zero");
    const std::string quoted = JsonQuoted(text);
    Require(ValidUtf8(quoted) == quoted, "what is written is UTF-8");
    Require(JsonWide(ParseCallersJson(quoted).get<std::string>()) == text, "a text survives");
}

// The depth is limited.
void Try(const nlohmann::json& json) {  // NOLINT(misc-no-recursion)
    if (json.is_string()) {
        Try(json.get_ref<const std::string&>());
    }
    if (json.is_structured()) {
        for (const auto& [key, value] : json.items()) {
            Try(key);
            Try(value);
        }
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        Try(ParseCallersJson({reinterpret_cast<const char*>(data), size}));
    } catch (const LDataError& error) {
        Require(!error.Text().empty(), "a refusal has a reason");
    }
    return 0;
}
