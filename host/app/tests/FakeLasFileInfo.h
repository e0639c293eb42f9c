#pragma once
#include <string>

#include "orvexcommon/LasFileInfo.h"

namespace orvex::testing {

/// Details of a file that does not exist. Counts how many are alive.
class FakeLasFileInfo final : public LasFileInfo {
  public:
    static inline int alive = 0;

    FakeLasFileInfo() { ++alive; }
    ~FakeLasFileInfo() override { --alive; }
    FakeLasFileInfo(const FakeLasFileInfo&) = delete;
    FakeLasFileInfo& operator=(const FakeLasFileInfo&) = delete;

    std::wstring name;
    std::string wkt;
    std::uint64_t points = 1000;
    std::array<double, 3> low{0, 0, 0};
    std::array<double, 3> high{10, 20, 30};
    bool readOnly = true;

    const std::wstring& FileName() const override { return name; }
    int Version() const override { return 14; }
    int PointFormat() const override { return 6; }
    std::uint64_t GetPointCount() const override { return points; }
    bool IsReadOnly() const override { return readOnly; }
    std::array<double, 3> Minimum() const override { return low; }
    std::array<double, 3> Maximum() const override { return high; }
    std::string CrsWkt() const override { return wkt; }
    int GetCompanionStatus() const override { return 0; }
    std::uint16_t RegisteredId() const override { return 1; }
};

}  // namespace orvex::testing
