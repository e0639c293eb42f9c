#include "las/LASFile.h"

#include <algorithm>
#include <exception>
#include <utility>

#include "las/FileIdRegistry.h"
#include "las/LasCrs.h"
#include "las/LasPointViews.h"
#include "las/companion/QvrBuilder.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::size_t kMessageLimit = 515;

[[noreturn]] void ThrowOpenError(std::wstring_view format, const std::wstring& fileName,
                                 SystemError error = 0) {
    throw LDataError(FormatText(format, {fileName, error}, kMessageLimit));
}

template <typename Records>
std::optional<std::span<const std::byte>> FindProjectionIn(const Records& records, std::uint16_t recordId) {
    const auto found = std::ranges::find_if(
        records, [&](const auto& record) { return record.Is(las::kProjectionUserId, recordId); });
    return found == records.end() ? std::nullopt : std::optional(found->Data());
}

template <typename Records>
bool HasProjectionIn(const Records& records) {
    return std::ranges::any_of(records,
                               [](const auto& record) { return record.UserId() == las::kProjectionUserId; });
}

}  // namespace

LASFile::LASFile(const std::wstring& fileName, bool readOnly) : fileName_(fileName), readOnly_(readOnly) {}
LASFile::~LASFile() = default;

std::unique_ptr<LASFile> LASFile::Open(const std::wstring& fileName, bool readOnly, bool skipPointMapping) {
    Kst::NullProgress none;
    LasConstruction options;
    options.readOnly = readOnly;
    options.skipPointMapping = skipPointMapping;
    return Construct(fileName, options, none);
}

std::unique_ptr<LASFile> LASFile::Construct(const std::wstring& fileName, const LasConstruction& options,
                                            Kst::ProgressIf& progress) {
    std::unique_ptr<LASFile> las(new LASFile(fileName, options.readOnly));
    MappedFile file = las->OpenFile();
    las->CopyHeader(file);
    las->ReadRecords(file);
    las->isOnDisk_ = true;
    las->Register();
    las->companionStatus_ = FindCompanionStatus(fileName, las->GetVLRs(), las->evlrs_);
    if (las->BuildCompanion(fileName, options, progress)) {
        las->companionStatus_ = CompanionStatus::QvrFile;
    } else if (!options.skipPointMapping) {
        las->points_ = LasPointViews::Create(std::move(file), las->header_, options.readOnly);
    }
    return las;
}

/// True if a companion was asked for and built.
bool LASFile::BuildCompanion(const std::wstring& fileName, const LasConstruction& options,
                             Kst::ProgressIf& progress) {
    if (!options.buildQvr || companionStatus_ == CompanionStatus::ExtendedRecord) {
        return false;
    }
    try {
        QvrSettings settings;
        settings.factor = options.factor;
        return BuildQvr(PlanQvr(fileName, settings), settings, progress);
    } catch (...) {
        throw LDataError(FormatText(
            L"Failed to create qvr file for %s. Please try increasing thinning factor. \nReason: %s",
            {fileName, CurrentExceptionText()}));
    }
}

std::unique_ptr<LASFile> LASFile::Read(const ByteSource& source, const std::wstring& name) {
    std::unique_ptr<LASFile> las(new LASFile(name, true));
    if (source.Size(las->fileSize_) != 0) {
        ThrowOpenError(Text(text::kLasHeaderReadFailed), name);
    }
    las->CopyHeader(source);
    if (!las->header_.HasSignature()) {
        return las;  // no reason to fetch more of whatever it is
    }
    las->ReadRecords(source);
    las->companionStatus_ = FindCompanionRecord(las->GetVLRs(), las->evlrs_);
    return las;
}

MappedFile LASFile::OpenFile() {
    MappedFile file;
    if (const SystemError error = file.Open(fileName_, readOnly_)) {
        // Checked only now: of thousands of files nearly all exist.
        const FileKind kind = KindOf(fileName_);
        if (kind == FileKind::Missing) {
            ThrowOpenError(L"'%s' file does not exist. Cannot open.", fileName_);
        }
        if (kind == FileKind::Folder || kind == FileKind::Other) {
            ThrowOpenError(Text(text::kLasNotRegularFile), fileName_);
        }
        ThrowOpenError(L"CreateFile failed on '%s'. GetLastError: %i.", fileName_, error);
    }
    SystemError error = file.Size(fileSize_);
    if (error == 0) {
        error = file.CreateMapping();
    }
    if (error != 0) {
        ThrowOpenError(L"CreateFileMapping failed on '%s'. GetLastError: %i.", fileName_, error);
    }
    return file;
}

