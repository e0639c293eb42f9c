#include "support/Log.h"

#include <spdlog/sinks/null_sink.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/spdlog.h>

#include <cstdlib>
#include <filesystem>

#include "support/Text.h"

namespace orvex {
namespace {

std::filesystem::path LogFile() {
    if (const char* named = std::getenv("ORVEX_LOG")) {
        return named;
    }
#ifdef _WIN32
    const char* base = std::getenv("LOCALAPPDATA");
    return std::filesystem::path(base ? base : ".") / "Orvex" / "orvex.log";
#else
    if (const char* cache = std::getenv("XDG_CACHE_HOME")) {
        return std::filesystem::path(cache) / "orvex" / "orvex.log";
    }
    const char* home = std::getenv("HOME");
    return std::filesystem::path(home ? home : "/tmp") / ".cache" / "orvex" / "orvex.log";
#endif
}

std::shared_ptr<spdlog::logger> MakeLogger() {
    constexpr std::size_t kBytes = 4U << 20;
    try {
        auto sink = std::make_shared<spdlog::sinks::rotating_file_sink_mt>(LogFile().string(), kBytes, 1);
        auto logger = std::make_shared<spdlog::logger>("orvex", std::move(sink));
        logger->flush_on(spdlog::level::info);
        return logger;
    } catch (const std::exception&) {
        return std::make_shared<spdlog::logger>("orvex", std::make_shared<spdlog::sinks::null_sink_mt>());
    }
}

spdlog::logger& Logger() {
    static const std::shared_ptr<spdlog::logger> logger = MakeLogger();
    return *logger;
}

}  // namespace

void LogInfo(std::wstring_view line) {
    Logger().info("{}", ToUtf8(line));
}
void LogWarning(std::wstring_view line) {
    Logger().warn("{}", ToUtf8(line));
}

}  // namespace orvex
