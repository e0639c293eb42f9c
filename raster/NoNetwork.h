#pragma once
#include <cpl_conv.h>

#include <optional>
#include <string>

namespace orvex {

/// While it lives, files that name others on a server do not reach it through this thread.
class NoNetwork {
  public:
    NoNetwork() {
        if (const char* option = CPLGetThreadLocalConfigOption(kOption, nullptr); option != nullptr) {
            before_ = option;
        }
        CPLSetThreadLocalConfigOption(kOption, "/vsicurl/none");
    }
    ~NoNetwork() { CPLSetThreadLocalConfigOption(kOption, before_ ? before_->c_str() : nullptr); }
    NoNetwork(const NoNetwork&) = delete;
    NoNetwork& operator=(const NoNetwork&) = delete;

  private:
    /// The one address that may be opened.
    static constexpr char kOption[] = "CPL_VSIL_CURL_ALLOWED_FILENAME";
    std::optional<std::string> before_;
};

}  // namespace orvex
