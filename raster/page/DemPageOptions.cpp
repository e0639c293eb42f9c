#include "raster/page/DemPageOptions.h"

#include <algorithm>

#include "settings/SystemSettings.h"
#include "settings/Thinning.h"

namespace orvex {

namespace {

constexpr const wchar_t* kDetailColumns = L"DEMShowAdvCols";
constexpr const wchar_t* kAppend = L"DEMAppendToLayers";
constexpr const wchar_t* kIgnoreCrs = L"DEMIgnoreCRS";
constexpr const wchar_t* kPyramid = L"DEMAutoPyramid";
constexpr const wchar_t* kReadWrite = L"DEMOpenReadWriteSetting";
constexpr const wchar_t* kLasFolder = L"DEMLASFolder";
constexpr const wchar_t* kThinning = L"DEMThinningFactor";

constexpr std::size_t kThinningCharacters = 9;

}  // namespace

DemPageOptions ReadDemPageOptions(const SystemSettings& settings) {
    DemPageOptions options;
    options.detailColumns = settings.GetBool(kDetailColumns, options.detailColumns);
    options.append = settings.GetBool(kAppend, options.append);
    options.ignoreCrs = settings.GetBool(kIgnoreCrs, options.ignoreCrs);
    options.pyramid = settings.GetBool(kPyramid, options.pyramid);
    options.readWrite = settings.GetBool(kReadWrite, options.readWrite);
    options.lasFolder = settings.GetText(kLasFolder, options.lasFolder);
    options.thinning = std::clamp(settings.GetNumber(kThinning, std::to_wstring(options.thinning)),
                                  kMinimumThinning, kMaximumThinning);
    return options;
}

void SaveDemPageOptions(SystemSettings& settings, const DemPageOptions& options) {
    settings.SetBool(kDetailColumns, options.detailColumns);
    settings.SetBool(kAppend, options.append);
    settings.SetBool(kIgnoreCrs, options.ignoreCrs);
    settings.SetBool(kPyramid, options.pyramid);
    settings.SetBool(kReadWrite, options.readWrite);
    settings.SetText(kLasFolder, options.lasFolder);
}

void SaveDemThinning(SystemSettings& settings, std::int32_t thinning) {
    settings.SetInt16(kThinning, static_cast<std::int16_t>(thinning));
}

std::optional<std::int32_t> ParseDemThinning(std::wstring_view text) {
    return ParseThinning(text, kThinningCharacters);
}

}  // namespace orvex
