#include "support/HostObjects.h"

#include <fmt/format.h>

#include <span>

#include "support/Text.h"

namespace orvex {
namespace {

/// "{38E5B774-7F17-48A4-BB8A-CEEA8FE4F258}"
std::string TextOf(const ClassId& id) {
    const std::span<const std::uint8_t, 8> tail(id.data4);
    return fmt::format("{{{:08X}-{:04X}-{:04X}-{:02X}-{:02X}}}", id.data1, id.data2, id.data3,
                       fmt::join(tail.first(2), ""), fmt::join(tail.subspan(2), ""));
}

}  // namespace

std::wstring MissingObjectText(std::string_view name, const ClassId& id, std::int32_t result) {
    const char* const cause =
        result == kHostClassNotRegistered ? "the class is not registered" : "the host's class has failed";
    return FromUtf8(fmt::format(
        "The host's object {}, class {}, could not be created: {} (0x{:08X}). The host registers the "
        "class before it calls: with RegisterHostClass, on Windows also as a COM class.",
        name, TextOf(id), cause, static_cast<std::uint32_t>(result)));
}

}  // namespace orvex
