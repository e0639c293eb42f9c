#include <cstdlib>

#include "support/Environment.h"
#include "support/Text.h"

namespace orvex {

std::optional<std::wstring> EnvironmentVariable(const std::wstring& name) {
    const char* value = std::getenv(ToUtf8(name).c_str());
    return value == nullptr ? std::nullopt : std::optional(FromUtf8(value));
}

std::vector<std::wstring> ProgramArguments(int argc, const char* const* argv) {
    std::vector<std::wstring> arguments;
    for (int i = 1; i < argc; ++i) {
        arguments.push_back(FromUtf8(argv[i]));
    }
    return arguments;
}

std::filesystem::path UserCacheFolder() {
    if (const auto cache = EnvironmentVariable(L"XDG_CACHE_HOME")) {
        return ToPath(*cache) / "orvex";
    }
    return ToPath(EnvironmentVariable(L"HOME").value_or(L"/tmp")) / ".cache" / "orvex";
}

}  // namespace orvex
