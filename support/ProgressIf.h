#pragma once
#include <cstdint>
#include <string>

namespace Kst {

/// How long work tells where it is and learns that it is to stop.
class ProgressIf {
  public:
    virtual ~ProgressIf() = default;
    /// Starts a run of `total` steps; 0 when the number is not known.
    virtual void SetRange(std::uint64_t total) = 0;
    /// What is being done, one line for the user.
    virtual void SetText(const std::wstring& text) = 0;
    /// `done` steps of the range are finished.
    virtual void SetPosition(std::uint64_t done) = 0;
    /// True when the user has asked to stop; pumps waiting events where there is a window.
    virtual bool IsCancelled() = 0;
};

/// Tells nobody and never stops.
class NullProgress final : public ProgressIf {
  public:
    void SetRange(std::uint64_t) override {}
    void SetText(const std::wstring&) override {}
    void SetPosition(std::uint64_t) override {}
    bool IsCancelled() override { return false; }
};

}  // namespace Kst
