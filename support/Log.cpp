#include "support/Log.h"

#include <spdlog/sinks/null_sink.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/spdlog.h>

#include <filesystem>

#include "support/Environment.h"
#include "support/Files.h"
#include "support/Text.h"

namespace orvex {
namespace {

std::filesystem::path LogFile() {
    const auto named = EnvironmentVariable(L"ORVEX_LOG");
    return ToPath(named && !named->empty() ? *named : FromPath(UserCacheFolder() / "orvex.log"));
}

std::shared_ptr<spdlog::logger> MakeLogger() {
    constexpr std::size_t kBytes = 4U << 20;
    try {
        const std::filesystem::path file = LogFile();
        CreateFolders(FolderOf(FromPath(file)));
        auto sink = std::make_shared<spdlog::sinks::rotating_file_sink_mt>(file.native(), kBytes, 1);
        auto logger = std::make_shared<spdlog::logger>("orvex", std::move(sink));
        logger->flush_on(spdlog::level::info);
        // Otherwise a full disk, or a file that another process keeps from being renamed, is told on the
        // console.
        logger->set_error_handler([](const std::string&) {});
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
