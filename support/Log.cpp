#include "support/Log.h"

#include <spdlog/sinks/null_sink.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/spdlog.h>

#include <algorithm>
#include <condition_variable>
#include <filesystem>
#include <mutex>
#include <vector>

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

void Log(LogLevel level, std::wstring_view line) {
    const std::string text = ToUtf8(line);
    if (!LogRedirection::Deliver(level, text)) {
        Logger().log(level == LogLevel::Info ? spdlog::level::info : spdlog::level::warn, "{}", text);
    }
}

}  // namespace

struct LogRedirection::Registry {
    std::mutex lock;
    std::condition_variable ended;  ///< a call of a receiver
    std::vector<LogRedirection*> all;

    static Registry& Instance() {
        // Never destroyed: a worker may log while the process ends.
        static auto* const registry = new Registry;
        return *registry;
    }

    /// Begins a call of the receiver in charge; null if there is none.
    LogRedirection* Begin() {
        const std::lock_guard guard(lock);
        const auto own = std::find_if(all.rbegin(), all.rend(), [](const LogRedirection* redirection) {
            return redirection->thread_ == std::this_thread::get_id();
        });
        LogRedirection* const chosen = own != all.rend() ? *own : all.empty() ? nullptr : all.back();
        if (chosen != nullptr) {
            ++chosen->running_;
        }
        return chosen;
    }

    void End(LogRedirection& redirection) {
        const std::lock_guard guard(lock);
        --redirection.running_;
        ended.notify_all();
    }
};

LogRedirection::LogRedirection(LogReceiver receiver) : receiver_(std::move(receiver)) {
    if (receiver_) {
        Registry& registry = Registry::Instance();
        const std::lock_guard guard(registry.lock);
        registry.all.push_back(this);
    }
}

LogRedirection::~LogRedirection() {
    Registry& registry = Registry::Instance();
    std::unique_lock guard(registry.lock);
    std::erase(registry.all, this);
    registry.ended.wait(guard, [this] { return running_ == 0; });
}

bool LogRedirection::Deliver(LogLevel level, const std::string& line) {
    thread_local bool isReceiving = false;
    Registry& registry = Registry::Instance();
    LogRedirection* const redirection = isReceiving ? nullptr : registry.Begin();
    if (redirection == nullptr) {
        return false;
    }
    isReceiving = true;
    try {
        redirection->receiver_(level, line);
    } catch (...) {
        // A host's log that fails must not end what was logged.
    }
    isReceiving = false;
    registry.End(*redirection);
    return true;
}

void LogInfo(std::wstring_view line) {
    Log(LogLevel::Info, line);
}
void LogWarning(std::wstring_view line) {
    Log(LogLevel::Warning, line);
}

}  // namespace orvex
