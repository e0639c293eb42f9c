#include "host/terminal/Terminal.h"

#include <atomic>
#include <csignal>
#include <ostream>

#include "support/Text.h"

namespace orvex {
namespace {

// Read on all threads.
std::atomic<bool> stopSignalled = false;
static_assert(std::atomic<bool>::is_always_lock_free);

extern "C" void OnStopSignal(int) {
    stopSignalled = true;
}

}  // namespace

std::function<bool()> StopOnSignals() {
    std::signal(SIGINT, OnStopSignal);
    std::signal(SIGTERM, OnStopSignal);
    return [] { return stopSignalled.load(); };
}

ProgressLine::ProgressLine(std::ostream& err, bool shown)
    : err_(err), shown_(shown), next_(std::chrono::steady_clock::now() + std::chrono::milliseconds(300)) {}

ProgressLine::~ProgressLine() {
    if (written_) {
        err_ << "\r\x1b[K" << std::flush;
    }
}

bool ProgressLine::IsDue() const {
    return shown_ && std::chrono::steady_clock::now() >= next_;
}

void ProgressLine::Tell(const std::wstring& line) {
    if (!IsDue()) {
        return;
    }
    next_ = std::chrono::steady_clock::now() + std::chrono::milliseconds(100);
    written_ = true;
    err_ << '\r' << ToUtf8(line) << "\x1b[K" << std::flush;
}

void WriteLine(std::ostream& out, const std::wstring& line) {
    out << ValidUtf8(ToUtf8(line)) << '\n';
}

std::optional<std::wstring> ValueOf(const std::wstring& name, const std::vector<std::wstring>& arguments,
                                    std::size_t& i) {
    const std::wstring& argument = arguments[i];
    if (argument == name) {
        return i + 1 < arguments.size() ? arguments[++i] : std::wstring();
    }
    return argument.starts_with(name + L"=") ? std::optional(argument.substr(name.size() + 1)) : std::nullopt;
}

std::optional<std::uint64_t> ParseNumber(const std::wstring& text, std::uint64_t least, std::uint64_t most) {
    std::uint64_t number = 0;
    for (const wchar_t c : text) {
        const auto digit = static_cast<std::uint64_t>(c - L'0');
        if (c < L'0' || c > L'9' || number > most / 10 || digit > most - number * 10) {
            return std::nullopt;
        }
        number = number * 10 + digit;
    }
    return text.empty() || number < least ? std::nullopt : std::optional(number);
}

}  // namespace orvex
