#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <thread>

namespace orvex {

/// Writes one line to the component's log: to the host's receiver if it has set one, else to the file named
/// by ORVEX_LOG, else to "orvex.log" in the user's cache folder; the file is limited in size. A log that
/// cannot be written is silently ignored. Any thread.
void LogInfo(std::wstring_view line);
void LogWarning(std::wstring_view line);

enum class LogLevel : std::int32_t { Info, Warning };

/// Takes a line of UTF-8 without its line end. Called on any thread, several at a time. What it throws is
/// ignored; lines that are logged while it runs on a thread go to the file. It must not wait for another
/// thread, which may be waiting for it to return.
using LogReceiver = std::function<void(LogLevel level, const std::string& line)>;

/// Gives the log's lines to a receiver while the object exists. Of several, the latest gets them, but those
/// of a thread that has made one go to its own. Once the destructor returns the receiver is not called any
/// more.
class LogRedirection {
  public:
    /// Without a receiver the object has no effect.
    explicit LogRedirection(LogReceiver receiver);
    /// Waits for calls that are running. Not to be called by the receiver.
    ~LogRedirection();
    LogRedirection(const LogRedirection&) = delete;
    LogRedirection& operator=(const LogRedirection&) = delete;

    /// Gives a line to the receiver in charge. False if there is none.
    static bool Deliver(LogLevel level, const std::string& line);

  private:
    struct Registry;

    LogReceiver receiver_;
    std::thread::id thread_ = std::this_thread::get_id();
    int running_ = 0;  ///< calls, under the registry's lock
};

}  // namespace orvex
