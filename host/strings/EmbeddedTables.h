#pragma once
#include <string_view>

#include "host/strings/Language.h"

namespace orvex {

/// The table of a language as it was compiled in, in the form that ParseStringTable reads.
std::string_view EmbeddedTable(Language language);

}  // namespace orvex
