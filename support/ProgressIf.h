#pragma once
#include <cstdint>
#include <string>

namespace Kst {

/// Progress report and cancellation of a long operation.
class ProgressIf {
  public:
    virtual ~ProgressIf() = default;
    /// Starts a run of `total` steps; 0 if the number is not known.
    virtual void SetRange(std::uint64_t total) = 0;
    /// Current activity, one line for the user.
    virtual void SetText(const std::wstring& text) = 0;
    /// Number of finished steps of the range.
    virtual void SetPosition(std::uint64_t done) = 0;
    /// True if the user has asked to stop; with a window, processes pending events first.
    virtual bool IsCancelled() = 0;
};

/// Reports nothing and never stops.
class NullProgress final : public ProgressIf {
  public:
    void SetRange(std::uint64_t) override {}
    void SetText(const std::wstring&) override {}
    void SetPosition(std::uint64_t) override {}
    bool IsCancelled() override { return false; }
};

}  // namespace Kst
