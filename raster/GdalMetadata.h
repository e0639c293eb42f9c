#pragma once
// Values from GDAL's texts and metadata items.
#include <gdal.h>

#include <charconv>
#include <cstring>
#include <optional>
#include <string>

#include "support/Text.h"

namespace orvex {

/// A text of GDAL's; empty for null.
inline std::wstring GdalText(const char* text) {
    return FromUtf8(text == nullptr ? "" : text);
}

/// A metadata item as text; empty if absent. `domain`: null for the default one.
inline std::wstring MetadataText(GDALMajorObjectH object, const char* name, const char* domain) {
    return GdalText(GDALGetMetadataItem(object, name, domain));
}

/// A metadata item as a number; nullopt if absent or not a number.
template <typename Number>
std::optional<Number> MetadataNumber(GDALMajorObjectH object, const char* name, const char* domain) {
    const char* text = GDALGetMetadataItem(object, name, domain);
    Number number{};
    if (text == nullptr || std::from_chars(text, text + std::strlen(text), number).ec != std::errc()) {
        return std::nullopt;
    }
    return number;
}

}  // namespace orvex
