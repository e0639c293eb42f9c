#pragma once
// The layout of LAS files, versions 1.0 to 1.4: field offsets, sizes, record ids and point formats. Facts
// only; readers, validators and writers all take their numbers from here. Offsets and sizes are bytes.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace orvex::las {

inline constexpr std::string_view kSignature = "LASF";

/// Offsets in the public header block (table 3 of the LAS 1.4 format).
namespace at {
inline constexpr std::size_t kSignature = 0;
inline constexpr std::size_t kFileSourceId = 4;
inline constexpr std::size_t kGlobalEncoding = 6;
inline constexpr std::size_t kProjectId = 8;
inline constexpr std::size_t kVersionMajor = 24;
inline constexpr std::size_t kVersionMinor = 25;
inline constexpr std::size_t kSystemIdentifier = 26;
inline constexpr std::size_t kGeneratingSoftware = 58;
inline constexpr std::size_t kCreationDay = 90;
inline constexpr std::size_t kCreationYear = 92;
inline constexpr std::size_t kHeaderSize = 94;
inline constexpr std::size_t kOffsetToPoints = 96;
inline constexpr std::size_t kVlrCount = 100;
inline constexpr std::size_t kPointFormat = 104;
inline constexpr std::size_t kPointRecordLength = 105;
inline constexpr std::size_t kLegacyPointCount = 107;
inline constexpr std::size_t kLegacyPointsByReturn = 111;
inline constexpr std::size_t kScale = 131;
inline constexpr std::size_t kOffset = 155;
// Maximum and minimum alternate: X, X, Y, Y, Z, Z.
inline constexpr std::size_t kMaximum = 179;
inline constexpr std::size_t kMinimum = 187;
inline constexpr std::size_t kWaveformStart = 227;
inline constexpr std::size_t kEvlrStart = 235;
inline constexpr std::size_t kEvlrCount = 243;
inline constexpr std::size_t kPointCount = 247;
inline constexpr std::size_t kPointsByReturn = 255;
}  // namespace at

/// Length of the header's two text fields.
inline constexpr std::size_t kHeaderTextLength = 32;

/// Header sizes: no header is shorter than that of LAS 1.0; 1.3 adds the start of the waveform data, 1.4 the
/// EVLRs and the 64-bit counts.
inline constexpr std::uint16_t kLegacyHeaderSize = 227;
inline constexpr std::uint16_t kHeaderSize13 = 235;
inline constexpr std::uint16_t kHeaderSize14 = 375;

/// Bits of the global encoding (table 4). Without kStandardGpsTime, GPS times are week seconds.
namespace encoding {
inline constexpr std::uint16_t kStandardGpsTime = 0x01;
inline constexpr std::uint16_t kInternalWaveform = 0x02;
inline constexpr std::uint16_t kExternalWaveform = 0x04;
inline constexpr std::uint16_t kSyntheticReturns = 0x08;
inline constexpr std::uint16_t kWkt = 0x10;
}  // namespace encoding

/// Bits of the point format byte that mark compressed points.
inline constexpr std::uint8_t kCompressionBits = 0xC0;

/// Order of the versions as the component and its host exchange it; 2.0 sits between 1.1 and 1.2.
enum VersionCode : int { kUnknownVersion = -1, kLas10, kLas11, kLas20, kLas12, kLas13, kLas14 };

struct VersionFacts {
    int minor;  ///< LAS 1.x
    VersionCode code;
    const wchar_t* name;
    std::uint16_t headerSize;
    int lastPointFormat;
    int lastDemFormat;  ///< largest point format that elevation rasters are converted to
};

inline constexpr std::array<VersionFacts, 5> kVersions{{
    {0, kLas10, L"1.0", kLegacyHeaderSize, 1, 1},
    {1, kLas11, L"1.1", kLegacyHeaderSize, 1, 1},
    {2, kLas12, L"1.2", kLegacyHeaderSize, 3, 3},
    {3, kLas13, L"1.3", kHeaderSize13, 5, 5},
    {4, kLas14, L"1.4", kHeaderSize14, 10, 8},
}};

/// Facts of a version; null for a code that is not LAS 1.0 to 1.4.
constexpr const VersionFacts* FindVersion(int code) {
    const auto* const found = std::ranges::find(kVersions, code, &VersionFacts::code);
    return found == kVersions.end() ? nullptr : found;
}

/// Contents of a point data record format (tables 7 to 17). Lengths exclude extra bytes.
struct PointFormatFacts {
    std::uint16_t minimumLength;
    bool hasGpsTime;
    bool hasColor;
    bool hasNearInfrared;
    bool hasWaveform;
};

/// By format number. From kFirstExtendedFormat on, records have the layout of LAS 1.4 and the file's legacy
/// counts are 0.
inline constexpr std::array<PointFormatFacts, 11> kPointFormats{{
    {20, false, false, false, false},  // 0
    {28, true, false, false, false},   // 1
    {26, false, true, false, false},   // 2
    {34, true, true, false, false},    // 3
    {57, true, false, false, true},    // 4
    {63, true, true, false, true},     // 5
    {30, true, false, false, false},   // 6
    {36, true, true, false, false},    // 7
    {38, true, true, true, false},     // 8
    {59, true, false, false, true},    // 9
    {67, true, true, true, true},      // 10
}};
inline constexpr int kFirstExtendedFormat = 6;
inline constexpr int kLastPointFormat = kPointFormats.size() - 1;

