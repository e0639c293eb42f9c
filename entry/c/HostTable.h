#pragma once
#include <memory>

#include "entry/ComponentCalls.h"
#include "orvexcommon/orvex.h"
#include "support/Log.h"

namespace orvex {

/// A host that is a table of C functions, as far as it has them.
class HostTable {
  public:
    /// `host`: null for one without any function. Throws InvalidCall if its size is impossible, or one of the
    /// settings' two functions is missing.
    explicit HostTable(const OrvexHost* host);

    /// Host of a call. This table must outlive it.
    CallHost Host() const;
    /// Empty if the table has no function for it.
    LogReceiver Log() const;

  private:
    OrvexHost table_{};  ///< what the host knows of it, and zeros
};

}  // namespace orvex
