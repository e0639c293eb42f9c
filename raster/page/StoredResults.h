#pragma once
#include <optional>
#include <utility>

#include "orvexcommon/AddFilesParams.h"

namespace orvex {

/// A page's members of the host's record, which can be taken back as long as the dialog is open. `Results`
/// holds copies of them; Results::Of(params) reads them, and WriteTo(params) && moves them back and throws
/// nothing.
template <typename Results>
class StoredResults {
  public:
    /// `params` outlives this object.
    explicit StoredResults(AddFilesParams& params) : params_(params) {}

    /// Withdraws what was stored before and lets `fill` change what the host had in the record. When `fill`
    /// throws, the record is what the host gave.
    template <typename Fill>
    void Store(Fill&& fill) {
        Withdraw();
        Results before = Results::Of(params_);
        Results results = before;
        fill(results);
        std::move(results).WriteTo(params_);
        before_ = std::move(before);
    }

    /// Makes the record what it was before the last Store; without effect when nothing is stored.
    void Withdraw() {
        if (before_.has_value()) {
            std::move(*before_).WriteTo(params_);
            before_.reset();
        }
    }

    bool IsStored() const { return before_.has_value(); }

    /// What is stored stays; true when there is anything.
    bool Keep() { return std::exchange(before_, std::nullopt).has_value(); }

  private:
    AddFilesParams& params_;
    std::optional<Results> before_;
};

}  // namespace orvex
