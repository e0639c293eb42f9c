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
    KeepHeader();
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
    if (offsetToPoints > size_) {
        throw LDataError(FormatText(Text(text::kLazHeaderDamaged), {path_}));
    }
    isCompressed_ = LasHeader(head_).IsCompressed();
    if (!isCompressed_) {
        const std::uint64_t headerSize = stored.Read<std::uint16_t>(las::at::kHeaderSize);
        head_ = ReadBytes(0, std::min<std::uint64_t>(headerSize, offsetToPoints));
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

void QvrSource::KeepHeader() {
    headerBlock_ = head_;
    headerBlock_.resize(std::max<std::size_t>(head_.size(), las::kHeaderSize14));
    headerSize_ = Header().HeaderSize();
    headerBlock_.resize(std::max(headerSize_, las::kHeaderSize14));
    points_ = Header().PointCount();
    recordLength_ = Header().PointRecordLength();
}

void QvrSource::KeepVlrs() {
    const std::uint64_t end = isCompressed_ ? head_.size() : Header().OffsetToPoints();
    std::uint64_t offset = headerSize_;
    for (std::size_t left = std::min<std::size_t>(Header().VlrCount(), kMostRecords);
         left > 0 && end - offset >= las::kVlrHeaderSize; --left) {
        Piece vlr{offset, las::kVlrHeaderSize, isCompressed_};
        std::array<std::byte, las::kVlrHeaderSize> header{};
        ReadPiece(vlr, 0, header);
        const VlrView view(header, offset, true);
        if (view.RecordLength() > end - offset - las::kVlrHeaderSize) {
            return;
        }
        vlr.length += view.RecordLength();
        offset += vlr.length;
        if (view.RecordId() == las::kExtraBytesRecordId) {
            RequireReadable(vlr);
        }
        if (!IsKeptVlr(view.UserId(), view.RecordId())) {
            continue;
        }
        ++vlrCount_;
        if (!vlrs_.empty() && vlrs_.back().offset + vlrs_.back().length == vlr.offset) {
            vlrs_.back().length += vlr.length;
        } else {
            vlrs_.push_back(vlr);
        }
    }
}

// The companion has the same record, and nobody could open it.
void QvrSource::RequireReadable(const Piece& vlr) const {
    std::vector<std::byte> descriptors(vlr.length - las::kVlrHeaderSize);
    ReadPiece(vlr, las::kVlrHeaderSize, descriptors);
    try {
        ExtraBytes().Add(descriptors);
    } catch (const LDataError& error) {
        throw LDataError(path_ + L": " + error.Text());
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
            evlrs_.push_back({offset, las::kEvlrHeaderSize + length, false});
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
    ReadFile(Header().OffsetToPoints() + first * recordLength_, records);
}

void QvrSource::ReadPiece(const Piece& piece, std::uint64_t from, std::span<std::byte> bytes) const {
    if (piece.isInHead) {
        std::ranges::copy(std::span(head_).subspan(piece.offset + from, bytes.size()), bytes.begin());
    } else {
        ReadFile(piece.offset + from, bytes);
    }
}

void QvrSource::ReadFile(std::uint64_t offset, std::span<std::byte> bytes) const {
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

std::uint64_t QvrSource::BytesOf(const std::vector<Piece>& pieces) {
    std::uint64_t bytes = 0;
    for (const Piece& piece : pieces) {
        bytes += piece.length;
    }
    return bytes;
}

std::vector<std::byte> QvrSource::CompanionHeader(std::uint64_t ownBytes, std::uint32_t ownCount) const {
    const std::uint64_t pointsAt = KeptHeadBytes() + ownBytes;
    std::vector<std::byte> header(head_.begin(), head_.begin() + headerSize_);
    const auto format = std::to_integer<std::uint8_t>(header[las::at::kPointFormat]);
    Put(header, las::at::kPointFormat, static_cast<std::uint8_t>(format & ~las::kCompressionBits));
    Put(header, las::at::kVlrCount, vlrCount_ + ownCount);
    Put(header, las::at::kOffsetToPoints, static_cast<std::uint32_t>(pointsAt));
    if (Header().VersionCode() >= las::kLas13) {
        const auto bits = static_cast<std::uint16_t>(las::encoding::kInternalWaveform);
        Put(header, las::at::kGlobalEncoding, static_cast<std::uint16_t>(Header().GlobalEncoding() & ~bits));
        Put(header, las::at::kWaveformStart, std::uint64_t{0});
    }
    if (Header().VersionCode() == las::kLas14) {
        const std::uint64_t end = pointsAt + points_ * recordLength_;
        Put(header, las::at::kEvlrStart, evlrs_.empty() ? std::uint64_t{0} : end);
        Put(header, las::at::kEvlrCount, static_cast<std::uint32_t>(evlrs_.size()));
    }
    return header;
}

}  // namespace orvex
