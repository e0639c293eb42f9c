#include "las/companion/QvrSource.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstring>
#include <limits>

#include "las/CompanionRecords.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/ByteReader.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

// A header and its records take some kilobytes; the offset to the points allows for 4 GiB.
constexpr std::uint64_t kMostHead = std::uint64_t{64} << 20U;

// More than any drive holds, and few enough for sizes of 64 bits, whatever the record length.
constexpr std::uint64_t kMostPoints = std::uint64_t{1} << 46U;

[[noreturn]] void FailToRead(const std::wstring& path, SystemError error) {
    throw LDataError(FormatText(Text(text::kLazCannotRead), {path, SystemErrorText(error)}));
}

void Require(const std::wstring& path, SystemError error) {
    if (error != 0) {
        FailToRead(path, error);
    }
}

bool IsKeptVlr(std::string_view userId, std::uint16_t recordId) {
    const bool isOwn =
        userId == kCompanionUserId && (recordId == kIndexRecordId || recordId == kThinnedRecordId);
    return !isOwn && userId != las::kCodecUserId && userId != las::kCopcUserId;
}

bool IsKeptEvlr(std::string_view userId, std::uint16_t recordId) {
    return userId != las::kCopcUserId && !(userId == las::kSpecUserId && recordId == las::kWaveformRecordId);
}

template <typename T>
void Put(std::span<std::byte> header, std::size_t offset, T value) {
    if (offset + sizeof(T) <= header.size()) {
        std::memcpy(header.subspan(offset, sizeof(T)).data(), &value, sizeof(T));
    }
}

/// The stored number of a coordinate, or the nearest that can be stored.
std::int32_t RawOf(double coordinate, double scale, double offset) {
    const double raw = std::round((coordinate - offset) / scale);
    constexpr double kLeast = std::numeric_limits<std::int32_t>::min();
    constexpr double kMost = std::numeric_limits<std::int32_t>::max();
    return std::isfinite(raw) ? static_cast<std::int32_t>(std::clamp(raw, kLeast, kMost)) : 0;
}

}  // namespace

QvrSource::QvrSource(const std::wstring& path) : path_(path) {
    Open();
    ReadHead();
    RequireSound();
    KeepVlrs();
    KeepEvlrs();
    if (!isCompressed_) {
        RequireAllPoints();
    }
}

void QvrSource::Open() {
    Require(path_, file_.Open(path_, true));
    Require(path_, file_.Size(size_));
    time_ = LastWriteTime(path_).value_or(FileTime{});
}

void QvrSource::ReadHead() {
    head_ = ReadBytes(0, las::kHeaderSize14);
    const ByteReader stored(head_);
    if (head_.size() < las::kLegacyHeaderSize ||
        stored.FixedText(las::at::kSignature, las::kSignature.size()) != las::kSignature) {
        throw LDataError(FormatText(Text(text::kLazNotLas), {path_}));
    }
    headerHash_ = QvrHeaderHash(head_);
    const auto offsetToPoints = stored.Read<std::uint32_t>(las::at::kOffsetToPoints);
    if (offsetToPoints > std::min(kMostHead, size_)) {
        throw LDataError(FormatText(Text(text::kLazHeaderDamaged), {path_}));
    }
    isCompressed_ = LasHeader(head_).IsCompressed();
    if (!isCompressed_) {
        head_ = ReadBytes(0, offsetToPoints);
        return;
    }
    std::string head;
    std::wstring reason;
    if (!OrvexUtilities::LAZReadHead(path_, head, reason)) {
        throw LDataError(reason);
    }
    const auto bytes = std::as_bytes(std::span(head));
    head_.assign(bytes.begin(), bytes.end());
}

void QvrSource::RequireSound() const {
    const ByteReader stored(head_);
    const auto format = stored.Read<std::uint8_t>(las::at::kPointFormat) & ~las::kCompressionBits;
    const auto length = stored.Read<std::uint16_t>(las::at::kPointRecordLength);
    const auto headerSize = stored.Read<std::uint16_t>(las::at::kHeaderSize);
    const las::PointFormatFacts* const facts = las::FindPointFormat(format);
    if (facts == nullptr || length < facts->minimumLength || headerSize < las::kLegacyHeaderSize ||
        headerSize > head_.size() || LasHeader(head_).PointCount() > kMostPoints) {
        throw LDataError(FormatText(Text(text::kLazHeaderDamaged), {path_}));
    }
}

// Sets what follows from the head, too: the header has been found sound.
void QvrSource::KeepVlrs() {
    headerBlock_ = head_;
    headerBlock_.resize(std::max<std::size_t>(head_.size(), las::kHeaderSize14));
    headerSize_ = Header().HeaderSize();
    headerBlock_.resize(std::max(headerSize_, las::kHeaderSize14));
    points_ = Header().PointCount();
    recordLength_ = Header().PointRecordLength();
    const ByteReader stored(head_);
    std::uint64_t offset = headerSize_;
    for (std::uint32_t left = Header().VlrCount(); left > 0; --left) {
        const auto length = stored.TryRead<std::uint16_t>(offset + las::record_at::kLength);
        const std::uint64_t bytes = las::kVlrHeaderSize + length.value_or(0);
        if (!length || !stored.Contains(offset, bytes)) {
            break;
        }
        if (IsKeptVlr(stored.FixedText(offset + las::record_at::kUserId, las::kUserIdLength),
                      stored.Read<std::uint16_t>(offset + las::record_at::kRecordId))) {
            const auto record = stored.Bytes(offset, bytes);
            vlrBytes_.insert(vlrBytes_.end(), record.begin(), record.end());
            ++vlrCount_;
        }
        offset += bytes;
    }
}

