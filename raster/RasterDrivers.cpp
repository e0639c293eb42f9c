#include "raster/RasterDrivers.h"

#include <gdal.h>

#include <mutex>
#include <string>
#include <string_view>

#include "support/Format.h"
#include "support/Text.h"

namespace orvex {
namespace {

/// Drivers that open a listed file. Each reads the file and what lies beside it under names derived from its
/// own, in bounded time; none asks a server or a database, or opens a file because of a name inside another.
/// What a VRT names is checked before.
constexpr std::string_view kDrivers =
    " AAIGrid ACE2 AIG BIGGIF BMP BSB BT BYN CTable2 DOQ1 DTED ECW EHdr ENVI GenBin GIF"
    " GRASSASCIIGrid GS7BG GSAG GSBG GTiff GTX GXF HF2 HFA ISG JP2ECW JP2KAK JP2Lura"
    " JP2MrSID JP2OpenJPEG JPEG KRO LAN LCP Leveller MrSID NGSGEOID NITF NTv2 NWT_GRC"
    " NWT_GRD PCRaster PNG PNM RMF ROI_PAC RRASTER RST SAGA SDTS SGI SIGDEM SRTMHGT"
    " Terragen TGA USGSDEM VRT WEBP ZMap"
    " ";

bool MayOpen(GDALDriverH driver) {
    const std::string name = std::string(" ") + GDALGetDriverShortName(driver) + " ";
    return GDALGetMetadataItem(driver, GDAL_DCAP_OPEN, nullptr) != nullptr &&
           kDrivers.find(name) != std::string_view::npos;
}

/// An extension of a format and a driver that reads it; a format can have several rows.
struct FormatDriver {
    std::wstring_view format;
    std::wstring_view extension;  ///< upper case
    const char* driver;
};
/// Formats that some builds of GDAL lack.
constexpr FormatDriver kFormatDrivers[] = {
    {L"DTED", L".DT0", "DTED"},
    {L"DTED", L".DT1", "DTED"},
    {L"DTED", L".DT2", "DTED"},
    {L"ECW", L".ECW", "ECW"},
    {L"GIF", L".GIF", "GIF"},
    {L"GRD", L".GRD", "GSAG"},
    {L"GRD", L".GRD", "GSBG"},
    {L"GRD", L".GRD", "GS7BG"},
    {L"GRD", L".GRD", "NWT_GRD"},
    {L"JPEG 2000", L".J2K", "JP2OpenJPEG"},
    {L"JPEG 2000", L".JP2", "JP2OpenJPEG"},
    {L"JPEG 2000", L".JP2", "JP2ECW"},
    {L"JPEG 2000", L".JP2", "JP2KAK"},
    {L"JPEG 2000", L".JP2", "JP2MrSID"},
    {L"JPEG 2000", L".JP2K", "JP2OpenJPEG"},
    {L"MrSID", L".SID", "MrSID"},
    {L"NITF", L".NITF", "NITF"},
    {L"NITF", L".NTF", "NITF"},
    {L"PNG", L".PNG", "PNG"},
    {L"SGI", L".RGB", "SGI"},
};

}  // namespace

RasterDriverLists RasterDrivers() {
    static std::mutex lock;
    static RasterDriverLists drivers;
    static int registered = -1;
    const std::lock_guard guard(lock);
    // The host may register drivers of its own at any time.
    if (const int count = GDALGetDriverCount(); count != registered) {
        std::vector<std::string> names;
        for (int i = 0; i < count; ++i) {
            if (GDALDriverH driver = GDALGetDriver(i); MayOpen(driver)) {
                names.emplace_back(GDALGetDriverShortName(driver));
            }
        }
        drivers.reading = std::make_shared<const GdalList>(names);
        std::erase(names, "GIF");
        drivers.describing = std::make_shared<const GdalList>(std::move(names));
        registered = count;
    }
    return drivers;
}

std::wstring MissingDriverReason(const std::wstring& path) {
    const std::wstring extension = UpperExtensionOf(path);
    std::wstring_view format;
    for (const FormatDriver& row : kFormatDrivers) {
        if (row.extension != extension) {
            continue;
        }
        if (GDALGetDriverByName(row.driver) != nullptr) {
            return {};
        }
        format = row.format;
    }
    return format.empty() ? std::wstring()
                          : FormatText(Text(text::kRasterDriverMissing), {std::wstring(format)});
}

}  // namespace orvex
