#pragma once
// Owners and scopes for GDAL's C interface.
#include <cpl_conv.h>
#include <gdal.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orvex {

struct GdalDatasetClose {
    void operator()(GDALDatasetH dataset) const noexcept { GDALClose(dataset); }
};
/// An open dataset, closed when destroyed. Closing reports errors like any call: keep a GdalErrorScope around
/// it.
using GdalDataset = std::unique_ptr<void, GdalDatasetClose>;

/// A null-terminated list of strings as GDAL's functions take it.
class GdalList {
  public:
    explicit GdalList(std::vector<std::string> texts) : texts_(std::move(texts)) {
        std::ranges::transform(texts_, std::back_inserter(pointers_), &std::string::c_str);
        pointers_.push_back(nullptr);
    }
    GdalList(const GdalList&) = delete;
    GdalList& operator=(const GdalList&) = delete;

    const char* const* Get() const { return pointers_.data(); }

  private:
    const std::vector<std::string> texts_;
    std::vector<const char*> pointers_;
};
using GdalListPtr = std::shared_ptr<const GdalList>;

/// Sets a configuration option of GDAL for this thread; restores the previous value when destroyed.
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

/// Keeps GDAL from opening remote files on this thread, whatever a local file refers to.
class NoNetwork {
  private:
    /// Only this address is allowed, and it does not exist.
    GdalOption allowed_{"CPL_VSIL_CURL_ALLOWED_FILENAME", "/vsicurl/none"};
};

}  // namespace orvex
