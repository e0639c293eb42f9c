#pragma once
#include <string>
#include <vector>

namespace orvex {

/// Captures the errors and warnings of GDAL and PROJ on this thread instead of the console. Clears GDAL's
/// error state when destroyed, so that no later call mistakes an old error for its own. Scopes may nest: each
/// captures what is reported while it is the innermost.
class GdalErrorScope {
  public:
    GdalErrorScope();
    ~GdalErrorScope();
    GdalErrorScope(const GdalErrorScope&) = delete;
    GdalErrorScope& operator=(const GdalErrorScope&) = delete;

    /// True if an error was reported, not only warnings.
    bool HasError() const { return hasError_; }
    /// The first 32 messages, in order.
    const std::vector<std::string>& Messages() const { return messages_; }
    /// The messages separated by "; "; empty if none.
    std::string Text() const;

    /// Adds a message; called by the handler that GDAL calls.
    void Add(bool isError, const char* message) noexcept;

  private:
    std::vector<std::string> messages_;
    bool hasError_ = false;
};

}  // namespace orvex
