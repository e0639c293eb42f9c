#pragma once
// The host's layer-utilities library: file kinds, LAZ, CAD and KML files, coordinate reference systems,
// metadata of photos.
#include <boost/property_tree/ptree_fwd.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <span>
#include <string>
#include <vector>

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

/// Horizontal extent in the units of the data; minX > maxX if there is none.
struct tagOrvexExtent {
    double minX = 1;
    double minY = 1;
    double maxX = 0;
    double maxY = 0;
};

/// Layer name to number of features.
using OrvexLayerMap = std::map<std::wstring, std::uint32_t>;

/// Static functions; safe to call from any thread unless a function says otherwise. WKT texts are UTF-8.
class ORVEXUTILITIES_API OrvexUtilities {
  public:
    // LAS and LAZ files. Paths may not exist unless a function says so.

    /// True if the path's extension is ".laz" in any letter case.
    static bool IsLAZFile(const std::wstring& path);
    /// True if this LAZ file can be used in place of a LAS file: it exists, and its folder can take the
    /// decompressed file or already contains it.
    static bool IsLAZEnabled(const std::wstring& path);
    /// Path with ".laz" replaced by ".las" and vice versa, letter case kept (".LAZ" to ".LAS"); empty for any
    /// other extension.
    static std::wstring GetLAZBuddyPath(const std::wstring& path);
    /// True if the LAZ file is newer than its LAS buddy, or the buddy is missing. Times are compared to the
    /// second. False if the LAZ file is missing or is not one.
    static bool IsLAZNewer(const std::wstring& lazPath);
    /// True if the LAS buddy of the LAZ file exists as a file.
    static bool LAZEnabledLASFileExists(const std::wstring& lazPath);
    /// Checks, without reading points, what the decompression of a file starts from: the compression record
    /// and the table of chunks. False with a reason in plain words if they are damaged or missing, as in a
    /// truncated file, or if the file cannot be read. True for a file whose points are not compressed.
    static bool LAZCheck(const std::wstring& path, std::wstring& reason);
    /// Decompresses a LAZ file to `lasPath`, under a temporary name beside it until it is complete; the new
    /// file gets the LAZ file's time stamp. Points, header and records are preserved, except for what only
    /// describes the compression (the codec's own record, the octree of a COPC file); extended records follow
    /// the points. Progress counts points; cancelling removes the temporary file and returns false with an
    /// empty reason. On failure returns false with a reason in plain words, leaves nothing behind, and keeps
    /// a file that was at `lasPath`.
    static bool LAZDecompress(const std::wstring& lazPath, const std::wstring& lasPath,
                              Kst::ProgressIf& progress, std::wstring& reason);
    /// Reads the points of a LAZ file as whole records of the LAS file that LAZDecompress makes of it, on up
    /// to `threads` threads, 0 for one per core. `sink` is called on several threads at once, the calling
    /// thread among them, with a point's number and the records from that point on (a megabyte at most,
    /// unless one record is more; valid during the call); the ranges come in any order and hold every point
    /// once. Returns false with an empty reason if the sink returned false, which ends the reading, and with
    /// a reason in plain words on failure; then the sink may have got other points already. What the sink
    /// throws is a failure too.
    static bool LAZReadPoints(
        const std::wstring& path, unsigned threads,
        const std::function<bool(std::uint64_t first, std::span<const std::byte> records)>& sink,
        std::wstring& reason);
    /// Reads the header and the VLRs of the LAS file that LAZDecompress makes of a LAZ file: all bytes before
    /// its first point, except that the header's places of extended records are still those in the LAZ file.
    /// Point format and record length can differ from the LAZ file's own: old writers packed formats 6 to 10
    /// into older ones. False with a reason in plain words on failure.
    static bool LAZReadHead(const std::wstring& path, std::string& head, std::wstring& reason);
    /// Key that is equal for two LAS files exactly if they fit into one layer: same horizontal and vertical
    /// CRS and same units, whatever the dialect of WKT and the name of a CRS without a code. `wkt` may be
    /// empty ("no CRS" is a group of its own). For comparison only. A CRS without a code is searched for in
    /// PROJ's database, which can take a tenth of a second.
    static std::string GetCompatibilityGroup(const std::string& wkt);
    /// The same; `code` is the EPSG code of the horizontal CRS, stated or found, 0 for none.
    static std::string GetCompatibilityGroup(const std::string& wkt, long& code);

    // CAD and KML files: number of features, extent and layers. On failure they return false, with no
    // features, and `message` is the cause in a sentence; on success it says, one sentence a line, what was
    // left out, and is empty if nothing was. Memory does not grow with the number of features. Nothing else
    // is read than the file: no server is asked, no link followed, no archive unpacked to disk.

