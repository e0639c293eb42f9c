#include "las/LASFile.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <tuple>
#include <utility>

#include "las/FileIdRegistry.h"
#include "las/LasCrs.h"
#include "las/LasPointViews.h"
#include "las/companion/QvrBuilder.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/SourceWindow.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::size_t kMessageLimit = 515;

[[noreturn]] void ThrowOpenError(std::wstring_view format, const std::wstring& fileName,
                                 SystemError error = 0) {
    throw LDataError(FormatText(format, {fileName, error}, kMessageLimit));
}

const LasVlrsPtr& NoVlrs() {
    static const auto* const none = new LasVlrsPtr(std::make_shared<const LasVlrs>());
    return *none;
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

LASFile::LASFile(const std::wstring& fileName, bool readOnly)
    : fileName_(fileName), readOnly_(readOnly), vlrs_(NoVlrs()) {}
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
    SourceWindow start(file, las->fileSize_);
    las->isOnDisk_ = true;
    las->CopyHeader(start);
    las->ReadRecords(file, start);
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
        settings.replaceExisting = true;
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
    SourceWindow header(source, las->fileSize_, 0);
    las->CopyHeader(header);
    if (!las->header_.HasSignature()) {
        return las;  // no reason to fetch more of whatever it is
    }
    constexpr std::uint64_t kPart = 8192;  // such a source may give only so much
    SourceWindow records(source, std::min<std::uint64_t>(las->fileSize_, las->header_.OffsetToPoints()),
                         kPart);
    las->ReadRecords(source, records);
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
    fileSize_ = file.OpenedSize();
    modifiedMs_ = std::chrono::floor<std::chrono::milliseconds>(file.OpenedTime()).time_since_epoch().count();
    if (const SystemError error = file.CreateMapping()) {
        ThrowOpenError(L"CreateFileMapping failed on '%s'. GetLastError: %i.", fileName_, error);
    }
    return file;
}

// Fields that a truncated file lacks stay zero. Of one that is opened for writing, the whole header counts or
// the legacy one.
void LASFile::CopyHeader(SourceWindow& start) {
    const std::span<const std::byte> read = start.Bytes(0, las::kHeaderSize14);
    if (start.Error() != 0) {
        ThrowOpenError(Text(text::kLasHeaderReadFailed), fileName_);
    }
    if (read.size() < las::kLegacyHeaderSize) {
        ThrowOpenError(L"ReadHeaderBlock failed on '%s'.", fileName_);
    }
    // Half an offset is none.
    const bool isWhole = read.size() >= (readOnly_ ? las::kHeaderSize13 : las::kHeaderSize14);
    std::ranges::copy(isWhole ? read : read.first(las::kLegacyHeaderSize), headerCopy_.begin());
    header_ = LasHeader(headerCopy_);
}

void LASFile::ReadRecords(const ByteSource& file, SourceWindow& start) {
    ReadVlrList(start);
    ReadEvlrList(file);
}

void LASFile::ReadVlrList(SourceWindow& start) {
    SystemError error = 0;
    try {
        error = isOnDisk_ ? ReadSharedVlrs(start, header_, vlrs_) : ReadVlrs(start, header_, vlrs_);
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

void LASFile::Register() {
    std::tie(registeredId_, recordedName_) = FileIdRegistry::Instance().Enter(fileName_);
    if (recordedName_ != nullptr) {
        std::wstring().swap(fileName_);  // an assignment would keep the memory
    }
}

std::string LASFile::CrsWkt() const {
    const CrsPtr crs = ReadLasCrs(*this).crs;
    return crs ? crs->sourceWkt : std::string();
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