void QvrSource::KeepEvlrs() {
    if (Header().VersionCode() != las::kLas14 || Header().EvlrStart() == 0) {
        return;
    }
    std::uint64_t offset = Header().EvlrStart();
    for (std::uint32_t left = Header().EvlrCount(); left > 0; --left) {
        if (offset > size_ || size_ - offset < las::kEvlrHeaderSize || evlrs_.size() == kMostRecords) {
            return;
        }
        const std::vector<std::byte> bytes = ReadBytes(offset, las::kEvlrHeaderSize);
        const ByteReader stored(bytes);
        const auto length = stored.Read<std::uint64_t>(las::record_at::kLength);
        if (length > size_ - offset - las::kEvlrHeaderSize) {
            return;
        }
        if (IsKeptEvlr(stored.FixedText(las::record_at::kUserId, las::kUserIdLength),
                       stored.Read<std::uint16_t>(las::record_at::kRecordId))) {
            evlrs_.push_back({offset, las::kEvlrHeaderSize + length});
        }
        offset += las::kEvlrHeaderSize + length;
    }
}

void QvrSource::RequireAllPoints() const {
    const std::uint64_t start = Header().OffsetToPoints();
    const std::uint64_t there = (size_ - std::min(size_, start)) / recordLength_;
    if (there < points_) {
        throw LDataError(FormatText(Text(text::kQvrSourceTruncated),
                                    {path_, GroupedNumber(points_), GroupedNumber(there)}));
    }
}

std::pair<QvrPosition, QvrPosition> QvrSource::StatedExtent() const {
    const auto scale = Header().Scale();
    const auto offset = Header().Offset();
    const auto minimum = Header().Minimum();
    const auto maximum = Header().Maximum();
    std::pair<QvrPosition, QvrPosition> extent;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        extent.first[axis] = RawOf(minimum[axis], scale[axis], offset[axis]);
        extent.second[axis] = RawOf(maximum[axis], scale[axis], offset[axis]);
    }
    return extent;
}

void QvrSource::ReadPoints(std::uint64_t first, std::span<std::byte> records) const {
    ReadPiece(Header().OffsetToPoints() + first * recordLength_, records);
}

void QvrSource::ReadPiece(std::uint64_t offset, std::span<std::byte> bytes) const {
    std::size_t read = 0;
    Require(path_, file_.ReadAt(offset, bytes, read));
    if (read < bytes.size()) {
        throw LDataError(FormatText(Text(text::kQvrSourceChanged), {path_}));
    }
}

std::vector<std::byte> QvrSource::ReadBytes(std::uint64_t offset, std::uint64_t length) const {
    std::vector<std::byte> bytes(length);
    std::size_t read = 0;
    Require(path_, file_.ReadAt(offset, bytes, read));
    bytes.resize(read);
    return bytes;
}

void QvrSource::RequireUnchanged() const {
    if (FileSizeOf(path_) != size_ || LastWriteTime(path_) != time_) {
        throw LDataError(FormatText(Text(text::kQvrSourceChanged), {path_}));
    }
}

QvrIndex QvrSource::Index() const {
    QvrIndex index;
    index.sourceSize = size_;
    index.sourceTime = std::chrono::duration_cast<std::chrono::nanoseconds>(time_.time_since_epoch()).count();
    index.sourcePoints = points_;
    index.sourceHeaderHash = headerHash_;
    return index;
}

std::uint64_t QvrSource::KeptEvlrBytes() const {
    std::uint64_t bytes = 0;
    for (const Piece& piece : evlrs_) {
        bytes += piece.length;
    }
    return bytes;
}

std::vector<std::byte> QvrSource::CompanionHead(std::span<const std::byte> ownRecords,
                                                std::uint32_t ownCount) const {
    const std::uint64_t pointsAt = KeptHeadBytes() + ownRecords.size();
    std::vector<std::byte> head(head_.begin(), head_.begin() + headerSize_);
    const auto format = std::to_integer<std::uint8_t>(head[las::at::kPointFormat]);
    Put(head, las::at::kPointFormat, static_cast<std::uint8_t>(format & ~las::kCompressionBits));
    Put(head, las::at::kVlrCount, vlrCount_ + ownCount);
    Put(head, las::at::kOffsetToPoints, static_cast<std::uint32_t>(pointsAt));
    if (Header().VersionCode() >= las::kLas13) {
        const auto bits = static_cast<std::uint16_t>(las::encoding::kInternalWaveform);
        Put(head, las::at::kGlobalEncoding, static_cast<std::uint16_t>(Header().GlobalEncoding() & ~bits));
        Put(head, las::at::kWaveformStart, std::uint64_t{0});
    }
    if (Header().VersionCode() == las::kLas14) {
        const std::uint64_t end = pointsAt + points_ * recordLength_;
        Put(head, las::at::kEvlrStart, evlrs_.empty() ? std::uint64_t{0} : end);
        Put(head, las::at::kEvlrCount, static_cast<std::uint32_t>(evlrs_.size()));
    }
    head.insert(head.end(), vlrBytes_.begin(), vlrBytes_.end());
    head.insert(head.end(), ownRecords.begin(), ownRecords.end());
    return head;
}

}  // namespace orvex
