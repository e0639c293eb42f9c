#include "support/GdalErrorScope.h"

#include <cpl_error.h>

#include <exception>

namespace orvex {
namespace {

constexpr std::size_t kMaxMessages = 32;

void CPL_STDCALL Capture(CPLErr severity, CPLErrorNum, const char* message) {
    if (severity != CE_None && severity != CE_Debug) {
        static_cast<GdalErrorScope*>(CPLGetErrorHandlerUserData())->Add(severity >= CE_Failure, message);
    }
}

}  // namespace

GdalErrorScope::GdalErrorScope() {
    CPLErrorReset();
    CPLPushErrorHandlerEx(Capture, this);
}

GdalErrorScope::~GdalErrorScope() {
    CPLPopErrorHandler();
    CPLErrorReset();
}

void GdalErrorScope::Add(bool isError, const char* message) noexcept {
    hasError_ = hasError_ || isError;
    if (message == nullptr || messages_.size() >= kMaxMessages) {
        return;
    }
    try {
        messages_.emplace_back(message);
    } catch (const std::exception&) {
        // No exception may pass through GDAL's C code; without memory the text is lost.
        return;
    }
}

std::string GdalErrorScope::Text() const {
    std::string text;
    for (const std::string& message : messages_) {
        text += (text.empty() ? "" : "; ") + message;
    }
    return text;
}

}  // namespace orvex
