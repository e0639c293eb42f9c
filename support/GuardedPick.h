#pragma once
#include <new>

#include "support/FilePickers.h"
#include "support/LDataError.h"
#include "support/Log.h"

namespace orvex {

/// What a dialog for files answers; an outcome of its own for running out of memory, and Failed (and a line
/// in the log) for whatever else it throws.
template <typename Pick>
PickedFiles GuardedPick(Pick&& pick) {
    try {
        return pick();
    } catch (const std::bad_alloc&) {
        return {PickOutcome::OutOfMemory, {}};
    } catch (...) {
        LogWarning(L"The file dialog failed: " + CurrentExceptionText());
        return {PickOutcome::Failed, {}};
    }
}

}  // namespace orvex
