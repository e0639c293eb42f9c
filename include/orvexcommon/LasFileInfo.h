#pragma once
#include <array>
#include <cstdint>
#include <string>

namespace orvex {

/// Details of a LAS file that the dialog opened, for the host; the component's reader implements it. Holds
/// the file's header and records in memory. The owner of the pointer deletes it.
class LasFileInfo {
  public:
    virtual ~LasFileInfo() = default;

    /// Full path of the file as it was opened (a LAZ file opened read-write: its decompressed LAS file).
    virtual const std::wstring& FileName() const = 0;
    /// Version major * 10 + minor as printed in the header, for example 14.
    virtual int Version() const = 0;
    /// Point data record format, 0 to 10, without the compression bits.
    virtual int PointFormat() const = 0;
    virtual std::uint64_t GetPointCount() const = 0;
    virtual bool IsReadOnly() const = 0;
    /// Minimum of X, Y, Z in the units of the CRS, from the header.
    virtual std::array<double, 3> Minimum() const = 0;
    /// Maximum of X, Y, Z in the units of the CRS, from the header.
    virtual std::array<double, 3> Maximum() const = 0;
    /// CRS as WKT (UTF-8) from the file's WKT or GeoTIFF records; empty if it has none that is readable.
    virtual std::string CrsWkt() const = 0;
    /// 0 none, 2 ".qvr" beside the file, 3 index record in the file, 6 extended record 157.
    virtual int GetCompanionStatus() const = 0;
    /// True if the dialog found an error: the header disagrees with the file's contents, so that the points
    /// cannot all be read. Such a file is to be loaded only with AddFilesParams::lasLoadCorruptFiles.
    virtual bool IsDamaged() const = 0;
    /// Id of the file in the process-wide registry.
    virtual std::uint16_t RegisteredId() const = 0;
};

}  // namespace orvex
