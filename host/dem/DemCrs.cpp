#include "host/dem/DemCrs.h"

#include <cpl_string.h>
#include <cpl_vsi.h>
#include <gdal_priv.h>

#include <algorithm>
#include <array>
#include <atomic>

#include "host/dem/LasWriter.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/ByteReader.h"
#include "support/Format.h"
#include "support/GdalErrorScope.h"
#include "support/LasFormat.h"
#include "support/SpatialReference.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr double kFoot = 0.3048;
constexpr double kSurveyFoot = 1200.0 / 3937.0;

struct UnitName {
    const char* name;
    double metres;
};
constexpr auto kUnits = std::to_array<UnitName>({
    {"m", 1},
    {"meter", 1},
    {"metre", 1},
    {"meters", 1},
    {"metres", 1},
    {"mm", 0.001},
    {"millimeter", 0.001},
    {"millimetre", 0.001},
    {"cm", 0.01},
    {"centimeter", 0.01},
    {"centimetre", 0.01},
    {"dm", 0.1},
    {"decimeter", 0.1},
    {"decimetre", 0.1},
    {"km", 1000},
    {"kilometer", 1000},
    {"kilometre", 1000},
    {"ft", kFoot},
    {"foot", kFoot},
    {"feet", kFoot},
    {"international foot", kFoot},
    {"international feet", kFoot},
    {"us-ft", kSurveyFoot},
    {"ftus", kSurveyFoot},
    {"foot_us", kSurveyFoot},
    {"us survey foot", kSurveyFoot},
    {"us survey feet", kSurveyFoot},
    {"u.s. survey foot", kSurveyFoot},
    {"yd", 3 * kFoot},
    {"yard", 3 * kFoot},
});

constexpr std::uint32_t kLittleEndianTiff = 0x002A4949;  // "II", 42
constexpr std::uint64_t kEntrySize = 12;
constexpr std::uint64_t kInlineSize = 4;

std::uint64_t SizeOfType(std::uint16_t type) {
    switch (type) {
        case 2:
            return 1;
        case 3:
            return 2;
        case 12:
            return 8;
        default:
            return 0;
    }
}

/// A folder in GDAL's memory that no other thread uses; gone with all that lies in it.
class MemoryFolder {
  public:
    MemoryFolder() {
        static std::atomic<unsigned long long> counter{0};
        path_ = "/vsimem/orvex-dem-keys-" + std::to_string(++counter);
    }
    ~MemoryFolder() { VSIRmdirRecursive(path_.c_str()); }
    MemoryFolder(const MemoryFolder&) = delete;
    MemoryFolder& operator=(const MemoryFolder&) = delete;

    std::string Name(const char* name) const { return path_ + "/" + name; }

  private:
    std::string path_;
};

/// Writes a raster of one pixel with the CRS.
bool WriteTiff(const std::string& path, const OGRSpatialReference& crs) {
    GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName("GTiff");
    if (driver == nullptr) {
        return false;
    }
    CPLStringList options;
    options.SetNameValue("PROFILE", "GeoTIFF");
    options.SetNameValue("ENDIANNESS", "LITTLE");
    const GDALDatasetUniquePtr dataset(driver->Create(path.c_str(), 1, 1, 1, GDT_Byte, options.List()));
    return dataset != nullptr && dataset->SetSpatialRef(&crs) == CE_None;
}

constexpr int kFirstWktVersion = 4;

/// Data of the GeoKey directory, doubles and text records.
struct GeoKeyPayloads {
    std::string directory;
    std::string doubles;  ///< may be empty
    std::string text;     ///< may be empty
};

/// The GeoTIFF keys that GDAL writes for a CRS, which may state only a part of it; nullopt when it writes
/// none.
std::optional<GeoKeyPayloads> EncodeGeoKeys(const OGRSpatialReference& crs) {
    // GDAL passes the CRS on as text; a process may be set to one that loses heights.
    const CPLConfigOptionSetter format("OSR_WKT_FORMAT", "WKT2_2019", false);
    const MemoryFolder folder;
    const std::string path = folder.Name("keys.tif");
    if (!WriteTiff(path, crs)) {
        return std::nullopt;
    }
    vsi_l_offset size = 0;
    const GByte* const bytes = VSIGetMemFileBuffer(path.c_str(), &size, FALSE);
    if (bytes == nullptr) {
        return std::nullopt;
    }
    const auto tiff = std::as_bytes(std::span(bytes, static_cast<std::size_t>(size)));
    auto directory = FindTiffTag(tiff, las::kGeoKeyDirectoryRecordId);
    if (!directory) {
        return std::nullopt;
    }
    return GeoKeyPayloads{std::move(*directory), FindTiffTag(tiff, las::kGeoDoublesRecordId).value_or(""),
                          FindTiffTag(tiff, las::kGeoTextRecordId).value_or("")};
}

/// WKT1 is what LAS 1.4 names; some CRSs exist in WKT2 only.
std::string WktOf(const OGRSpatialReference& crs) {
    std::string wkt = ExportWkt(crs, "WKT1_GDAL");
    return wkt.empty() ? ExportWkt(crs, "WKT2_2019") : wkt;
}

