#pragma once
#include <array>
#include <string>

#include "host/app/RecordFiles.h"
#include "orvexcommon/AddFilesParams.h"
#include "orvexcommon/LasFileInfo.h"
#include "orvexcommon/RasterFileInfo.h"

namespace orvex::testing {

inline constexpr const char* kUtm =
    "PROJCS[\"UTM 32\",GEOGCS[\"E\",DATUM[\"E\",SPHEROID[\"G\",6378137,298.25]],"
    "PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]],"
    "PROJECTION[\"Transverse_Mercator\"],PARAMETER[\"central_meridian\",9],UNIT[\"metre\",1]]";
inline constexpr const char* kDegrees =
    "GEOGCS[\"WGS 84\",DATUM[\"WGS_1984\",SPHEROID[\"WGS 84\",6378137,298.257223563]],"
    "PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]]";

struct FakeLasFileInfo final : LasFileInfo {
    std::wstring name;
    std::string wkt;
    std::array<double, 3> low{0, 0, 0};
    std::array<double, 3> high{10, 20, 30};
    bool readOnly = true;
    bool damaged = false;

    const std::wstring& FileName() const override { return name; }
    int Version() const override { return 14; }
    int PointFormat() const override { return 6; }
    std::uint64_t GetPointCount() const override { return 1000; }
    bool IsReadOnly() const override { return readOnly; }
    std::array<double, 3> Minimum() const override { return low; }
    std::array<double, 3> Maximum() const override { return high; }
    std::string CrsWkt() const override { return wkt; }
    int GetCompanionStatus() const override { return 0; }
    bool IsDamaged() const override { return damaged; }
    std::uint16_t RegisteredId() const override { return 1; }
};

struct FakeRasterFileInfo final : RasterFileInfo {
    std::wstring name;
    RasterProperties properties;

    const std::wstring& FileName() const override { return name; }
    const RasterProperties& Properties() const override { return properties; }
    bool IsBigTiff() const override { return false; }
};

/// A record that deletes its details.
struct Record : AddFilesParams {
    ~Record() { DeleteDetails(*this); }

    FakeLasFileInfo& AddFile(const std::wstring& folder, const std::wstring& name, const std::wstring& layer,
                             const std::string& wkt = kUtm) {
        auto* info = new FakeLasFileInfo;
        info->name = JoinPath(folder, name);
        info->wkt = wkt;
        lasFiles[folder].push_back(name);
        lasFileDetails[info->name] = info;
        lasFileLayers[info->name] = layer;
        return *info;
    }
    FakeRasterFileInfo& AddRaster(const std::wstring& folder, const std::wstring& name,
                                  const std::wstring& layer) {
        auto* info = new FakeRasterFileInfo;
        info->name = JoinPath(folder, name);
        rasterFiles[folder].push_back(name);
        rasterFileDetails[info->name] = info;
        rasterFileLayers[info->name] = layer;
        return *info;
    }
};

}  // namespace orvex::testing
