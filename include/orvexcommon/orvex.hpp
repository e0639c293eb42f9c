#pragma once
// The C interface for C++17, with the standard library of whoever includes it: nothing but orvex.h crosses
// the library's border. Texts are UTF-8; requests, results and the values of options are JSON, as orvex.h
// says.
#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>

#include "orvexcommon/orvex.h"

namespace orvexcommon {

/// A call that has neither succeeded nor been cancelled.
class Error : public std::runtime_error {
  public:
    Error(OrvexStatus status, const std::string& reason) : std::runtime_error(reason), status_(status) {}

    /// ORVEX_NOT_SHOWN, ORVEX_INVALID, ORVEX_FAILED or ORVEX_NO_MEMORY.
    OrvexStatus Status() const noexcept { return status_; }

  private:
    OrvexStatus status_;
};

/// The host's part of a call; an empty member stands for the default that orvex.h names. What a function
/// throws is dropped and counts as its failure. The log is called on any thread.
struct Host {
    /// JSON text as stored; nullopt if nothing is.
    std::function<std::optional<std::string>(const std::string& section, const std::string& key)> getSetting;
    std::function<void(const std::string& section, const std::string& key, const std::string& json)>
        setSetting;
    /// JSON number or string; nullopt if the host has no such option.
    std::function<std::optional<std::string>(std::int32_t item)> getOption;
    /// Path; empty if no project is open.
    std::function<std::string()> projectFolder;
    /// {"user": "...", "service": "...", "token": "..."}; nullopt if nobody is signed in.
    std::function<std::optional<std::string>()> account;
    std::function<void(std::int32_t level, const std::string& line)> log;
    void* owner = nullptr;
};

namespace detail {

constexpr std::int32_t kDone = 0;
constexpr std::int32_t kNone = 1;

inline const Host& HostOf(void* context) {
    return *static_cast<const Host*>(context);
}

/// Runs a function of the host that returns a result for the table.
template <typename Body>
std::int32_t Run(Body body) noexcept {
    try {
        return body();
    } catch (...) {
        return kNone;
    }
}

inline std::int32_t PutIfAny(const std::optional<std::string>& text, OrvexPut put, void* sink) {
    if (!text) {
        return kNone;
    }
    put(sink, text->c_str());
    return kDone;
}

inline std::int32_t GetSetting(void* context, const char* section, const char* key, OrvexPut put,
                               void* sink) {
    return Run([&] { return PutIfAny(HostOf(context).getSetting(section, key), put, sink); });
}

inline std::int32_t SetSetting(void* context, const char* section, const char* key, const char* json) {
    return Run([&] {
        HostOf(context).setSetting(section, key, json);
        return kDone;
    });
}

inline std::int32_t GetOption(void* context, std::int32_t item, OrvexPut put, void* sink) {
    return Run([&] { return PutIfAny(HostOf(context).getOption(item), put, sink); });
}

inline std::int32_t ProjectFolder(void* context, OrvexPut put, void* sink) {
    return Run([&] { return PutIfAny(HostOf(context).projectFolder(), put, sink); });
}

inline std::int32_t Account(void* context, OrvexPut put, void* sink) {
    return Run([&] { return PutIfAny(HostOf(context).account().value_or("null"), put, sink); });
}

inline void Log(void* context, std::int32_t level, const char* line) {
    Run([&] {
        HostOf(context).log(level, line);
        return kDone;
    });
}

/// The table of a host, which must outlive it.
inline OrvexHost TableOf(const Host& host) {
    OrvexHost table = {};
    table.size = sizeof(table);
    table.context = const_cast<Host*>(&host);  // only ever given back
    table.owner = host.owner;
    table.get_setting = host.getSetting ? GetSetting : nullptr;
    table.set_setting = host.setSetting ? SetSetting : nullptr;
    table.get_option = host.getOption ? GetOption : nullptr;
    table.project_folder = host.projectFolder ? ProjectFolder : nullptr;
    table.account = host.account ? Account : nullptr;
    table.log = host.log ? Log : nullptr;
    return table;
}

/// True after success, false if cancelled. Throws Error otherwise.
inline bool IsDone(OrvexStatus status) {
    if (status != ORVEX_OK && status != ORVEX_CANCELLED) {
        throw Error(status, orvex_last_error());
    }
    return status == ORVEX_OK;
}

/// Owns a text of the library's.
class Text {
  public:
    Text() = default;
    ~Text() { orvex_free(text_); }
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;

    char** Receive() { return &text_; }
    std::string Copy() const { return text_ == nullptr ? std::string() : text_; }

  private:
    char* text_ = nullptr;
};

}  // namespace detail

/// Version of the library, as "1.2.3".
inline std::string Version() {
    return orvex_version();
}

/// Shows the Add Files dialog. The results as JSON; nullopt if the user has cancelled or chosen nothing.
inline std::optional<std::string> ShowAddFiles(const std::string& request, const Host& host = {}) {
    const OrvexHost table = detail::TableOf(host);
    detail::Text result;
    const bool isDone = detail::IsDone(orvex_show_add_files(&table, request.c_str(), result.Receive()));
    return isDone ? std::optional<std::string>(result.Copy()) : std::nullopt;
}

/// ORVEX_LIDAR_READ_ONLY and the like; nullopt if the user has cancelled.
inline std::optional<std::int32_t> AskAddingLidar(bool readWriteAllowed, const Host& host = {}) {
    const OrvexHost table = detail::TableOf(host);
    std::int32_t choice = ORVEX_LIDAR_READ_ONLY;
    const bool isDone = detail::IsDone(orvex_ask_adding_lidar(&table, readWriteAllowed ? 1 : 0, &choice));
    return isDone ? std::optional<std::int32_t>(choice) : std::nullopt;
}

/// Shows the messages for findings about LiDAR files. `stop` is set to true, never to false, if nothing may
/// be added, also when this throws because no message can be shown.
inline void ShowLidarMessages(const std::string& request, bool& stop, const Host& host = {}) {
    const OrvexHost table = detail::TableOf(host);
    std::int32_t number = stop ? 1 : 0;
    const OrvexStatus status = orvex_show_lidar_messages(&table, request.c_str(), &number);
    stop = number != 0;
    detail::IsDone(status);
}

/// The object that orvex-inspect prints for a file, as JSON. `request`: "{\"kind\": \"dem\"}" and the like.
inline std::string Inspect(const std::string& path, const std::string& request = "{}") {
    detail::Text result;
    detail::IsDone(orvex_inspect(path.c_str(), request.c_str(), result.Receive()));
    return result.Copy();
}

/// An option of the component by its stored name, as JSON; "null" if it has no value.
inline std::string GetOption(const std::string& name) {
    detail::Text value;
    detail::IsDone(orvex_get_option(name.c_str(), value.Receive()));
    return value.Copy();
}

inline void SetOption(const std::string& name, const std::string& json) {
    detail::IsDone(orvex_set_option(name.c_str(), json.c_str()));
}

}  // namespace orvexcommon
