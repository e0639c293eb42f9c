#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "support/testing/ChildProcess.h"

namespace orvex::testing {

/// A child is a copy of the process that starts it.
struct ChildProcess::System {
    explicit System(pid_t started) : id(started) {}
    ~System() {
        if (id > 0) {
            kill(id, SIGKILL);
            Wait();
        }
    }
    System(const System&) = delete;
    System& operator=(const System&) = delete;

    int Wait() {
        int status = 0;
        const bool hasEnded = id > 0 && waitpid(id, &status, 0) == id;
        id = -1;
        return hasEnded && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    pid_t id;
};

ChildProcess::ChildProcess(const std::wstring& work, const ChildArguments& arguments) {
    const pid_t id = fork();
    if (id == 0) {
        _exit(ChildWork::Do(work, arguments));
    }
    system_ = std::make_unique<System>(id);
}

ChildProcess::~ChildProcess() = default;
ChildProcess::ChildProcess(ChildProcess&& other) noexcept = default;
ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept = default;

int ChildProcess::ExitCode() {
    return system_->Wait();
}

std::optional<int> RunAsChild() {
    return std::nullopt;
}

}  // namespace orvex::testing
