#include "host/dem/LasWriter.h"

#include <algorithm>

#include "support/Format.h"
#include "support/LDataError.h"
#include "support/LasFormat.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::uint64_t kMostLegacyPoints = std::numeric_limits<std::uint32_t>::max();

void PutCounts(FieldBlock& header, const LasHeaderFields& fields) {
    // Extended formats, and more points than 32 bits count, leave the legacy counts at zero.
    if (fields.pointFormat < las::kFirstExtendedFormat && fields.points <= kMostLegacyPoints) {
        const auto count = static_cast<std::uint32_t>(fields.points);
        header.Put(las::at::kLegacyPointCount, count);
        header.Put(las::at::kLegacyPointsByReturn, count);
    }
    if (fields.minorVersion >= 4) {
        header.Put(las::at::kPointCount, fields.points);
        header.Put(las::at::kPointsByReturn, fields.points);
    }
}

void PutSpace(FieldBlock& header, const LasHeaderFields& fields) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
        header.Put(las::at::kScale + axis * 8, fields.scale[axis]);
        header.Put(las::at::kOffset + axis * 8, fields.offset[axis]);
        header.Put(las::at::kMaximum + axis * 16, fields.max[axis]);
        header.Put(las::at::kMinimum + axis * 16, fields.min[axis]);
    }
}

constexpr std::size_t kBufferBytes = std::size_t{1} << 20U;

}  // namespace

std::uint16_t LasHeaderSize(int minorVersion) {
    return las::kVersions.at(static_cast<std::size_t>(minorVersion)).headerSize;
}

std::string LasHeaderBytes(const LasHeaderFields& fields) {
    const std::uint16_t size = LasHeaderSize(fields.minorVersion);
    FieldBlock header(size);
    header.PutText(las::at::kSignature, las::kSignature.size(), las::kSignature);
    header.Put(las::at::kGlobalEncoding,
               static_cast<std::uint16_t>(fields.minorVersion >= 2 ? fields.globalEncoding : 0));
    header.Put(las::at::kVersionMajor, std::uint8_t{1});
    header.Put(las::at::kVersionMinor, static_cast<std::uint8_t>(fields.minorVersion));
    header.PutText(las::at::kSystemIdentifier, las::kHeaderTextLength, fields.systemIdentifier);
    header.PutText(las::at::kGeneratingSoftware, las::kHeaderTextLength, fields.generatingSoftware);
    header.Put(las::at::kCreationDay, fields.creationDay);
    header.Put(las::at::kCreationYear, fields.creationYear);
    header.Put(las::at::kHeaderSize, size);
    header.Put(las::at::kOffsetToPoints, fields.offsetToPoints);
    header.Put(las::at::kVlrCount, fields.recordCount);
    header.Put(las::at::kPointFormat, static_cast<std::uint8_t>(fields.pointFormat));
    header.Put(las::at::kPointRecordLength, fields.recordLength);
    PutCounts(header, fields);
    PutSpace(header, fields);
    return header.Take();
}

std::string LasRecordBytes(int minorVersion, std::string_view userId, std::uint16_t recordId,
                           std::string_view description, std::string_view data) {
    FieldBlock header(las::kVlrHeaderSize);
    header.Put(las::record_at::kReserved, minorVersion == 0 ? las::kVlrSignature10 : std::uint16_t{0});
    header.PutText(las::record_at::kUserId, las::kUserIdLength, userId);
    header.Put(las::record_at::kRecordId, recordId);
    header.Put(las::record_at::kLength, static_cast<std::uint16_t>(std::min(data.size(), las::kMostVlrData)));
    header.PutText(las::record_at::kVlrDescription, las::kDescriptionLength, description);
    return header.Take().append(data.substr(0, las::kMostVlrData));
}

std::string LasPointsMark(int minorVersion) {
    return minorVersion == 0 ? "\xCC\xDD" : "";
}

LasPointWriter::LasPointWriter(const std::wstring& path, const std::wstring& shownPath,
                               const std::string& front, const std::string& record)
    : shownPath_(shownPath), recordLength_(record.size()) {
    low_.fill(std::numeric_limits<std::int32_t>::max());
    high_.fill(std::numeric_limits<std::int32_t>::min());
    records_.reserve(kBufferBytes);
    for (std::size_t i = 0; i < kBufferBytes / recordLength_; ++i) {
        records_ += record;
    }
    ForgetStreamError();
    file_.open(ToPath(path), std::ios::binary | std::ios::trunc);
    if (!file_ || !file_.write(front.data(), static_cast<std::streamsize>(front.size()))) {
        Fail(LastStreamError());
    }
}

void LasPointWriter::Flush() {
    ForgetStreamError();
    if (!file_.write(records_.data(), static_cast<std::streamsize>(used_))) {
        Fail(LastStreamError());
    }
    flushed_ += used_ / recordLength_;
    used_ = 0;
}

void LasPointWriter::Finish(const std::string& front) {
    Flush();
    ForgetStreamError();
    file_.seekp(0);
    file_.write(front.data(), static_cast<std::streamsize>(front.size()));
    file_.close();
    if (!file_) {
        Fail(LastStreamError());
    }
}

void LasPointWriter::Fail(SystemError error) const {
    throw LDataError(FormatText(Text(text::kDemWriteFailed), {shownPath_, SystemErrorText(error)}));
}

}  // namespace orvex
