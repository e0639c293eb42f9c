#pragma once
#include <string>
#include <vector>

namespace orvex {

/// While it lives, GDAL's and PROJ's errors and warnings of this thread come here instead of the console;
/// when it ends, GDAL's error state is clear, so that no later call mistakes an old error for its own. Scopes
/// may nest; each sees what was reported while it was the innermost.
class GdalErrorScope {
  public:
    GdalErrorScope();
    ~GdalErrorScope();
    GdalErrorScope(const GdalErrorScope&) = delete;
    GdalErrorScope& operator=(const GdalErrorScope&) = delete;

    /// True when an error (not only warnings) was reported.
    bool HasError() const { return hasError_; }
    /// What was reported, in order; of more than 32 messages the first 32.
    const std::vector<std::string>& Messages() const { return messages_; }
    /// The messages in one text, separated by "; "; empty when there were none.
    std::string Text() const;

    /// Takes one message; for the handler that GDAL calls.
    void Add(bool isError, const char* message) noexcept;

  private:
    std::vector<std::string> messages_;
    bool hasError_ = false;
};

}  // namespace orvex
