#include "support/testing/TestSystem.h"

#include <sys/resource.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "support/Text.h"

namespace orvex::testing {

void PutVariable(const std::wstring& name, const std::optional<std::wstring>& value) {
    if (value) {
        setenv(ToUtf8(name).c_str(), ToUtf8(*value).c_str(), 1);
    } else {
        unsetenv(ToUtf8(name).c_str());
    }
}

std::size_t OpenHandles() {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}));
}

std::size_t MappingsOf(const std::wstring& path) {
    std::ifstream maps("/proc/self/maps");
    std::size_t count = 0;
    for (std::string line; std::getline(maps, line);) {
        count += line.ends_with(ToUtf8(path)) ? 1U : 0U;
    }
    return count;
}

std::uint64_t PeakMemory() {
    struct rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<std::uint64_t>(usage.ru_maxrss) * 1024;
}

// The file systems here leave out what was never written.
void GrowSparse(const std::wstring& path, std::uint64_t size) {
    std::filesystem::resize_file(ToPath(path), size);
}

}  // namespace orvex::testing