/// Facts of a format, given without its compression bits; null for a number that LAS 1.4 does not define.
constexpr const PointFormatFacts* FindPointFormat(int format) {
    return format >= 0 && format <= kLastPointFormat ? &kPointFormats[static_cast<std::size_t>(format)]
                                                     : nullptr;
}

/// Offsets in a point record. Legacy formats are those below kFirstExtendedFormat; GPS time and colour are
/// there only if the format has them, and legacy colour has this offset only behind GPS time.
namespace point_at {
inline constexpr std::size_t kPosition = 0;  // X, Y, Z as 32-bit steps of the scale
inline constexpr std::size_t kIntensity = 12;
inline constexpr std::size_t kReturns = 14;
inline constexpr std::size_t kLegacyClassification = 15;  // with its flags
inline constexpr std::size_t kClassificationFlags = 15;
inline constexpr std::size_t kClassification = 16;
inline constexpr std::size_t kLegacyGpsTime = 20;
inline constexpr std::size_t kGpsTime = 22;
inline constexpr std::size_t kLegacyColor = 28;
inline constexpr std::size_t kColor = 30;
}  // namespace point_at

/// Return byte of the only return of a pulse.
inline constexpr std::uint8_t kLegacyOnlyReturn = 0x09;
inline constexpr std::uint8_t kOnlyReturn = 0x11;
/// Flag of synthetic points, in the classification byte or in the flags byte.
inline constexpr std::uint8_t kLegacySyntheticFlag = 0x20;
inline constexpr std::uint8_t kSyntheticFlag = 0x01;

/// Variable length records (VLRs) and extended ones (EVLRs): sizes of their headers, and offsets in them. The
/// data's length takes 16 bits in a VLR and 64 in an EVLR.
inline constexpr std::size_t kVlrHeaderSize = 54;
inline constexpr std::size_t kEvlrHeaderSize = 60;
inline constexpr std::size_t kMostVlrData = 65535;
namespace record_at {
inline constexpr std::size_t kReserved = 0;
inline constexpr std::size_t kUserId = 2;
inline constexpr std::size_t kRecordId = 18;
inline constexpr std::size_t kLength = 20;
inline constexpr std::size_t kVlrDescription = 22;
inline constexpr std::size_t kEvlrDescription = 28;
}  // namespace record_at
inline constexpr std::size_t kUserIdLength = 16;
inline constexpr std::size_t kDescriptionLength = 32;
/// Reserved field of the VLRs of LAS 1.0; 0 since.
inline constexpr std::uint16_t kVlrSignature10 = 0xAABB;

/// Records that hold the CRS. The ids of the GeoKey records are those of the GeoTIFF tags with the same data.
inline constexpr std::string_view kProjectionUserId = "LASF_Projection";
inline constexpr std::uint16_t kWktRecordId = 2112;
inline constexpr std::uint16_t kGeoKeyDirectoryRecordId = 34735;
inline constexpr std::uint16_t kGeoDoublesRecordId = 34736;
inline constexpr std::uint16_t kGeoTextRecordId = 34737;
inline constexpr std::string_view kWktDescription = "OGC coordinate system WKT";
inline constexpr std::string_view kGeoKeyDirectoryDescription = "GeoTiff GeoKeyDirectoryTag";

/// Other records.
inline constexpr std::string_view kSpecUserId = "LASF_Spec";
inline constexpr std::uint16_t kExtraBytesRecordId = 4;
inline constexpr std::uint16_t kWaveformRecordId = 65535;
inline constexpr std::string_view kCodecUserId = "laszip encoded";
inline constexpr std::uint16_t kCodecRecordId = 22204;
inline constexpr std::string_view kCopcUserId = "copc";
inline constexpr std::uint16_t kCopcInfoRecordId = 1;

/// GeoKeys and their values.
namespace geo_key {
inline constexpr std::uint16_t kModelType = 1024;
inline constexpr std::uint16_t kRasterType = 1025;
inline constexpr std::uint16_t kCitation = 1026;
inline constexpr std::uint16_t kGeographicType = 2048;
inline constexpr std::uint16_t kGeographicCitation = 2049;
inline constexpr std::uint16_t kProjectedType = 3072;
inline constexpr std::uint16_t kProjectedCitation = 3073;
inline constexpr std::uint16_t kVerticalCitation = 4097;
inline constexpr std::uint16_t kFirst = kModelType;
inline constexpr std::uint16_t kLast = 5120;
inline constexpr std::uint16_t kModelProjected = 1;
inline constexpr std::uint16_t kModelGeographic = 2;
inline constexpr std::uint16_t kPixelIsArea = 1;
}  // namespace geo_key

}  // namespace orvex::las
