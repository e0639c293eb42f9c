#pragma once
#include <cpl_conv.h>

#include <optional>
#include <string>

namespace orvex {

/// Sets an option of GDAL's for this thread while it lives.
class GdalOption {
  public:
    GdalOption(const char* name, const char* value) : name_(name) {
        if (const char* before = CPLGetThreadLocalConfigOption(name, nullptr); before != nullptr) {
            before_ = before;
        }
        CPLSetThreadLocalConfigOption(name, value);
    }
    ~GdalOption() { CPLSetThreadLocalConfigOption(name_, before_ ? before_->c_str() : nullptr); }
    GdalOption(const GdalOption&) = delete;
    GdalOption& operator=(const GdalOption&) = delete;

  private:
    const char* const name_;
    std::optional<std::string> before_;
};

}  // namespace orvex
