#include "las/CompanionStatus.h"

#include <algorithm>

#include "las/CompanionRecords.h"
#include "support/Files.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::uint16_t kCompanionEvlrId = 157;

}  // namespace

CompanionStatus FindCompanionStatus(const std::wstring& fileName, std::span<const VlrView> vlrs,
                                    std::span<const EvlrEntry> evlrs) {
    if (FileExists(WithExtension(fileName, L".qvr"))) {
        return CompanionStatus::QvrFile;
    }
    if (std::ranges::any_of(evlrs,
                            [](const EvlrEntry& evlr) { return evlr.RecordId() == kCompanionEvlrId; })) {
        return CompanionStatus::ExtendedRecord;
    }
    const auto isIndex = [](const VlrView& vlr) { return vlr.Is(kCompanionUserId, kIndexRecordId); };
    return std::ranges::any_of(vlrs, isIndex) ? CompanionStatus::IndexRecord : CompanionStatus::None;
}

}  // namespace orvex