// Fields that a truncated file lacks stay zero. Of one that is opened for writing, the whole header counts or
// the legacy one.
void LASFile::CopyHeader(const ByteSource& file) {
    headerCopy_ = std::make_unique<std::byte[]>(las::kHeaderSize14);
    const std::span<std::byte> block(headerCopy_.get(), las::kHeaderSize14);
    std::size_t read = 0;
    if (file.ReadAt(0, block, read) != 0) {
        ThrowOpenError(Text(text::kLasHeaderReadFailed), fileName_);
    }
    if (read < las::kLegacyHeaderSize) {
        ThrowOpenError(L"ReadHeaderBlock failed on '%s'.", fileName_);
    }
    if (read < (readOnly_ ? las::kHeaderSize13 : las::kHeaderSize14)) {
        // Half an offset is none.
        std::ranges::fill(block.subspan(las::kLegacyHeaderSize), std::byte{0});
    }
    header_ = LasHeader(block);
}

void LASFile::ReadRecords(const ByteSource& file) {
    ReadVlrList(file);
    ReadExtraBytes();
    ReadEvlrList(file);
}

void LASFile::ReadVlrList(const ByteSource& file) {
    SystemError error = 0;
    try {
        error = ReadVlrs(file, header_, vlrs_);
    } catch (const std::bad_alloc&) {
        ThrowOpenError(Text(text::kVlrReadFailed), fileName_);
    }
    hasUnreadRecords_ = error == ByteSource::kNoMoreReads;
    if (error != 0 && !hasUnreadRecords_) {
        ThrowOpenError(Text(text::kVlrReadFailed), fileName_, error);
    }
}

void LASFile::ReadEvlrList(const ByteSource& file) {
    if (header_.VersionCode() != las::kLas14 || header_.EvlrStart() == 0) {
        return;
    }
    evlrs_ = ReadEvlrs(file, header_.EvlrStart(), header_.EvlrCount(), !readOnly_);
    const std::size_t wanted = std::min<std::size_t>(header_.EvlrCount(), kMostRecords);
    hasUnreadRecords_ = hasUnreadRecords_ || evlrs_.size() < wanted;
}

// Programs write this record under user ids of their own as well, so only its record id counts.
void LASFile::ReadExtraBytes() {
    for (const VlrView& vlr : GetVLRs()) {
        if (vlr.RecordId() != las::kExtraBytesRecordId) {
            continue;
        }
        if (vlr.UserId() == las::kSpecUserId &&
            vlr.Description().substr(0, 31) == "Xtra:range/incidentVec/photoNdx") {
            hasRangeIncidencePhotoIndex_ = true;
        }
        extraBytes_.Add(vlr.Data());
    }
}

void LASFile::Register() {
    FileIdRegistry& registry = FileIdRegistry::Instance();
    registeredId_ = registry.FileId(fileName_, FileIdRegistry::kAny);
    recordedName_ = registry.RecordedName(fileName_);
    if (recordedName_) {
        std::wstring().swap(fileName_);  // an assignment would keep the memory
    }
}

std::string LASFile::CrsWkt() const {
    return ReadLasCrs(*this).wkt;
}

bool LASFile::HasProjectionRecords() const {
    return HasProjectionIn(GetVLRs()) || HasProjectionIn(evlrs_);
}

std::optional<std::span<const std::byte>> LASFile::FindProjectionRecord(std::uint16_t recordId) const {
    const auto data = FindProjectionIn(GetVLRs(), recordId);
    return data ? data : FindProjectionIn(evlrs_, recordId);
}

std::optional<std::span<const std::byte>> LASFile::FindGeoKeyDirectory() const {
    return FindProjectionRecord(las::kGeoKeyDirectoryRecordId);
}

std::optional<std::span<const std::byte>> LASFile::FindWKT() const {
    return FindProjectionRecord(las::kWktRecordId);
}

}  // namespace orvex
