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
    RecordTooLarge,
    CompressionDamaged,
    ExtraBytesSpread,
    DateImpossible,
};

/// One defect or oddity of a file.
struct LasFinding : Finding {
    LasFinding(LasFindingCode what, FindingSeverity how, std::uint64_t where, std::wstring sentence)
        : Finding{how, std::move(sentence)}, code(what), offset(where) {}

    LasFindingCode code;
    std::uint64_t offset;  ///< offset of the field or data concerned
};

/// Findings about a file's header and records, worst first, then by offset. Does not try to read the CRS.
std::vector<LasFinding> ValidateLas(const LASFile& file);

/// Sorts findings into that order.
void SortFindings(std::vector<LasFinding>& findings);

}  // namespace orvex
