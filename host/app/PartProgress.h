#pragma once
#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "support/ProgressIf.h"

namespace orvex {

/// Steps that each file takes in the progress of work on several.
inline constexpr std::uint64_t kStepsPerFile = 1000;

/// The progress of one file as its part of all.
class PartProgress final : public Kst::ProgressIf {
  public:
    PartProgress(Kst::ProgressIf& whole, std::size_t index) : whole_(whole), before_(kStepsPerFile * index) {
        whole_.SetPosition(before_);
    }

    void SetRange(std::uint64_t total) override { total_ = total; }
    void SetText(const std::wstring&) override {}  // which file it is says more
    void SetPosition(std::uint64_t done) override {
        SetShare(total_ == 0 ? 0 : static_cast<double>(done) / static_cast<double>(total_));
    }
    void SetShare(double share) {
        const double steps = std::clamp(share, 0.0, 1.0) * static_cast<double>(kStepsPerFile);
        whole_.SetPosition(before_ + static_cast<std::uint64_t>(steps));
    }
    bool IsCancelled() override { return wasCancelled_ = wasCancelled_ || whole_.IsCancelled(); }
    /// True if IsCancelled has said so.
    bool WasCancelled() const { return wasCancelled_; }

  private:
    Kst::ProgressIf& whole_;
    std::uint64_t before_;
    std::uint64_t total_ = 0;
    bool wasCancelled_ = false;
};

}  // namespace orvex
