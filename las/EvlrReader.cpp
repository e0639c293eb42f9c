#include "las/EvlrReader.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <utility>

#include "las/VlrArea.h"
#include "support/Format.h"
#include "support/LDataError.h"

namespace orvex {
namespace {

constexpr std::string_view kOwnUserId = "Kst";
constexpr std::size_t kSeekMessageLimit = 1024;
// Positions in a file are signed 64-bit numbers.
constexpr std::uint64_t kLastPosition = std::numeric_limits<std::int64_t>::max();

[[noreturn]] void ThrowSystemError() {
    throw LDataError(L"Unable to read EVLRs. System Error");
}

[[noreturn]] void ThrowDataError() {
    throw LDataError(L"Failed to read EVLR record data section of LAS file into memory.");
}

void RequirePosition(std::uint64_t start, std::uint64_t fileSize) {
    if (start > kLastPosition) {
        throw LDataError(FormatText(
            L"Moving file pointer to the eVlr offset failed. Unable to populate the evlr list. "
            L"evlrOffset (%I64d) | filesize (%I64d).",
            {static_cast<std::int64_t>(start), static_cast<std::int64_t>(fileSize)}, kSeekMessageLimit));
    }
}

bool KeepsData(const EvlrEntry& entry) {
    const std::string userId = entry.UserId();
    return userId == kProjectionUserId || userId == kOwnUserId;
}

}  // namespace

std::vector<EvlrEntry> EvlrReader::Read(std::uint64_t start, std::uint32_t count) {
    if (start == 0 || count == 0) {
        return {};
    }
    try {
        return ReadAll(start, count);
    } catch (const LDataError&) {
        throw;
    } catch (const std::exception&) {
        ThrowSystemError();
    }
}

std::vector<EvlrEntry> EvlrReader::ReadAll(std::uint64_t start, std::uint32_t count) {
    if (file_.Size(fileSize_) != 0) {
        ThrowSystemError();
    }
    RequirePosition(start, fileSize_);
    const std::uint64_t room = start < fileSize_ ? (fileSize_ - start) / EvlrEntry::kHeaderSize : 0;
    const std::uint64_t most = std::min<std::uint64_t>(count, kMostRecords);
    std::vector<EvlrEntry> entries;
    entries.reserve(std::min(most, room));
    std::uint64_t position = start;
    while (entries.size() < most) {
        EvlrEntry& entry = entries.emplace_back(ReadHeader(position));
        const std::uint64_t dataPosition = position + EvlrEntry::kHeaderSize;
        if (KeepsData(entry)) {
            ReadData(entry, dataPosition);
        }
        position = NextPosition(entry, dataPosition);
    }
    return entries;
}

EvlrEntry EvlrReader::ReadHeader(std::uint64_t position) const {
    EvlrEntry::HeaderBytes header{};
    std::size_t read = 0;
    if (position > fileSize_ || file_.ReadAt(position, header, read) != 0 || read < header.size()) {
        throw LDataError(L"Failed to read EVLR header section of LAS file into memory.");
    }
    EvlrEntry entry(header, position, false);
    const std::uint64_t rest = fileSize_ - std::min(fileSize_, position + header.size());
    return entry.RecordLength() > rest ? EvlrEntry(header, position, true) : std::move(entry);
}

void EvlrReader::ReadData(EvlrEntry& entry, std::uint64_t position) {
    if (entry.IsTruncated() && !mapData_) {
        ThrowDataError();
    }
    const std::uint64_t length = std::min(entry.RecordLength(), fileSize_ - std::min(fileSize_, position));
    if (length == 0 || (!mapData_ && length <= kLargestCopy - copied_)) {
        std::vector<std::byte> copy(length);
        std::size_t read = 0;
        if (length > 0 && (file_.ReadAt(position, copy, read) != 0 || read < length)) {
            ThrowDataError();
        }
        copied_ += length;
        entry.SetData(std::move(copy));
        return;
    }
    MappedView view;
    if (file_.Map(position, length, false, view) != 0) {
        ThrowDataError();
    }
    entry.SetData(std::move(view));
}

std::uint64_t EvlrReader::NextPosition(const EvlrEntry& entry, std::uint64_t dataPosition) const {
    if (entry.RecordLength() <= kLastPosition - dataPosition) {
        return dataPosition + entry.RecordLength();
    }
    if (!entry.HasData()) {
        throw LDataError(L"Setting file pointer failed when skipping record data for evlr.");
    }
    return kLastPosition;
}

}  // namespace orvex
