#include "las/LASFile.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "las/CompanionStatus.h"
#include "las/EvlrReader.h"
#include "las/FileIdRegistry.h"
#include "las/HeaderBlock.h"
#include "las/LasCrs.h"
#include "las/LasPointViews.h"
#include "las/VlrArea.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/ModuleUse.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::size_t kMessageLimit = 515;
constexpr std::uint16_t kExtraBytesRecordId = 4;
constexpr int kVersionCode14 = 5;

[[noreturn]] void ThrowOpenError(std::wstring_view format, const std::wstring& fileName,
                                 SystemError error = 0) {
    throw LDataError(FormatText(format, {fileName, error}, kMessageLimit));
}

template <typename Records>
auto FindProjectionIn(const Records& records, std::uint16_t recordId) {
    return std::ranges::find_if(records,
                                [&](const auto& record) { return record.Is(kProjectionUserId, recordId); });
}

template <typename Records>
bool HoldsProjectionRecord(const Records& records) {
    return std::ranges::any_of(records,
                               [](const auto& record) { return record.UserId() == kProjectionUserId; });
}

}  // namespace

struct LASFile::State {
    ModuleUse use;                               // the host may hold the object after the call
    std::wstring fileName;                       // until the registry has it
    const std::wstring* recordedName = nullptr;  // the registry's copy
    bool readOnly = true;
    std::uint64_t fileSize = 0;
    std::uint16_t registeredId = FileIdRegistry::kAny;
    bool hasRangeIncidencePhotoIndex = false;
    CompanionStatus companionStatus = CompanionStatus::None;
    HeaderBlock headerBlock;
    LasHeader header;
    VlrArea vlrArea;
    std::vector<VlrView> vlrs;
    std::vector<EvlrEntry> evlrs;
    ExtraBytes extraBytes;
    std::unique_ptr<LasPointViews> points;

    const std::wstring& FileName() const { return recordedName ? *recordedName : fileName; }
    void Register();
    MappedFile OpenFile();
    void ReadHeader(const MappedFile& file);
    void ReadRecords(const MappedFile& file);
    void ShareHeaderMapping();
    void ReadExtraBytes();
    std::optional<std::span<const std::byte>> FindProjection(std::uint16_t recordId) const;
};

void LASFile::State::Register() {
    FileIdRegistry& registry = FileIdRegistry::Instance();
    registeredId = registry.FileId(fileName, FileIdRegistry::kAny);
    recordedName = registry.RecordedName(fileName);
    if (recordedName) {
        std::wstring().swap(fileName);  // an assignment would keep the memory
    }
}

MappedFile LASFile::State::OpenFile() {
    MappedFile file;
    if (const SystemError error = file.Open(fileName, readOnly)) {
        // Asked afterwards: of thousands of files nearly every one exists.
        if (!FileExists(fileName)) {
            ThrowOpenError(L"'%s' file does not exist. Cannot open.", fileName);
        }
        ThrowOpenError(L"CreateFile failed on '%s'. GetLastError: %i.", fileName, error);
    }
    SystemError error = file.Size(fileSize);
    if (error == 0) {
        error = file.CreateMapping();
    }
    if (error != 0) {
        ThrowOpenError(L"CreateFileMapping failed on '%s'. GetLastError: %i.", fileName, error);
    }
    return file;
}

void LASFile::State::ReadHeader(const MappedFile& file) {
    const auto readBytes = [&file](std::uint64_t offset, std::span<std::byte> buffer, std::size_t& read) {
        return file.ReadAt(offset, buffer, read);
    };
    switch (readOnly ? headerBlock.Copy(readBytes) : headerBlock.Map(file)) {
        case HeaderBlock::Outcome::Ready:
            break;
        case HeaderBlock::Outcome::TooShort:
            ThrowOpenError(L"ReadHeaderBlock failed on '%s'.", fileName);
        case HeaderBlock::Outcome::Failed:
            ThrowOpenError(Text(794_lsid), fileName);
    }
    header = headerBlock.Header();
}

void LASFile::State::ReadRecords(const MappedFile& file) {
    SystemError error = 0;
    try {
        error = vlrArea.Load(file, fileSize, header.OffsetToPoints(), readOnly);
    } catch (const std::bad_alloc&) {
        ThrowOpenError(Text(792_lsid), fileName);
    }
    if (error != 0) {
        ThrowOpenError(Text(792_lsid), fileName, error);
    }
    ShareHeaderMapping();
    vlrs = WalkVlrs(vlrArea.Bytes(), header);
    ReadExtraBytes();
    if (header.VersionCode() == kVersionCode14) {
        evlrs = EvlrReader(file, !readOnly).Read(header.EvlrStart(), header.EvlrCount());
    }
}

