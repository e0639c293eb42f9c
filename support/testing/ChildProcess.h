#pragma once
// Processes of a test's own, so that several at once can be tested. Each does work that has a name:
//
//     const testing::ChildWork kHold(L"hold", [](const testing::ChildArguments& arguments) { ... return 0;
//     });
//
// The program's main calls RunAsChild first, since a child may be the same program started anew.
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvex::testing {

/// Texts without quotation marks and without a backslash at their end.
using ChildArguments = std::vector<std::wstring>;

/// Names some work, at namespace scope.
class ChildWork {
  public:
    /// What the function returns is the process's exit code, 0 to 99.
    using Function = int (*)(const ChildArguments& arguments);

    ChildWork(const std::wstring& name, Function function);
};

/// A process that does such work; killed when destroyed.
class ChildProcess {
  public:
    ChildProcess(const std::wstring& work, const ChildArguments& arguments);
    ~ChildProcess();
    ChildProcess(ChildProcess&& other) noexcept;
    ChildProcess& operator=(ChildProcess&& other) noexcept;

    /// Waits for its end; -1 when it did not start or was killed.
    int ExitCode();
    /// Ends it without letting it put anything in order.
    void Kill();

  private:
    struct System;
    std::unique_ptr<System> system_;
};

/// The exit code when this process is such a child; its work is done.
std::optional<int> RunAsChild();

}  // namespace orvex::testing
