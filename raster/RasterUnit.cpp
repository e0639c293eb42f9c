#include "raster/RasterUnit.h"

#include "support/Text.h"

namespace orvex {

std::wstring RasterUnitText(const std::wstring& reported) {
    const std::wstring shown = ToUpper(reported).find(L"MET") == std::wstring::npos ? reported : L"Meters";
    return shown.find(Text(13639_lsid)) == std::wstring::npos ? shown : Text(13489_lsid);
}

}  // namespace orvex
