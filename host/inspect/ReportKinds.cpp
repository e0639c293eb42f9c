#include "host/inspect/ReportKinds.h"

#include <algorithm>
#include <iterator>

#include "raster/RasterExtensions.h"
#include "support/Text.h"

namespace orvex {

namespace {

bool IsLasName(std::wstring_view path) {
    const std::wstring extension = UpperExtensionOf(path);
    return extension == L".LAS" || extension == L".LAZ";
}

/// Any raster can hold an image or heights; only its user knows.
bool IsAnyRasterName(std::wstring_view path) {
    return IsRasterName(path) || IsElevationName(path);
}

constexpr ReportKind kKinds[] = {{"las", IsLasName, IsLasName, InspectLas},
                                 {"raster", IsRasterName, IsAnyRasterName, InspectImage},
                                 {"dem", IsElevationName, IsAnyRasterName, InspectDem}};

template <typename Test>
const ReportKind* Find(Test test) {
    const auto* const kind = std::ranges::find_if(kKinds, test);
    return kind == std::ranges::end(kKinds) ? nullptr : kind;
}

}  // namespace

const ReportKind* ReportKindNamed(std::wstring_view name) {
    return Find([&](const ReportKind& kind) { return FromUtf8(kind.name) == name; });
}

const ReportKind* ReportKindOf(std::wstring_view path) {
    return Find([&](const ReportKind& kind) { return kind.isNamed(path); });
}

}  // namespace orvex
