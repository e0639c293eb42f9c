#include "las/page/LasPageOptions.h"

#include <algorithm>

#include "settings/OptionStore.h"
#include "settings/Thinning.h"

namespace orvex {

namespace {

constexpr std::size_t kThinningCharacters = 10;

/// A stored enumeration, or the fallback when the number names none of the values 0 to 2.
template <typename Enum>
Enum GetChoice(const OptionStore& store, OrvexOptionItem2 item, Enum fallback) {
    const auto stored = store.Get(item, static_cast<std::int32_t>(fallback));
    return stored >= 0 && stored <= 2 ? static_cast<Enum>(stored) : fallback;
}

bool GetFlag(const OptionStore& store, OrvexOptionItem2 item, bool fallback) {
    // Read as a byte: a stored byte other than 0 and 1 is no bool.
    return store.Get<char>(item, fallback ? 1 : 0) != 0;
}

void PutFlag(const OptionStore& store, OrvexOptionItem2 item, bool value) {
    store.Put<char>(item, value ? 1 : 0);
}

}  // namespace

LasPageOptions ReadLasPageOptions(const OptionStore& store) {
    LasPageOptions options;
    options.readWrite = store.Get<std::int32_t>(opt2AddLASOpenSetting, 0) != 0;
    options.footprintsOnly = store.Get<std::int32_t>(opt2AddLASLoadSetting, 0) != 0;
    options.append = GetFlag(store, opt2AddLASAppend, options.append);
    options.thinning = std::clamp(store.Get<std::int32_t>(opt2AddLASThinning, options.thinning),
                                  kMinimumThinning, kMaximumThinning);
    options.detailColumns = GetFlag(store, opt2AddLASDetailCols, options.detailColumns);
    options.convertExistingQvr = GetFlag(store, opt2ConvertExistingQVRToOrvexLAS, options.convertExistingQvr);
    const bool pyramid = GetFlag(store, opt2AddLASPyramid, true);
    options.pyramidType =
        GetChoice(store, opt2PyramidType, pyramid ? LasPyramidType::OrvexLas : LasPyramidType::None);
    options.backup = GetChoice(store, opt2OrvexLASBackupOption, options.backup);
    options.reCreateOrvexLas = GetFlag(store, opt2ReCreateOrvexLASOption, options.reCreateOrvexLas);
    return options;
}

void SaveLasPageOptions(const OptionStore& store, const LasPageOptions& options) {
    store.Put<std::int32_t>(opt2AddLASOpenSetting, options.readWrite ? 1 : 0);
    store.Put<std::int32_t>(opt2AddLASLoadSetting, options.footprintsOnly ? 1 : 0);
    PutFlag(store, opt2AddLASAppend, options.append);
    store.Put<std::int32_t>(opt2AddLASThinning, options.thinning);
    PutFlag(store, opt2AddLASDetailCols, options.detailColumns);
    PutFlag(store, opt2ConvertExistingQVRToOrvexLAS, options.convertExistingQvr);
    store.Put<std::int32_t>(opt2PyramidType, static_cast<std::int32_t>(options.pyramidType));
    store.Put<std::int32_t>(opt2OrvexLASBackupOption, static_cast<std::int32_t>(options.backup));
    PutFlag(store, opt2ReCreateOrvexLASOption, options.reCreateOrvexLas);
}

std::optional<std::int32_t> ParseThinning(std::wstring_view text) {
    return ParseThinning(text, kThinningCharacters);
}

}  // namespace orvex
