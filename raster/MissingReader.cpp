#include "raster/MissingReader.h"

#include <gdal.h>

#include <algorithm>
#include <string_view>

#include "support/Format.h"
#include "support/Text.h"

namespace orvex {
namespace {

/// A name that files of a format have, and a driver that reads them. A format has several lines.
struct Reader {
    std::wstring_view format;
    std::wstring_view extension;  ///< in upper case
    const char* driver;
};
/// The formats that not every build of GDAL reads.
constexpr Reader kReaders[] = {
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

std::wstring MissingReaderReason(const std::wstring& path) {
    const std::wstring extension = UpperExtensionOf(path);
    std::wstring_view format;
    for (const Reader& reader : kReaders) {
        if (reader.extension != extension) {
            continue;
        }
        if (GDALGetDriverByName(reader.driver) != nullptr) {
            return {};
        }
        format = reader.format;
    }
    return format.empty() ? std::wstring() : FormatText(Text(41260_lsid), {std::wstring(format)});
}

}  // namespace orvex
