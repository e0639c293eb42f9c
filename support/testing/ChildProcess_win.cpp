#include <windows.h>

#include "support/Environment.h"
#include "support/Handle_win.h"
#include "support/com/ModuleFile_win.h"
#include "support/testing/ChildProcess.h"

namespace orvex::testing {
namespace {

constexpr const wchar_t* kMark = L"--orvex-child";
constexpr UINT kKilled = 100;
constexpr DWORD kLongestLife = 120000;  // milliseconds

std::wstring Quoted(const std::wstring& argument) {
    return L" \"" + argument + L"\"";
}

}  // namespace

/// A child is this program, started with its work as arguments.
struct ChildProcess::System {
    explicit System(Handle started) : process(std::move(started)) {}
    ~System() { End(); }
    System(const System&) = delete;
    System& operator=(const System&) = delete;

    void End() {
        if (process) {
            TerminateProcess(process.Get(), kKilled);
            WaitForSingleObject(process.Get(), kLongestLife);
        }
    }

    Handle process;
};

ChildProcess::ChildProcess(const std::wstring& work, const ChildArguments& arguments) {
    const std::wstring program = ModuleFile(reinterpret_cast<const void*>(&RunAsChild));
    std::wstring line = L"\"" + program + L"\" " + kMark + Quoted(work);
    for (const std::wstring& argument : arguments) {
        line += Quoted(argument);
    }
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION started{};
    CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                   &started);
    const Handle thread(started.hThread);
    system_ = std::make_unique<System>(Handle(started.hProcess));
}

ChildProcess::~ChildProcess() = default;
ChildProcess::ChildProcess(ChildProcess&& other) noexcept = default;
ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept = default;

int ChildProcess::ExitCode() {
    DWORD code = kKilled;
    const bool hasEnded = system_->process &&
                          WaitForSingleObject(system_->process.Get(), kLongestLife) == WAIT_OBJECT_0 &&
                          GetExitCodeProcess(system_->process.Get(), &code) != FALSE;
    return hasEnded && code < kKilled ? static_cast<int>(code) : -1;
}

std::optional<int> RunAsChild() {
    const std::vector<std::wstring> words = ProgramArguments(0, nullptr);
    if (words.size() < 2 || words[0] != kMark) {
        return std::nullopt;
    }
    return ChildWork::Do(words[1], ChildArguments(words.begin() + 2, words.end()));
}

}  // namespace orvex::testing
