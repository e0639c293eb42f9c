#pragma once
#include <span>
#include <string>

#include "las/LasRecords.h"

namespace orvex {

/// What kind of companion index a LAS file has; the numbers are exchanged with the host.
enum class CompanionStatus {
    None = 0,
    QvrFile = 2,         ///< a ".qvr" file of the same base name lies beside the file
    IndexRecord = 3,     ///< the file holds the index VLR
    ExtendedRecord = 6,  ///< the file holds an EVLR with record id 157
};

/// Decides for a file and its records; a ".qvr" file goes before an EVLR, an EVLR before a VLR.
CompanionStatus FindCompanionStatus(const std::wstring& fileName, std::span<const VlrView> vlrs,
                                    std::span<const EvlrEntry> evlrs);

}  // namespace orvex
