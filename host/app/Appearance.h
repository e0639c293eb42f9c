#pragma once

namespace orvex {

/// Gives the whole application light or dark colours. Called again, it changes what is open.
void ApplyAppearance(bool dark);

}  // namespace orvex