    /// DWG 2000; other versions fail by name. Layers are those of the drawing.
    static bool GetDWGInfo(const std::wstring& path, std::uint64_t& featureCount, tagOrvexExtent& extent,
                           OrvexLayerMap& layers, std::wstring& message);
    /// Text DXF of any version. Layers are those of the drawing; inserted blocks count with what they consist
    /// of, as GDAL delivers it.
    static bool GetDXFInfo(const std::wstring& path, std::uint64_t& featureCount, tagOrvexExtent& extent,
                           OrvexLayerMap& layers, std::wstring& message);
    /// DGN of version 7; version 8 fails by name. Layers are the levels ("Level 10").
    static bool GetDGNInfo(const std::wstring& path, std::uint64_t& featureCount, tagOrvexExtent& extent,
                           OrvexLayerMap& layers, std::wstring& message);
    /// KML and KMZ. Layers are the documents and folders that hold features; the extent is in degrees.
    static bool GetKMLInfo(const std::wstring& path, std::uint64_t& featureCount, tagOrvexExtent& extent,
                           OrvexLayerMap& layers, std::wstring& message);
    /// Name of a shape type as in a shapefile's header: 1 "Point", 3 "Polyline", 13 "PolylineZ", 0 "Null";
    /// "Unknown" for other numbers.
    static std::wstring OrvexGeometryToString(std::int32_t shapeType);

    // Coordinate reference systems.

    /// Display name of the CRS: its own name; empty if the WKT is unreadable.
    static std::string CrsGetCRSName(const std::string& wkt);
    /// Multi-line WKT: WKT1 if `wkt1` is set and the CRS can be expressed in it, else WKT2. Empty if
    /// unreadable.
    static std::string CrsGetPrettyWktFromWKT(const std::string& wkt, bool wkt1);
    /// Multi-line WKT1 of an EPSG code; empty if the code is unknown.
    static std::string CrsGetPrettyWktFromEPSG(int code);
    /// EPSG codes of a WKT, 0 where there is none. `code` is that of the whole CRS, else of the horizontal
    /// one. Includes codes of parts and units that a text omits because the code of the whole implies them
    /// (as in WKT2). False if the WKT is unreadable or has no code for its horizontal CRS.
    static bool CrsGetEPSGFromWKT(const std::string& wkt, long& code, long& horizontal, long& vertical,
                                  long& geographic, long& linearUnit, long& angularUnit);
    /// Sets GDAL's raster block cache to a fraction (above 0, at most 1) of physical memory, unless the host
    /// has set it (GDALSetCacheMax, or the option GDAL_CACHEMAX). False if out of range. Also prepares what
    /// this library needs of GDAL: call it before other threads use GDAL.
    static bool SetGDALRasterCacheSize(double fraction);
    /// WKT (WKT1, else WKT2) from the GeoTIFF keys of a LAS file: the payloads of the records 34735
    /// (directory), 34736 (doubles, may be empty) and 34737 (text, may be empty), little-endian. Empty if
    /// they contain no CRS; `reason` then says in sentences what is wrong, and is empty if nothing is.
    static std::string CrsWktFromGeoKeys(const std::string& directory, const std::string& doubles,
                                         const std::string& text, std::string& reason);

    // Photos. Only files are read, never the pixels; a path is no URL.

    /// Reads the metadata of images, on all processors when there are many. `tree` becomes a tree whose child
    /// "Images" has one child "Image" per path, in their order, with "SourceFile" (the path as given) and the
    /// keys that the image has. Numbers have a decimal point and all their digits, whatever the locale:
    ///   "ImageUniqueID", "PlatformID", "POSQuality", "ORIQuality": texts;
    ///   "GPSLongitude", "GPSLatitude" (degrees), "GPSAltitude" (metres);
    ///   "CameraYaw", "CameraPitch", "CameraRoll": degrees, as the file states them;
    ///   "CameraGPSXYAccuracy", "CameraGPSZAccuracy" (metres), "CameraRollPitchAccuracy",
    ///   "CameraYawAccuracy"; "CameraAdjGpsSec": GPS seconds minus 1e9; "CameraCalibrated": "TRUE" or another
    ///   text; "ImageHeight", "ImageWidth": pixels; "CalibratedFocalLength", "CalibratedCX", "CalibratedCY",
    ///   "CalibratedK1" to "CalibratedK3", "CalibratedP1", "CalibratedP2", "CalibratedDate": in the units of
    ///   the camera's calibration; "GeographicWKT": CRS of the position; "CameraModel", "FileType",
    ///   "Orientation" and, of the image as it is stored, "StoredWidth", "StoredHeight", "Bands",
    ///   "BitsPerBand", "Photometric" (TIFF's code), "Overviews"; of a georeferenced TIFF file "PixelWidth"
    ///   and "PixelHeight" on the ground.
    /// They are looked for in XMP, under the same names in the vocabulary http://orvex.com/photo/1.0/, then
    /// in the vocabularies of cameras and drones, and in EXIF. An image that cannot be read has "SourceFile"
    /// and "Error", a sentence. Returns false if none could be read; `tree` then has their errors.
    static bool GetExifTagPTreeForImages(const std::vector<std::wstring>& paths,
                                         boost::property_tree::wptree& tree);
    /// Returns the preview that a JPEG or TIFF photo carries, as the bytes of a JPEG file of at most 1 MiB;
    /// empty if there is none or the file cannot be read. It is not decoded and can be damaged.
    static std::string GetExifThumbnail(const std::wstring& path);
};
