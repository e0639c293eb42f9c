#pragma once
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "support/Finding.h"

namespace orvex {

class LASFile;

enum class LasFindingCode {
    PointsTruncated,
    BytesAfterPoints,
    ExtentInverted,
    ExtentNotFinite,
    ScaleZero,
    ScaleNotFinite,
    OffsetBeyondEnd,
    OffsetInsideHeader,
    HeaderSizeOdd,
    VlrCountTooHigh,
    VlrTruncated,
    EvlrCountTooHigh,
    EvlrTruncated,
    UnknownPointFormat,
    RecordLengthTooShort,
    UnknownVersion,
    NoPoints,
    CountMismatch,
    NoCrs,
    CrsUnreadable,
    SignatureMissing,
};

/// One thing that is odd about a file.
struct LasFinding : Finding {
    LasFinding(LasFindingCode what, FindingSeverity how, std::uint64_t where, std::wstring sentence)
        : Finding{how, std::move(sentence)}, code(what), offset(where) {}

    LasFindingCode code;
    std::uint64_t offset;  ///< byte in the file that says so
};

/// Everything that is odd about a file's header and records, worst first, in file order among equals. Whether
/// its CRS can be read is not asked here.
std::vector<LasFinding> ValidateLas(const LASFile& file);

/// Puts findings in that order.
void SortFindings(std::vector<LasFinding>& findings);

}  // namespace orvex
