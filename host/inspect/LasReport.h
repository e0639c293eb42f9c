#pragma once
#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace orvex {

struct FileReport;

struct LasRecordReport {
    std::string userId;  ///< as the file has it, which need not be UTF-8
    unsigned recordId = 0;
    std::uint64_t length = 0;  ///< bytes after the record's header
    std::string description;
};

struct LasExtraBytesReport {
    std::wstring name;
    std::uint64_t offset = 0;  ///< byte within a point's extra bytes
    std::uint64_t size = 0;    ///< bytes
};

/// The facts of a LAS header and its records.
struct LasReport {
    std::string version;  ///< "1.4"
    int versionCode = -1;
    int pointFormat = 0;
    bool compressed = false;
    unsigned headerSize = 0;
    std::uint64_t offsetToPoints = 0;
    unsigned pointRecordLength = 0;
    std::uint64_t pointCount = 0;
    std::array<double, 3> scale{};
    std::array<double, 3> offset{};
    std::array<double, 3> min{};
    std::array<double, 3> max{};
    unsigned globalEncoding = 0;
    std::wstring gpsTime;
    std::vector<LasRecordReport> vlrs;
    std::vector<LasRecordReport> evlrs;
    std::vector<LasExtraBytesReport> extraBytes;
    int companionStatus = 0;
    std::wstring vlrText;
};

/// Reads `report.path` as a LAS or LAZ file.
void InspectLas(FileReport& report);

}  // namespace orvex
