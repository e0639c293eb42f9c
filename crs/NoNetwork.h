#pragma once
#include "crs/GdalOption.h"

namespace orvex {

/// While it lives, files that name others on a server do not reach it through this thread.
class NoNetwork {
  private:
    /// The one address that may be opened.
    GdalOption onlyAddress_{"CPL_VSIL_CURL_ALLOWED_FILENAME", "/vsicurl/none"};
};

}  // namespace orvex
