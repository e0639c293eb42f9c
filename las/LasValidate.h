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
inline constexpr FindingKind kVersionUnknown{"version-unknown", Error, text::kLasVersionUnknown};
inline constexpr FindingKind kVersion20{"version-2-0", Warning, text::kLasVersion20};
inline constexpr FindingKind kHeaderTooShort{"header-too-short", Error, text::kLasHeaderSizeTooSmall};
inline constexpr FindingKind kHeaderShortForVersion{"header-short-for-version", Warning,
                                                    text::kLasHeaderSizeTooSmall};
inline constexpr FindingKind kPointsInsideHeader{"points-inside-header", Error, text::kLasPointsInsideHeader};
inline constexpr FindingKind kPointsBeyondEnd{"points-beyond-end", Error, text::kLasPointsBeyondEnd};
inline constexpr FindingKind kPointsTruncated{"points-truncated", Error, text::kLasTruncatedPoints};
inline constexpr FindingKind kPointTruncated{"points-truncated", Error, text::kLasTruncatedPoint};
inline constexpr FindingKind kPointCountTooSmall{"point-count-too-small", Warning,
                                                 text::kLasPointCountTooLarge};
inline constexpr FindingKind kBytesAfterPoints{"bytes-after-points", Note, text::kLasBytesAfterPoints};
inline constexpr FindingKind kNoPoints{"no-points", Warning, text::kLasNoPoints};
inline constexpr FindingKind kLegacyCount{"legacy-count-mismatch", Warning, text::kLasPointCountsDiffer};
inline constexpr FindingKind kReturns{"returns-mismatch", Warning, text::kLasReturnsMismatch};
inline constexpr FindingKind kPointFormatUnknown{"point-format-unknown", Error, text::kLasPointFormatUnknown};
inline constexpr FindingKind kRecordTooShort{"point-record-too-short", Error, text::kLasRecordLengthTooSmall};
inline constexpr FindingKind kFormatOfLaterVersion{"point-format-of-later-version", Warning,
                                                   text::kLasFormatOfLaterVersion};
inline constexpr FindingKind kWktBitMissing{"wkt-bit-missing", Note, text::kLasWktBitMissing};
inline constexpr FindingKind kExtraBytesUnexplained{"extra-bytes-unexplained", Note,
                                                    text::kLasExtraBytesUnexplained};
inline constexpr FindingKind kExtraBytesBeyondRecord{"extra-bytes-beyond-record", Warning,
                                                     text::kLasExtraBytesBeyondRecord};
inline constexpr FindingKind kScaleZero{"scale-zero", Warning, text::kLasScaleZero};
inline constexpr FindingKind kScaleNotFinite{"scale-not-finite", Error, text::kLasScaleNotFinite};
inline constexpr FindingKind kExtentNotFinite{"extent-not-finite", Warning, text::kLasExtentNotFinite};
inline constexpr FindingKind kExtentInverted{"extent-inverted", Warning, text::kLasExtentInverted};
inline constexpr FindingKind kExtentBeyondScale{"extent-beyond-scale", Warning, text::kLasExtentBeyondScale};
inline constexpr FindingKind kCreatedInFuture{"created-in-future", Note, text::kLasCreatedInFuture};
inline constexpr FindingKind kWaveformFileMissing{"waveform-file-missing", Warning,
                                                  text::kLasWaveformFileMissing};
inline constexpr FindingKind kWaveformBeyondEnd{"waveform-beyond-end", Warning, text::kLasWaveformBeyondEnd};
inline constexpr FindingKind kWaveformBothBits{"waveform-both-bits", Warning, text::kLasWaveformBothBits};
inline constexpr FindingKind kVlrCount{"vlr-count-mismatch", Warning, text::kLasVlrCountMismatch};
inline constexpr FindingKind kVlrTruncated{"vlr-truncated", Warning, text::kLasVlrOverrun};
inline constexpr FindingKind kEvlrCount{"evlr-count-mismatch", Warning, text::kLasEvlrCountMismatch};
inline constexpr FindingKind kEvlrsInsideData{"evlrs-inside-data", Warning, text::kLasEvlrsInsideData};
inline constexpr FindingKind kEvlrTruncated{"evlr-truncated", Warning, text::kLasEvlrOverrun};
inline constexpr FindingKind kVlrsNotListed{"vlrs-not-listed", Warning, text::kLasVlrsNotListed};
inline constexpr FindingKind kEvlrsNotListed{"evlrs-not-listed", Warning, text::kLasEvlrsNotListed};
inline constexpr FindingKind kRecordsNotRead{"records-not-read", Warning, text::kLasRecordsNotRead};
inline constexpr FindingKind kRecordTooLarge{"record-too-large", Warning, text::kLasRecordTooLarge};
inline constexpr FindingKind kCompressionDamaged{"compression-damaged", Error,
                                                 StringId{}};  // the decompressor's words
inline constexpr FindingKind kExtraBytesSpread{"extra-bytes-spread", Warning, text::kLasExtraBytesSpread};
inline constexpr FindingKind kDateImpossible{"creation-date-impossible", Note, text::kLasDateImpossible};
inline constexpr FindingKind kNoCrs{"no-crs", Note, text::kFileWithoutCrs};
inline constexpr FindingKind kQvrStale{"companion-stale", Warning, text::kLasQvrStale};
inline constexpr FindingKind kQvrUnreadable{"companion-unreadable", Warning, text::kLasQvrUnreadable};
inline constexpr FindingKind kQvrOfOther{"companion-of-other-file", Warning, StringId{}};  // a whole sentence
inline constexpr FindingKind kCrsUnreadable{"crs-unreadable", Warning, text::kCrsUnreadable};
}  // namespace las_finding

/// One defect or oddity of a file.
struct LasFinding : Finding {
    std::uint64_t offset = 0;  ///< bytes from the start of the file to the field or data concerned
};

/// Findings about a file's header and records, worst first, then by offset. Does not try to read the CRS.
std::vector<LasFinding> ValidateLas(const LASFile& file);

/// Sorts findings into that order; among the notes a missing CRS comes first.
void SortFindings(std::vector<LasFinding>& findings);

}  // namespace orvex