// The mapped VLR area begins with the header. A process can have some 65,000 mappings, and a list tens of
// thousands of files: the header's own is given up.
void LASFile::State::ShareHeaderMapping() {
    if (!readOnly && vlrArea.Bytes().size() >= LasHeader::kSize) {
        header = LasHeader(vlrArea.Bytes().first(LasHeader::kSize));
        headerBlock = {};
    }
}

// Programs write this record under user ids of their own as well, so that its record id alone decides.
void LASFile::State::ReadExtraBytes() {
    for (const VlrView& vlr : vlrs) {
        if (vlr.RecordId() != kExtraBytesRecordId) {
            continue;
        }
        if (vlr.UserId() == "LASF_Spec" &&
            vlr.Description().substr(0, 31) == "Xtra:range/incidentVec/photoNdx") {
            hasRangeIncidencePhotoIndex = true;
        }
        extraBytes.GetExtraByteOffsets(vlr.Data());
    }
}

std::optional<std::span<const std::byte>> LASFile::State::FindProjection(std::uint16_t recordId) const {
    if (const auto vlr = FindProjectionIn(vlrs, recordId); vlr != vlrs.end()) {
        return vlr->Data();
    }
    if (const auto evlr = FindProjectionIn(evlrs, recordId); evlr != evlrs.end()) {
        return evlr->Data();
    }
    return std::nullopt;
}

LASFile::LASFile() : state_(std::make_unique<State>()) {}
LASFile::~LASFile() = default;

std::unique_ptr<LASFile> LASFile::Open(const std::wstring& fileName, bool readOnly, bool skipPointMapping) {
    std::unique_ptr<LASFile> las(new LASFile);
    State& state = *las->state_;
    state.fileName = fileName;
    state.readOnly = readOnly;
    MappedFile file = state.OpenFile();
    state.ReadHeader(file);
    state.ReadRecords(file);
    state.Register();
    state.companionStatus = FindCompanionStatus(fileName, state.vlrs, state.evlrs);
    if (!skipPointMapping) {
        state.points = LasPointViews::Create(std::move(file), state.header, readOnly);
    }
    return las;
}

const std::wstring& LASFile::FileName() const {
    return state_->FileName();
}

int LASFile::Version() const {
    return state_->header.Version();
}

int LASFile::PointFormat() const {
    return state_->header.PointFormat();
}

std::uint64_t LASFile::GetPointCount() const {
    return state_->header.PointCount();
}

bool LASFile::IsReadOnly() const {
    return state_->readOnly;
}

std::array<double, 3> LASFile::Minimum() const {
    return state_->header.Minimum();
}

std::array<double, 3> LASFile::Maximum() const {
    return state_->header.Maximum();
}

std::string LASFile::CrsWkt() const {
    return ReadLasCrs(*this).wkt;
}

int LASFile::GetCompanionStatus() const {
    return static_cast<int>(state_->companionStatus);
}

std::uint16_t LASFile::RegisteredId() const {
    return state_->registeredId;
}

int LASFile::GetVersionCode() const {
    return state_->header.VersionCode();
}

const LasHeader& LASFile::Header() const {
    return state_->header;
}

std::uint64_t LASFile::FileSize() const {
    return state_->fileSize;
}

const std::vector<VlrView>& LASFile::GetVLRs() const {
    return state_->vlrs;
}

const std::vector<EvlrEntry>& LASFile::GetEVLRs() const {
    return state_->evlrs;
}

bool LASFile::HasProjectionRecords() const {
    return HoldsProjectionRecord(state_->vlrs) || HoldsProjectionRecord(state_->evlrs);
}

std::optional<std::span<const std::byte>> LASFile::FindProjectionRecord(std::uint16_t recordId) const {
    return state_->FindProjection(recordId);
}

std::optional<std::span<const std::byte>> LASFile::FindGeoKeyDirectory() const {
    return state_->FindProjection(kGeoKeyDirectoryRecordId);
}

std::optional<std::span<const std::byte>> LASFile::FindWKT() const {
    return state_->FindProjection(kWktRecordId);
}

const ExtraBytes& LASFile::GetExtraBytes() const {
    return state_->extraBytes;
}

bool LASFile::HasRangeIncidencePhotoIndex() const {
    return state_->hasRangeIncidencePhotoIndex;
}

const LasPointViews* LASFile::Points() const {
    return state_->points.get();
}

}  // namespace orvex
