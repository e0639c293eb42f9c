#pragma once
// The host's layer-utilities library: file kinds, LAZ, coordinate reference systems.
#include <functional>
#include <string>

#if defined(_WIN32)
#if defined(ORVEXUTILITIES_BUILD)
#define ORVEXUTILITIES_API __declspec(dllexport)
#else
#define ORVEXUTILITIES_API __declspec(dllimport)
#endif
#else
#define ORVEXUTILITIES_API __attribute__((visibility("default")))
#endif

namespace Kst {
class ProgressIf;
}

/// Static functions; safe to call from any thread unless a function says otherwise. WKT texts are UTF-8.
class ORVEXUTILITIES_API OrvexUtilities {
  public:
    // LAS and LAZ files. Paths may not exist unless a function says so.

    /// True when the path's extension is ".laz" in any letter case.
    static bool IsLAZFile(const std::wstring& path);
    /// True when LAZ files can be used in place of LAS files for this path: it is a LAZ file, it exists, and
    /// its folder can hold the decompressed file or already does.
    static bool IsLAZEnabled(const std::wstring& path);
    /// ".laz" to ".las" and the reverse, each letter in its case (".LAZ" to ".LAS"); another extension gives
    /// an empty text.
    static std::wstring GetLAZBuddyPath(const std::wstring& path);
    /// True when the LAZ file is newer than its LAS buddy, or the buddy is missing. Times are compared to the
    /// second. False when the LAZ file is missing or is none.
    static bool IsLAZNewer(const std::wstring& lazPath);
    /// True when the LAS buddy of the LAZ file exists as a file.
    static bool LAZEnabledLASFileExists(const std::wstring& lazPath);
    /// Decompresses a LAZ file to `lasPath`, through a temporary name beside it that is renamed when
    /// complete; the new file gets the LAZ file's time stamp. Points, header and records stay as they are,
    /// less what only describes the compression (the codec's own record, the octree of a COPC file); extended
    /// records follow the points. Progress is told in points; a stop removes the temporary file and returns
    /// false with an empty reason. False with a reason in plain words on failure; nothing is left behind
    /// then, and a file that was at `lasPath` before stays.
    static bool LAZDecompress(const std::wstring& lazPath, const std::wstring& lasPath,
                              Kst::ProgressIf& progress, std::wstring& reason);
    /// A text that two LAS files share exactly when they can lie in one layer: the same horizontal and
    /// vertical CRS and the same units, whatever dialect of WKT says so and whatever name a CRS without a
    /// code was given. `wkt` may be empty ("no CRS" is a group of its own). For comparing, not for showing.
    static std::string GetCompatibilityGroup(const std::string& wkt);

    // Coordinate reference systems.

    /// Display name of the CRS: its own name; empty when the WKT cannot be read.
    static std::string CrsGetCRSName(const std::string& wkt);
    /// Multi-line WKT. With `wkt1` WKT1 where the CRS can be expressed in it, else WKT2. Empty when
    /// unreadable.
    static std::string CrsGetPrettyWktFromWKT(const std::string& wkt, bool wkt1);
    /// Multi-line WKT1 of an EPSG code; empty when the code is unknown.
    static std::string CrsGetPrettyWktFromEPSG(int code);
    /// The EPSG codes found in a WKT; an output is 0 where there is none. `code` is that of the whole CRS,
    /// else the horizontal one. Codes of parts and units that a text leaves out because the code of the whole
    /// implies them (WKT2 does) are given as well. False when the WKT cannot be read or holds no code for its
    /// horizontal CRS.
    static bool CrsGetEPSGFromWKT(const std::string& wkt, long& code, long& horizontal, long& vertical,
                                  long& geographic, long& linearUnit, long& angularUnit);
    /// Gives GDAL's raster block cache a fraction (above 0, at most 1) of physical memory. False when out of
    /// range.
    static bool SetGDALRasterCacheSize(double fraction);
    /// WKT (WKT1, else WKT2) of the GeoTIFF keys of a LAS file: the payloads of the records 34735
    /// (directory), 34736 (doubles, may be empty) and 34737 (text, may be empty), little-endian. Empty when
    /// they say no CRS; the reason then holds what was wrong, if anything was.
    static std::string CrsWktFromGeoKeys(const std::string& directory, const std::string& doubles,
                                         const std::string& text, std::string& reason);
};
