#include "fuzz/Seeds.h"

namespace orvex::fuzz {

std::vector<std::string> Seeds() {
    return {
        R"({"initialTab": 1, "existingLasLayers": {"Boden \u00fc": "PROJCS[\"x\"]"}, "initialPaths": ["C:\\a\\b.las"]})",
        R"(["\ud83d\ude00", "\udc80", "\ud800", "\ud83d\ud83d\ude00", "\udc80\ud800a", "\\ud800", "\ue480"])",
        R"({"\udcff": true, "\u0000": null})",
        "[\"caf\xE9\"]",
        "\"\xED\xB2\x80\"",
        R"(["\u00)",
        R"("\)",
        "[1e999, -0.0, 18446744073709551615, 1e-999]",
        std::string(70, '['),
        "{\"a\":" + std::string(70, '{') + "}"};
}

}  // namespace orvex::fuzz
