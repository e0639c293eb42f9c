#include <fcntl.h>
#include <malloc.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <fstream>

#include "benchmarks/Probe.h"
#include "support/Text.h"

namespace orvex::bench {

std::uint64_t ReadBarely(const std::string& path) {
    constexpr std::size_t kHeader = 375;
    std::array<char, 65536> buffer;
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status {};
    fstat(file, &status);
    std::uint64_t bytes =
        static_cast<std::uint64_t>(std::max<ssize_t>(0, pread(file, buffer.data(), kHeader, 0)));
    std::uint32_t start = 0;
    std::memcpy(&start, buffer.data() + 96, sizeof(start));
    const std::size_t rest = std::min<std::size_t>(buffer.size(), start) - kHeader;
    bytes += static_cast<std::uint64_t>(std::max<ssize_t>(0, pread(file, buffer.data(), rest, kHeader)));
    close(file);
    return bytes;
}

std::optional<int> RunProgram(const std::vector<std::string>& arguments) {
    constexpr int kNoProgram = 127;
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (const std::string& argument : arguments) {
        pointers.push_back(const_cast<char*>(argument.c_str()));
    }
    pointers.push_back(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        const int nowhere = open("/dev/null", O_WRONLY);
        dup2(nowhere, STDOUT_FILENO);
        dup2(nowhere, STDERR_FILENO);
        execvp(pointers.front(), pointers.data());
        _exit(kNoProgram);
    }
    int status = 0;
    if (child <= 0 || waitpid(child, &status, 0) != child || WEXITSTATUS(status) == kNoProgram) {
        return std::nullopt;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool CopyWithSystem(const std::wstring& from, const std::wstring& to) {
    return RunProgram({"cp", "--", ToUtf8(from), ToUtf8(to)}) == 0;
}

std::uint64_t PeakMemory() {
    constexpr std::uint64_t kKilobyte = 1024;
    struct rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<std::uint64_t>(usage.ru_maxrss) * kKilobyte;
}

void ResetPeakMemory() {
    malloc_trim(0);  // what is free stays resident otherwise
    std::ofstream("/proc/self/clear_refs") << "5";
}

double ProcessorTime() {
    struct rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    const auto milliseconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) * 1e-3;
    };
    return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

std::uint64_t HeapInUse() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

}  // namespace orvex::bench
