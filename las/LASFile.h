#pragma once
// One LAS file: its header, its records and, when asked, its point data.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "las/ExtraBytes.h"
#include "las/LasHeader.h"
#include "las/LasRecords.h"
#include "orvexcommon/LasFileInfo.h"
#include "support/MappedFile.h"

namespace orvex {

class LasPointViews;

/// Opened LAS file. Throws LDataError on every failure; the texts name the file. Between calls a file opened
/// read-only without its point data keeps no descriptor.
class LASFile final : public LasFileInfo {
  public:
    /// Opens a file; `skipPointMapping` leaves the point data unmapped (what a list of files wants).
    static std::unique_ptr<LASFile> Open(const std::wstring& fileName, bool readOnly, bool skipPointMapping);
    ~LASFile() override;

    // LasFileInfo.
    const std::wstring& FileName() const override;
    int Version() const override;
    int PointFormat() const override;
    std::uint64_t GetPointCount() const override;
    bool IsReadOnly() const override;
    std::array<double, 3> Minimum() const override;
    std::array<double, 3> Maximum() const override;
    std::string CrsWkt() const override;
    int GetCompanionStatus() const override;
    std::uint16_t RegisteredId() const override;

    /// 1.0 gives 0, 1.1 gives 1, 2.0 gives 2, 1.2 gives 3, 1.3 gives 4, 1.4 gives 5, anything else -1.
    int GetVersionCode() const;
    const LasHeader& Header() const;
    std::uint64_t FileSize() const;

    /// The records in file order. The views live as long as the file.
    const std::vector<VlrView>& GetVLRs() const;
    const std::vector<EvlrEntry>& GetEVLRs() const;

    bool HasProjectionRecords() const;
    /// The data of the first "LASF_Projection" record of an id, from the VLRs, else the EVLRs, or none.
    std::optional<std::span<const std::byte>> FindProjectionRecord(std::uint16_t recordId) const;
    /// The data of the "LASF_Projection" record 34735, or none.
    std::optional<std::span<const std::byte>> FindGeoKeyDirectory() const;
    /// The data of the "LASF_Projection" record 2112, from the VLRs, else the EVLRs, or none.
    std::optional<std::span<const std::byte>> FindWKT() const;

    const ExtraBytes& GetExtraBytes() const;
    bool HasRangeIncidencePhotoIndex() const;

    /// The point data; null when it was not mapped: that was not asked for, the points are compressed, or the
    /// point record length is 0.
    const LasPointViews* Points() const;

  private:
    LASFile();
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace orvex
