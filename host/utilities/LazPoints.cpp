#include "host/utilities/LazPoints.h"

#include <laszip/laszip_api.h>

#include <algorithm>
#include <sstream>
#include <streambuf>
#include <vector>

#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/LasFormat.h"
#include "support/Text.h"

namespace orvex {
namespace {

// More points than any drive holds; the codec counts with signed numbers.
constexpr std::uint64_t kMaxPoints = std::uint64_t{1} << 62;

/// LAS 1.4 has a 64-bit count beside the old one, which may then be 0.
std::uint64_t PointCountOf(const laszip_header& header) {
    return header.version_minor >= 4 && header.extended_number_of_point_records != 0
               ? header.extended_number_of_point_records
               : header.number_of_point_records;
}

}  // namespace

/// Memory that the writing codec writes records to.
class LazPoints::Records final : public std::streambuf {
  public:
    std::ostream& Stream() { return stream_; }
    /// Makes room for so many bytes, none of them written.
    void Reset(std::size_t size) {
        bytes_.resize(std::max(size, bytes_.size()));
        setp(bytes_.data(), bytes_.data() + size);
    }
    std::span<const std::byte> Written() const {
        return std::as_bytes(std::span(pbase(), static_cast<std::size_t>(pptr() - pbase())));
    }

  private:
    std::vector<char> bytes_;
    std::ostream stream_{this};
};

void LazPoints::CodecDeleter::operator()(void* codec) const noexcept {
    // Open readers and writers leak otherwise. If nothing is open, closing only sets an error text.
    laszip_close_reader(codec);
    laszip_close_writer(codec);
    laszip_destroy(codec);
}

LazPoints::Codec LazPoints::CreateCodec() {
    laszip_POINTER codec = nullptr;
    if (laszip_create(&codec) != 0) {
        throw LDataError(Text(text::kLazOutOfMemory));
    }
    return Codec(codec);
}

LazPoints::LazPoints(const std::wstring& path) : path_(path), records_(std::make_unique<Records>()) {
    OpenReader();
    OpenWriter();
}

LazPoints::~LazPoints() = default;

void LazPoints::OpenReader() {
    ForgetStreamError();
    input_.open(ToPath(path_), std::ios::binary);
    if (!input_) {
        throw LDataError(FormatText(Text(text::kLazCannotRead), {path_, SystemErrorText(LastStreamError())}));
    }
    reader_ = CreateCodec();
    // Points of formats 6 to 10 that were packed into older formats for old readers come out as they were.
    Check(laszip_request_compatibility_mode(reader_.get(), 1), reader_);
    laszip_BOOL compressed = 0;
    Check(laszip_open_reader_stream(reader_.get(), input_, &compressed), reader_);
    Check(laszip_get_header_pointer(reader_.get(), &header_), reader_);
    Check(laszip_get_point_pointer(reader_.get(), &point_), reader_);
    count_ = PointCountOf(*header_);
    if (count_ > kMaxPoints) {
        throw LDataError(FormatText(Text(text::kLazHeaderDamaged), {path_}));
    }
}

void LazPoints::OpenWriter() {
    writer_ = CreateCodec();
    Check(laszip_set_header(writer_.get(), header_), writer_);
    constexpr laszip_BOOL kCompress = 0, kWithoutHeader = 1;
    Check(laszip_open_writer_stream(writer_.get(), records_->Stream(), kCompress, kWithoutHeader), writer_);
}

std::size_t LazPoints::RecordLength() const {
    return header_->point_data_record_length;
}

std::string LazPoints::Head() const {
    std::ostringstream stream;
    const Codec writer = CreateCodec();
    Check(laszip_preserve_generating_software(writer.get(), 1), writer);
    Check(laszip_set_header(writer.get(), header_), writer);
    // The octree of a COPC file holds places of compressed chunks; a LAS file that kept it would claim an
    // index that leads nowhere. Not finding the record is no error.
    laszip_remove_vlr(writer.get(), las::kCopcUserId.data(), 1);
    Check(laszip_open_writer_stream(writer.get(), stream, 0, 0), writer);
    return stream.str();
}

void LazPoints::Seek(std::uint64_t point) {
    if (point != next_) {
        Check(laszip_seek_point(reader_.get(), static_cast<laszip_I64>(point)), reader_);
        next_ = point;
    }
}

std::span<const std::byte> LazPoints::Read(std::size_t count) {
    records_->Reset(count * RecordLength());
    for (std::size_t i = 0; i < count; ++i, ++next_) {
        Check(laszip_read_point(reader_.get()), reader_);
        Check(laszip_set_point(writer_.get(), point_), writer_);
        Check(laszip_write_point(writer_.get()), writer_);
    }
    const std::span<const std::byte> written = records_->Written();
    if (written.size() != count * RecordLength()) {  // the items of a point are not what the header says
        throw LDataError(FormatText(Text(text::kLazHeaderDamaged), {path_}));
    }
    return written;
}

void LazPoints::RequireEnd(std::uint64_t end) {
    if (input_.tellg() != static_cast<std::streamoff>(end)) {
        Fail(Text(text::kLazChunkDamaged));
    }
}

void LazPoints::Check(int result, const Codec& codec) const {
    if (result == 0) {
        return;
    }
    laszip_CHAR* cause = nullptr;
    laszip_get_error(codec.get(), &cause);
    Fail(cause == nullptr ? std::wstring() : FromUtf8(cause));
}

void LazPoints::Fail(const std::wstring& cause) const {
    throw LDataError(FormatText(Text(text::kLazCannotDecompress), {path_, cause}));
}

}  // namespace orvex
