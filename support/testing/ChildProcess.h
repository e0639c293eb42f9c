#pragma once
// Child processes of a test. Each does work that is named at namespace scope:
//
//     const testing::ChildWork kHold(L"hold", [](const testing::ChildArguments& arguments) { ... return 0;
//     });
//
// The program's main calls RunAsChild first, because on Windows a child is the same program started again.
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvex::testing {

/// Texts without quotation marks and without a backslash at their end.
using ChildArguments = std::vector<std::wstring>;

/// Named work; the function returns the exit code of the process, 0 to 99.
class ChildWork {
  public:
    using Function = int (*)(const ChildArguments& arguments);

    ChildWork(const std::wstring& name, Function function) { All()[name] = function; }

    /// Does the work of that name in this process; -1 if there is none.
    static int Do(const std::wstring& name, const ChildArguments& arguments) {
        const auto work = All().find(name);
        return work == All().end() ? -1 : work->second(arguments);
    }

  private:
    // A function's, so that it exists before the first work at namespace scope.
    static std::map<std::wstring, Function>& All() {
        static std::map<std::wstring, Function> all;
        return all;
    }
};

/// A process that does such work; killed when destroyed.
class ChildProcess {
  public:
    ChildProcess(const std::wstring& work, const ChildArguments& arguments);
    ~ChildProcess();
    ChildProcess(ChildProcess&& other) noexcept;
    ChildProcess& operator=(ChildProcess&& other) noexcept;

    /// Waits for its end; -1 if it did not start or was killed.
    int ExitCode();

  private:
    struct System;
    std::unique_ptr<System> system_;
};

/// Exit code if this process is such a child, whose work is then done.
std::optional<int> RunAsChild();

}  // namespace orvex::testing
