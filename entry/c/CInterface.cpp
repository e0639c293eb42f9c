#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>

#include "entry/c/HostTable.h"
#include "entry/c/OptionJson.h"
#include "entry/c/RecordJson.h"
#include "orvexcommon/Version.h"
#include "orvexcommon/orvex.h"
#include "report/FileReportJson.h"
#include "settings/OptionStore.h"
#include "support/JsonText.h"
#include "support/Text.h"

namespace orvex {
namespace {

using Json = nlohmann::json;

static_assert(static_cast<int>(CallEnd::Cancelled) == ORVEX_CANCELLED &&
              static_cast<int>(CallEnd::NotShown) == ORVEX_NOT_SHOWN &&
              static_cast<int>(CallEnd::Invalid) == ORVEX_INVALID &&
              static_cast<int>(CallEnd::Failed) == ORVEX_FAILED &&
              static_cast<int>(CallEnd::NoMemory) == ORVEX_NO_MEMORY);
static_assert(ADD_LIDAR_READ_ONLY == ORVEX_LIDAR_READ_ONLY &&
              ADD_LIDAR_READ_WRITE == ORVEX_LIDAR_READ_WRITE &&
              ADD_LIDAR_NOT_AT_ALL == ORVEX_LIDAR_NOT_AT_ALL);

/// Reason of this thread's last failure, truncated; empty after a success. An array, because an object with a
/// destructor would keep the library loaded until the thread ends (GCC 12 for Windows).
thread_local char lastError[2048] = "";

/// Keeps the reason for orvex_last_error and returns the status.
OrvexStatus Remember(const CallOutcome& outcome) noexcept {
    std::string text = "out of memory";
    try {
        text = outcome.end == CallEnd::NoMemory ? text : ToUtf8(outcome.reason);
    } catch (...) {
        text.clear();
    }
    std::size_t length = std::min(text.size(), sizeof(lastError) - 1);
    while (length < text.size() && length > 0 &&
           (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U) {
        --length;  // not inside a character
    }
    lastError[text.copy(lastError, length)] = '\0';
    return static_cast<OrvexStatus>(outcome.end);
}

template <typename Body>
OrvexStatus Call(const wchar_t* function, Body body) noexcept {
    return Remember(RunCall(function, body));
}

/// A call that a host's functions serve. Its log gets the failure of the body as well.
template <typename Body>
OrvexStatus CallWithHost(const wchar_t* function, const OrvexHost* host, Body body) noexcept {
    return Call(function, [&] {
        const HostTable table(host);
        const LogRedirection log(table.Log());
        return RunCall(function, [&] { return body(table.Host()); });
    });
}

/// Throws InvalidCall if an argument is null that must not be.
template <typename Value>
void Require(Value* argument, const wchar_t* name) {
    if (argument == nullptr) {
        throw InvalidCall(std::wstring(name) + L" is null");
    }
}

/// Gives a result what it holds after a failure, whatever that is.
template <typename Value>
void Clear(Value* result) {
    if (result != nullptr) {
        *result = {};
    }
}

/// The object of a request; null stands for an empty one.
Json Request(const char* text) {
    try {
        const Json json = text == nullptr ? Json::object() : ParseCallersJson(text);
        return json.is_object() ? json : throw LDataError(L"it is no object");
    } catch (const LDataError& error) {
        throw InvalidCall(L"the request cannot be read: " + error.Text());
    }
}

/// A copy that orvex_free frees.
char* Given(const std::string& text) {
    char* const copy = static_cast<char*>(std::malloc(text.size() + 1));
    if (copy == nullptr) {
        throw std::bad_alloc();
    }
    std::memcpy(copy, text.c_str(), text.size() + 1);
    return copy;
}

/// Gives the log's lines to a host's function; null: to the file.
void SetProcessLog(void (*log)(void* context, int32_t level, const char* line), void* context) {
    // Never destroyed: a worker may log while the process ends.
    static auto* const lock = new std::mutex;
    static auto* const redirection = new std::unique_ptr<LogRedirection>;
    const std::lock_guard guard(*lock);
    redirection->reset();
    if (log != nullptr) {
        *redirection =
            std::make_unique<LogRedirection>([log, context](LogLevel level, const std::string& line) {
                log(context, static_cast<int32_t>(level), line.c_str());
            });
    }
}

struct FindingMember {
    const char* name;
    bool LidarFindings::*member;
};

constexpr FindingMember kFindings[] = {
    {"appended", &LidarFindings::a},       {"crsDiffers", &LidarFindings::b},
    {"crsMissing", &LidarFindings::c},     {"damaged", &LidarFindings::d},
    {"reportSkipped", &LidarFindings::e},  {"inProject", &LidarFindings::f},
    {"cannotBeOpened", &LidarFindings::g},
};

struct LidarRequest {
    LidarFindings findings;
    std::wstring caption;
};

LidarRequest ReadLidarRequest(const Json& json) {
    LidarRequest request;
    for (const auto& [name, value] : json.items()) {
        const auto* const row = std::ranges::find(
            kFindings, name, [](const FindingMember& member) { return std::string(member.name); });
        if (name == "caption" && value.is_string()) {
            request.caption = JsonWide(value.get_ref<const std::string&>());
        } else if (row != std::end(kFindings) && value.is_boolean()) {
            request.findings.*(row->member) = value.get<bool>();
        } else {
            throw InvalidCall(L"the request's \"" + FromUtf8(name) + L"\" is unknown or of the wrong type");
        }
    }
    return request;
}

/// Kind of file that a request names; null if it names none.
const ReportKind* ReadKind(const Json& json) {
    const ReportKind* kind = nullptr;
    for (const auto& [name, value] : json.items()) {
        kind = name == "kind" && value.is_string() ? FindReportKind(FromUtf8(value.get<std::string>()))
                                                   : nullptr;
        if (kind == nullptr) {
            throw InvalidCall(L"the request's \"" + FromUtf8(name) + L"\" is unknown, or its value is");
        }
    }
    return kind;
}

/// The object of a file, as text.
std::string Inspect(const std::wstring& path, const ReportKind* kind) {
    std::string text;
    AppendJson(text, FileReportJson(InspectFile(IsUrl(path) ? path : NativePath(path), kind)), 0);
    return text + "\n";
}

}  // namespace
}  // namespace orvex

using orvex::Call;
using orvex::CallEnd;
using orvex::CallHost;
using orvex::CallWithHost;
using orvex::Clear;
using orvex::Require;
using orvex::SetProcessLog;

int32_t orvex_interface_version(void) {
    return ORVEX_INTERFACE_VERSION;
}

const char* orvex_version(void) {
    return ORVEX_VERSION_TEXT;
}

OrvexStatus orvex_show_add_files(const OrvexHost* host, const char* request, char** result) {
    Clear(result);
    return CallWithHost(L"orvex_show_add_files", host, [&](const CallHost& callHost) {
        Require(result, L"result");
        orvex::OwnRecord record;
        orvex::ReadRecord(orvex::Request(request), record.params);
        const CallEnd end = AddFiles(record.params, callHost);
        if (end == CallEnd::Ok) {
            *result = orvex::Given(orvex::WriteRecord(record.params));
        }
        return end;
    });
}

OrvexStatus orvex_ask_adding_lidar(const OrvexHost* host, int32_t read_write_allowed, int32_t* choice) {
    Clear(choice);
    return CallWithHost(L"orvex_ask_adding_lidar", host, [&](const CallHost& callHost) {
        Require(choice, L"choice");
        AddLidarChoice chosen = ADD_LIDAR_READ_ONLY;
        const CallEnd end = AskAddingLidar(read_write_allowed != 0, callHost, chosen);
        *choice = chosen;
        return end;
    });
}

OrvexStatus orvex_show_lidar_messages(const OrvexHost* host, const char* request, int32_t* stop) {
    return CallWithHost(L"orvex_show_lidar_messages", host, [&](const CallHost& callHost) {
        Require(stop, L"stop");
        const auto [findings, caption] = orvex::ReadLidarRequest(orvex::Request(request));
        *stop = IsNothingToAdd(findings) ? 1 : *stop;  // whether or not the user can be told
        TellLidarFindings(findings, caption, callHost);
        return CallEnd::Ok;
    });
}

OrvexStatus orvex_inspect(const char* path, const char* request, char** result) {
    Clear(result);
    return Call(L"orvex_inspect", [&] {
        Require(result, L"result");
        Require(path, L"path");
        const orvex::ReportKind* const kind = orvex::ReadKind(orvex::Request(request));
        *result = orvex::Given(orvex::Inspect(orvex::FromUtf8(path), kind));
        return CallEnd::Ok;
    });
}

OrvexStatus orvex_get_option(const char* name, char** value) {
    Clear(value);
    return Call(L"orvex_get_option", [&] {
        Require(value, L"value");
        Require(name, L"name");
        const auto registry = orvex::MakeRegistryStore();
        *value = orvex::Given(ReadOption(orvex::OptionStore(*registry), name));
        return CallEnd::Ok;
    });
}

OrvexStatus orvex_set_option(const char* name, const char* value) {
    return Call(L"orvex_set_option", [&] {
        Require(name, L"name");
        Require(value, L"value");
        const auto registry = orvex::MakeRegistryStore();
        WriteOption(orvex::OptionStore(*registry), name, value);
        return CallEnd::Ok;
    });
}

OrvexStatus orvex_set_log(void (*log)(void* context, int32_t level, const char* line), void* context) {
    return Call(L"orvex_set_log", [&] {
        SetProcessLog(log, context);
        return CallEnd::Ok;
    });
}

const char* orvex_last_error(void) {
    return orvex::lastError;
}

void orvex_free(char* text) {
    std::free(text);
}
