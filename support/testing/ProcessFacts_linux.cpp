#include <sys/resource.h>

#include <filesystem>
#include <fstream>

#include "support/Text.h"
#include "support/testing/ProcessFacts.h"

namespace orvex::testing {

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

}  // namespace orvex::testing
