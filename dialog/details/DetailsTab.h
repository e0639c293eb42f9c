#pragma once
#include "support/Text.h"

namespace orvex {

/// One tab of a details pane.
struct DetailsTab {
    enum class Kind { Html, PlainText };

    const char* name;  ///< of its view
    StringId caption;
    Kind kind = Kind::Html;
};

}  // namespace orvex
