#include "settings/OptionCatalogue.h"

#include <algorithm>
#include <iterator>

namespace orvex {
namespace {

constexpr RegistryType kBinary = RegistryType::Binary;
constexpr RegistryType kDword = RegistryType::Dword;
constexpr RegistryType kString = RegistryType::String;

constexpr OptionDefault kNone{};
constexpr OptionDefault kFalse{1, 0};
constexpr OptionDefault kTrue{1, 1};
constexpr OptionDefault kZeroByte{1, 0};
constexpr OptionDefault Number(std::uint32_t value) {
    return {4, value};
}

// Three rows look wrong and are not: stores in the field hold them like this.
//  - opt2AddFilesCurTabIndex is a 32-bit integer of the binary type.
//  - The value name of opt2OrvexLASBackupOption is spelled "Las".
//  - The default of opt2MaxManagerPoints is one byte although the item has four.
constexpr OptionDescription kCatalogue[] = {
    // clang-format off
    {opt2ShowPyramidDlg, L"optShowPyramidDlg", kBinary, 1, kFalse},
    {opt2ShowGeoWarning, L"optShowGeoWarning", kBinary, 1, kTrue},
    {opt2ShowTimedWarning, L"optShowTimedWarning", kBinary, 1, kTrue},
    {opt2ShowRptDisclaimer, L"optShowRptDisclaimer", kBinary, 1, kTrue},
    {opt2ShowExceptions, L"optShowExceptions", kBinary, 1, kTrue},
    {opt2DoEventLogging, L"optDoEventLogging", kBinary, 1, kFalse},
    {opt2ShowProfileBox, L"optShowProfileBox", kBinary, 1, kTrue},
    {opt2ShowViewerBox, L"optShowViewerBox", kBinary, 1, kTrue},
    {opt2ShowViewerEye, L"optShowViewerEye", kBinary, 1, kTrue},
    {opt2ShowProfileCursor, L"optShowProfileCursor", kBinary, 1, kTrue},
    {opt2ShowEditWarning, L"optShowEditWarning", kBinary, 1, kTrue},
    {opt2ShowAddDataWarning, L"optShowAddDataWarning", kBinary, 1, kTrue},
    {opt2ShowSelFilterWarning, L"optShowSelFilterWarning", kBinary, 1, kTrue},
    {opt2ShowEditHelpTip, L"optShowEditHelpTip", kBinary, 1, kTrue},
    {opt2EditHelpTipShown, L"optEditHelpTipShown", kBinary, 1, kFalse},
    {opt2ShowPBEditHelpTip, L"optShowPBEditHelpTip", kBinary, 1, kTrue},
    {opt2PBEditHelpTipShown, L"optPBEditHelpTipShown", kBinary, 1, kFalse},
    {opt2PointDensity, L"optPointDensity", kBinary, 8, kNone},
    {opt2ThinExtentWidth, L"optThinExtentWidth", kDword, 4, kNone},
    {opt2ThinExtentHeight, L"optThinExtentHeight", kDword, 4, kNone},
    {opt2ShowFullResWarning, L"optShowFullResWarning", kBinary, 1, kTrue},
    {opt2FullResWarningShown, L"optFullResWarningShown", kBinary, 1, kFalse},
    {opt2MapJumpAmount, L"optMapJumpAmount", kBinary, 8, kNone},
    {opt2UseExplorerDialog, L"optUseExplorerDialog", kBinary, 1, kFalse},
    {opt2ShowAddAllValuesInfo, L"optShowAddAllValuesInfo", kBinary, 1, kTrue},
    {opt2ZLockInterval, L"optZLockInterval", kBinary, 8, kNone},
    {opt2ShowProfileCntrLine, L"optShowProfileCntrLine", kBinary, 1, kTrue},
    {opt2AutoCommitProfileEditStr, L"optAutoCommitProfileEditStr", kBinary, 1, kFalse},
    {opt2ProfileBkGrdColor, L"optProfileBkGrdColor", kDword, 4, kNone},
    {opt2ViewerBkGrdColor, L"optViewerBkGrdColor", kDword, 4, kNone},
    {opt2MapBkGrdColor, L"optMapBkGrdColor", kDword, 4, kNone},
    {opt2ShowAddReadWriteDlg, L"optShowAddReadWriteDlg", kBinary, 1, kFalse},
    {opt2GetScanAngleFromFilename, L"optGetScanAngleFromFilename", kBinary, 1, kNone},
    {opt2ShowToeGridSizeWarning, L"optShowToeGridSizeWarning", kBinary, 1, kNone},
    {opt2ShowOrvexLASOverwriteWarning, L"optShowOrvexLASOverwriteWarning", kBinary, 1, kTrue},
    {opt2LOSObserverHeight, L"optLOSObserverHeight", kBinary, 8, kNone},
    {opt2LOSTargetHeight, L"optLOSTargetHeight", kBinary, 8, kNone},
    {opt2LOSRelative, L"optLOSRelative", kBinary, 1, kTrue},
    {opt2LOSObserverColor, L"optLOSObserverColor", kDword, 4, kNone},
    {opt2LOSTargetColor, L"optLOSTargetColor", kDword, 4, kNone},
    {opt2LOSRotateObs, L"optLOSRotateObs", kBinary, 1, kTrue},
    {opt2LOSAngleInc, L"optLOSAngleInc", kBinary, 8, kNone},
    {opt2LOSObstructColor, L"optLOSObstructColor", kDword, 4, kNone},
    {opt2AddLASOpenSetting, L"optAddLASOpenSetting", kDword, 4, Number(0)},
    {opt2AddLASLoadSetting, L"optAddLASLoadSetting", kDword, 4, Number(0)},
    {opt2AddLASAppend, L"optAddLASAppend", kBinary, 1, kTrue},
    {opt2AddLASPyramid, L"optAddLASPyramid", kBinary, 1, kTrue},
    {opt2AddLASThinning, L"optAddLASThinning", kDword, 4, Number(16)},
    {opt2AddLASDetailCols, L"optAddLASDetailCols", kBinary, 1, kFalse},
    {opt2AddRasterAppend, L"optAddRasterAppend", kBinary, 1, kNone},
    {opt2AddRasterPyramid, L"optAddRasterPyramid", kBinary, 1, kNone},
    {opt2AddRasterDetailCols, L"optAddRasterDetailCols", kBinary, 1, kNone},
    {opt2AddFilesCurTabIndex, L"optAddFilesCurTabIndex", kBinary, 4, kNone},
    {opt2ConvertExistingQVRToOrvexLAS, L"optConvertExistingQVRToOrvexLAS", kBinary, 1, kNone},
    {opt2PyramidType, L"optPyramidType", kDword, 4, kNone},
    {opt2OrvexLASBackupOption, L"optOrvexLasBackupOption", kDword, 4, kNone},
    {opt2ReCreateOrvexLASOption, L"optReCreateOrvexLASOption", kBinary, 1, kNone},
    {opt2ResellerName, L"optResellerName", kString, 0, kNone},
    {opt2ResellerPhone, L"optResellerPhone", kString, 0, kNone},
    {opt2ResellerWeb, L"optResellerWeb", kString, 0, kNone},
    {opt2ResellerEmail, L"optResellerEmail", kString, 0, kNone},
    {opt2NativeWindows, L"optNativeWindows", kBinary, 1, kNone},
    {opt2MaxManagerPoints, L"optMaxManagerPoints", kDword, 4, kZeroByte},
    // clang-format on
};

static_assert(std::ranges::is_sorted(kCatalogue, {}, &OptionDescription::item), "FindOption bisects");

}  // namespace

std::span<const OptionDescription> OptionCatalogue() {
    return kCatalogue;
}

const OptionDescription* FindOption(OrvexOptionItem2 item) {
    const auto* row = std::ranges::lower_bound(kCatalogue, item, {}, &OptionDescription::item);
    return row != std::end(kCatalogue) && row->item == item ? row : nullptr;
}

std::optional<OptionPlace> PlaceOfOption(OrvexOptionItem2 item) {
    switch (static_cast<std::uint32_t>(item) >> 24) {
        case 0x00:
            return OptionPlace{RegistryRoot::CurrentUser, nullptr};
        case 0x04:
            return OptionPlace{RegistryRoot::CurrentUser, L"LOS"};
        case 0x05:
            return OptionPlace{RegistryRoot::CurrentUser, L"AddFilesDlg"};
        case 0x81:
            return OptionPlace{RegistryRoot::LocalMachine, nullptr};
        default:
            return std::nullopt;
    }
}

}  // namespace orvex