/// True if `found` is the same CRS, whatever its name: keys bring the name of PROJ's database for a CRS
/// without one.
bool IsSameCrs(const OGRSpatialReference& crs, const std::string& wkt, const std::string& found) {
    if (OrvexUtilities::GetCompatibilityGroup(wkt) == OrvexUtilities::GetCompatibilityGroup(found)) {
        return true;
    }
    OGRSpatialReference read;
    constexpr const char* kOptions[] = {"IGNORE_DATA_AXIS_TO_SRS_AXIS_MAPPING=YES", nullptr};
    return read.importFromWkt(found.c_str()) == OGRERR_NONE && read.IsSame(&crs, kOptions) != 0;
}

std::optional<DemCrsRecords> WithGeoKeys(const OGRSpatialReference& crs, const std::string& wkt,
                                         int minorVersion) {
    const auto keys = EncodeGeoKeys(crs);
    if (!keys) {
        return std::nullopt;
    }
    DemCrsRecords result;
    std::string reason;
    result.wkt = OrvexUtilities::CrsWktFromGeoKeys(keys->directory, keys->doubles, keys->text, reason);
    // Keys say no more than the parts that they have numbers for.
    if (result.wkt.empty() || !IsSameCrs(crs, wkt, result.wkt)) {
        return std::nullopt;
    }
    const auto add = [&](std::uint16_t id, std::string_view description, const std::string& data) {
        if (!data.empty()) {
            result.records.push_back(
                LasRecordBytes(minorVersion, las::kProjectionUserId, id, description, data));
        }
    };
    add(las::kGeoKeyDirectoryRecordId, las::kGeoKeyDirectoryDescription, keys->directory);
    add(las::kGeoDoublesRecordId, "GeoTiff GeoDoubleParamsTag", keys->doubles);
    add(las::kGeoTextRecordId, "GeoTiff GeoAsciiParamsTag", keys->text);
    return result;
}

DemCrsRecords WithWkt(const std::string& wkt, int minorVersion, const std::wstring& demPath) {
    DemCrsRecords result;
    result.isWkt = true;
    // The text ends with a zero.
    if (wkt.empty() || wkt.size() >= las::kMostVlrData) {
        result.warnings.push_back(FormatText(Text(text::kDemCrsNoWkt), {demPath}));
        return result;
    }
    result.wkt = wkt;
    result.records.push_back(LasRecordBytes(minorVersion, las::kProjectionUserId, las::kWktRecordId,
                                            las::kWktDescription, wkt + '\0'));
    return result;
}

}  // namespace

std::optional<double> MetresIn(std::string_view unitName) {
    const std::string name(unitName);
    const auto* const unit =
        std::ranges::find_if(kUnits, [&](const UnitName& known) { return EQUAL(known.name, name.c_str()); });
    return unit == kUnits.end() ? std::nullopt : std::optional(unit->metres);
}

HeightUnit HeightUnitOf(const OGRSpatialReference& crs) {
    const char* name = nullptr;
    if (crs.IsCompound()) {
        const double metres = crs.GetTargetLinearUnits("VERT_CS", &name);
        return {metres, name};
    }
    if (crs.IsGeographic() || crs.IsGeocentric()) {
        return {1, "metre"};
    }
    const double metres = crs.GetLinearUnits(&name);
    return {metres, name};
}

std::optional<std::string> FindTiffTag(std::span<const std::byte> tiff, std::uint16_t tag) {
    const ByteReader reader(tiff);
    if (reader.Read<std::uint32_t>(0) != kLittleEndianTiff) {
        return std::nullopt;
    }
    const std::uint64_t directory = reader.Read<std::uint32_t>(4);
    const std::uint64_t entries = reader.Read<std::uint16_t>(directory);
    for (std::uint64_t i = 0; i < entries; ++i) {
        const std::uint64_t entry = directory + 2 + i * kEntrySize;
        if (!reader.Contains(entry, kEntrySize) || reader.Read<std::uint16_t>(entry) != tag) {
            continue;
        }
        const std::uint64_t length =
            SizeOfType(reader.Read<std::uint16_t>(entry + 2)) * reader.Read<std::uint32_t>(entry + 4);
        const std::uint64_t place = length <= kInlineSize ? entry + 8 : reader.Read<std::uint32_t>(entry + 8);
        if (length == 0 || !reader.Contains(place, length)) {
            return std::nullopt;
        }
        const auto bytes = reader.Bytes(place, length);
        return std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    }
    return std::nullopt;
}

DemCrsRecords MakeCrsRecords(const OGRSpatialReference& crs, int minorVersion, int pointFormat,
                             const std::wstring& demPath) {
    const GdalErrorScope errors;
    const std::string wkt = WktOf(crs);
    if (pointFormat < las::kFirstExtendedFormat) {
        if (auto keys = WithGeoKeys(crs, wkt, minorVersion)) {
            return *std::move(keys);
        }
        if (minorVersion < kFirstWktVersion) {
            DemCrsRecords none;
            none.warnings.push_back(FormatText(Text(text::kDemCrsNotInVersion), {demPath, minorVersion}));
            return none;
        }
    }
    return WithWkt(wkt, minorVersion, demPath);
}

}  // namespace orvex
