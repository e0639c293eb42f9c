#pragma once
// One LAS file: its header, its records and, on request, its point data.
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "las/CompanionRecords.h"
#include "las/FileIdRegistry.h"
#include "las/LasHeader.h"
#include "las/LasRecords.h"
#include "orvexcommon/LasFileInfo.h"
#include "support/MappedFile.h"
#include "support/ModuleUse.h"
#include "support/ProgressIf.h"

namespace orvex {

class LasPointViews;

/// How a file is constructed. LASFile::Open builds no companion.
struct LasConstruction {
    bool readOnly = true;
    bool skipPointMapping = false;  ///< leave the point data unmapped, as for a list of files
    bool buildQvr = false;          ///< build the companion, unless the file has the EVLR of an index
    std::uint16_t factor = 10;      ///< thinning factor of the companion
};

/// Open LAS file. The members of LasFileInfo are described there. Header and records are copies, so that
/// nothing that happens to the file later can harm the process; without its point data an object keeps
/// neither descriptor nor mapping.
class LASFile final : public LasFileInfo {
  public:
    /// Opens a file; `skipPointMapping` leaves the point data unmapped, as for a list of files. Throws
    /// LDataError.
    static std::unique_ptr<LASFile> Open(const std::wstring& fileName, bool readOnly, bool skipPointMapping);
    /// The same; a companion is built as asked for, also in the place of an existing one. Of a file with a
    /// companion that was just built the points are not mapped; after a cancellation the file is opened
    /// without a new companion. Throws LDataError.
    static std::unique_ptr<LASFile> Construct(const std::wstring& fileName, const LasConstruction& options,
                                              Kst::ProgressIf& progress);
    /// Reads header and records, of a file without signature only the header. For a file that is not on a
    /// disk of this machine: none is looked for beside it, and it gets no id in the registry. `name`: for
    /// FileName() and messages. Throws LDataError.
    static std::unique_ptr<LASFile> Read(const ByteSource& source, const std::wstring& name);
    ~LASFile() override;

    const std::wstring& FileName() const override { return recordedName_ ? *recordedName_ : fileName_; }
    int Version() const override { return header_.Version(); }
    int PointFormat() const override { return header_.PointFormat(); }
    std::uint64_t GetPointCount() const override { return header_.PointCount(); }
    bool IsReadOnly() const override { return readOnly_; }
    std::array<double, 3> Minimum() const override { return header_.Minimum(); }
    std::array<double, 3> Maximum() const override { return header_.Maximum(); }
    std::string CrsWkt() const override;
    int GetCompanionStatus() const override { return static_cast<int>(companionStatus_); }
    bool IsDamaged() const override { return isDamaged_; }
    void SetDamaged(bool isDamaged) { isDamaged_ = isDamaged; }
    std::uint16_t RegisteredId() const override { return registeredId_; }

    /// A las::VersionCode.
    int GetVersionCode() const { return header_.VersionCode(); }
    const LasHeader& Header() const { return header_; }
    std::uint64_t FileSize() const { return fileSize_; }
    /// When the file was last changed before it was opened, milliseconds since 1970-01-01 UTC; 0 if not
    /// known.
    std::int64_t ModifiedMs() const { return modifiedMs_; }

    /// Records in file order; valid as long as the file.
    const std::vector<VlrView>& GetVLRs() const { return vlrs_->list.records; }
    const std::vector<EvlrEntry>& GetEVLRs() const { return evlrs_; }

    /// False for a file made by Read.
    bool IsOnDisk() const { return isOnDisk_; }
    /// True if the source gave no more before the last VLR or EVLR was read.
    bool HasUnreadRecords() const { return hasUnreadRecords_; }

    bool HasProjectionRecords() const;
    /// Data of the first "LASF_Projection" record of an id, from the VLRs, else the EVLRs; nullopt if there
    /// is none.
    std::optional<std::span<const std::byte>> FindProjectionRecord(std::uint16_t recordId) const;
    /// The same for the GeoKey directory and for the WKT record.
    std::optional<std::span<const std::byte>> FindGeoKeyDirectory() const;
    std::optional<std::span<const std::byte>> FindWKT() const;

    const ExtraBytes& GetExtraBytes() const { return vlrs_->extraBytes; }
    /// True if the extra bytes hold range, incidence vector and photo index.
    bool HasRangeIncidencePhotoIndex() const { return vlrs_->hasRangeIncidencePhotoIndex; }

    /// Point data; null if it was not asked for, the points are compressed, or the point record length is 0.
    const LasPointViews* Points() const { return points_.get(); }

  private:
    LASFile(const std::wstring& fileName, bool readOnly);
    MappedFile OpenFile();
    void CopyHeader(SourceWindow& start);
    void ReadRecords(const ByteSource& file, SourceWindow& start);
    void ReadVlrList(SourceWindow& start);
    void ReadEvlrList(const ByteSource& file);
    void Register();
    bool BuildCompanion(const std::wstring& fileName, const LasConstruction& options,
                        Kst::ProgressIf& progress);

    ModuleUse use_;                               // the host may hold the object after the call
    std::wstring fileName_;                       // empty once the registry has the name
    const std::wstring* recordedName_ = nullptr;  // the registry's copy
    bool readOnly_;
    bool isOnDisk_ = false;
    bool hasUnreadRecords_ = false;
    bool isDamaged_ = false;  // set by who has examined the file
    std::uint16_t registeredId_ = FileIdRegistry::kAny;
    CompanionStatus companionStatus_ = CompanionStatus::None;
    std::uint64_t fileSize_ = 0;
    std::int64_t modifiedMs_ = 0;
    std::array<std::byte, las::kHeaderSize14> headerCopy_{};
    LasHeader header_;
    LasVlrsPtr vlrs_;  // never null
    std::vector<EvlrEntry> evlrs_;
    std::unique_ptr<LasPointViews> points_;
};

}  // namespace orvex
