#pragma once
// A drive that takes no more, in the form that a process can bring about for itself.
#include <sys/resource.h>

#include <csignal>

namespace orvex::testing {

/// Lets the process write files of up to so many bytes only.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes) : oldHandler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &old_);
        const rlimit limit{bytes, old_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &old_);
        std::signal(SIGXFSZ, oldHandler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  private:
    rlimit old_{};
    void (*oldHandler_)(int);
};

}  // namespace orvex::testing
