#pragma once
#include <cstdint>
#include <vector>

#include "support/Finding.h"

namespace orvex {

class LASFile;

/// Every finding about a LAS file. Errors: points are missing or in the wrong place. Warnings: the file
/// loads, but something of it is lost or doubtful. Notes leave it good.
namespace las_finding {
using enum FindingSeverity;
inline constexpr FindingKind kUnreadable{"unreadable", Error, StringId{}};  // the reason
inline constexpr FindingKind kReaderMessage{"reader-message", Note, text::kReaderMessage};
inline constexpr FindingKind kSignatureMissing{"signature-missing", Error, text::kNotLas};
inline constexpr FindingKind kVersionUnknown{
    "version-unknown", Error, text::kLasVersionUnknown, {.member = "/las/version"}};
inline constexpr FindingKind kVersion20{
    "version-2-0", Warning, text::kLasVersion20, {.member = "/las/version"}};
inline constexpr FindingKind kHeaderTooShort{
    "header-too-short", Error, text::kLasHeaderSizeTooSmall, {.member = "/las/headerSize"}};
inline constexpr FindingKind kHeaderShortForVersion{
    "header-short-for-version", Warning, text::kLasHeaderSizeTooSmall, {.member = "/las/headerSize"}};
inline constexpr FindingKind kPointsInsideHeader{
    "points-inside-header", Error, text::kLasPointsInsideHeader, {.member = "/las/offsetToPoints"}};
inline constexpr FindingKind kPointsBeyondEnd{
    "points-beyond-end", Error, text::kLasPointsBeyondEnd, {.member = "/las/offsetToPoints"}};
inline constexpr FindingKind kPointsTruncated{
    "points-truncated", Error, text::kLasTruncatedPoints, {.member = "/las/pointCount"}};
inline constexpr FindingKind kPointTruncated{
    "points-truncated", Error, text::kLasTruncatedPoint, {.member = "/las/pointCount"}};
inline constexpr FindingKind kPointCountTooSmall{
    "point-count-too-small", Warning, text::kLasPointCountTooLarge, {.member = "/las/pointCount"}};
inline constexpr FindingKind kBytesAfterPoints{"bytes-after-points", Note, text::kLasBytesAfterPoints};
inline constexpr FindingKind kNoPoints{
    "no-points", Warning, text::kLasNoPoints, {.member = "/las/pointCount"}};
inline constexpr FindingKind kLegacyCount{
    "legacy-count-mismatch", Warning, text::kLasPointCountsDiffer, {.member = "/las/legacyPointCount"}};
inline constexpr FindingKind kReturns{
    "returns-mismatch", Warning, text::kLasReturnsMismatch, {.member = "/las/pointsByReturn"}};
inline constexpr FindingKind kPointFormatUnknown{
    "point-format-unknown", Error, text::kLasPointFormatUnknown, {.member = "/las/pointFormat"}};
inline constexpr FindingKind kRecordTooShort{
    "point-record-too-short", Error, text::kLasRecordLengthTooSmall, {.member = "/las/pointRecordLength"}};
inline constexpr FindingKind kFormatOfLaterVersion{
    "point-format-of-later-version", Warning, text::kLasFormatOfLaterVersion, {.member = "/las/pointFormat"}};
inline constexpr FindingKind kWktBitMissing{
    "wkt-bit-missing", Note, text::kLasWktBitMissing, {.member = "/las/globalEncoding"}};
inline constexpr FindingKind kExtraBytesUnexplained{
    "extra-bytes-unexplained", Note, text::kLasExtraBytesUnexplained, {.member = "/las/pointRecordLength"}};
inline constexpr FindingKind kExtraBytesBeyondRecord{
    "extra-bytes-beyond-record", Warning, text::kLasExtraBytesBeyondRecord, {.member = "/las/extraBytes"}};
inline constexpr FindingKind kScaleZero{"scale-zero", Warning, text::kLasScaleZero, {.member = "/las/scale"}};
inline constexpr FindingKind kScaleNotFinite{
    "scale-not-finite", Error, text::kLasScaleNotFinite, {.member = "/las/scale"}};
inline constexpr FindingKind kExtentNotFinite{
    "extent-not-finite", Warning, text::kLasExtentNotFinite, {.member = "/las/max"}};
inline constexpr FindingKind kExtentInverted{
    "extent-inverted", Warning, text::kLasExtentInverted, {.member = "/las/max"}};
inline constexpr FindingKind kExtentBeyondScale{
    "extent-beyond-scale", Warning, text::kLasExtentBeyondScale, {.member = "/las/max"}};
inline constexpr FindingKind kCreatedInFuture{
    "created-in-future", Note, text::kLasCreatedInFuture, {.member = "/columns/created"}};
inline constexpr FindingKind kWaveformFileMissing{"waveform-file-missing",
                                                  Warning,
                                                  text::kLasWaveformFileMissing,
                                                  {.member = "/las/globalEncoding", .sidecar = ".wdp"}};
inline constexpr FindingKind kWaveformBeyondEnd{"waveform-beyond-end", Warning, text::kLasWaveformBeyondEnd};
inline constexpr FindingKind kWaveformBothBits{
    "waveform-both-bits", Warning, text::kLasWaveformBothBits, {.member = "/las/globalEncoding"}};
inline constexpr FindingKind kVlrCount{
    "vlr-count-mismatch", Warning, text::kLasVlrCountMismatch, {.member = "/las/vlrs"}};
inline constexpr FindingKind kVlrTruncated{
    "vlr-truncated", Warning, text::kLasVlrOverrun, {.member = "/las/vlrs"}};
inline constexpr FindingKind kEvlrCount{
    "evlr-count-mismatch", Warning, text::kLasEvlrCountMismatch, {.member = "/las/evlrs"}};
inline constexpr FindingKind kEvlrsInsideData{
    "evlrs-inside-data", Warning, text::kLasEvlrsInsideData, {.member = "/las/evlrs"}};
inline constexpr FindingKind kEvlrTruncated{
    "evlr-truncated", Warning, text::kLasEvlrOverrun, {.member = "/las/evlrs"}};
inline constexpr FindingKind kVlrsNotListed{
    "vlrs-not-listed", Warning, text::kLasVlrsNotListed, {.member = "/las/vlrs"}};
inline constexpr FindingKind kEvlrsNotListed{
    "evlrs-not-listed", Warning, text::kLasEvlrsNotListed, {.member = "/las/evlrs"}};
inline constexpr FindingKind kRecordsNotRead{
    "records-not-read", Warning, text::kLasRecordsNotRead, {.member = "/las/vlrs"}};
inline constexpr FindingKind kRecordTooLarge{"record-too-large", Warning, text::kLasRecordTooLarge};
inline constexpr FindingKind kCompressionDamaged{"compression-damaged", Error,
                                                 StringId{}};  // the decompressor's words
inline constexpr FindingKind kExtraBytesSpread{
    "extra-bytes-spread", Warning, text::kLasExtraBytesSpread, {.member = "/las/extraBytes"}};
inline constexpr FindingKind kDateImpossible{
    "creation-date-impossible", Note, text::kLasDateImpossible, {.member = "/columns/created"}};
inline constexpr FindingKind kNoCrs{"no-crs", Note, text::kFileWithoutCrs, {.member = "/crs"}};
inline constexpr FindingKind kQvrStale{
    "companion-stale", Warning, text::kLasQvrStale, {.member = "/las/companionStatus", .sidecar = ".qvr"}};
inline constexpr FindingKind kQvrUnreadable{"companion-unreadable",
                                            Warning,
                                            text::kLasQvrUnreadable,
                                            {.member = "/las/companionStatus", .sidecar = ".qvr"}};
inline constexpr FindingKind kQvrOfOther{
    "companion-of-other-file",
    Warning,
    StringId{},
    {.member = "/las/companionStatus", .sidecar = ".qvr"}};  // a whole sentence
inline constexpr FindingKind kCrsUnreadable{
    "crs-unreadable", Warning, text::kCrsUnreadable, {.member = "/crs"}};
}  // namespace las_finding

/// Findings about a file's header and records, worst first, then by offset. Does not try to read the CRS.
std::vector<Finding> ValidateLas(const LASFile& file);

/// Sorts findings into that order; among the notes a missing CRS comes first.
void SortFindings(std::vector<Finding>& findings);

}  // namespace orvex
