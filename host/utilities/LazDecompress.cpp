// Decompression of LAZ files by LASzip.
#include <laszip/laszip_api.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "host/utilities/LazLayout.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/LasFormat.h"
#include "support/ProgressIf.h"
#include "support/TemporaryFile.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::uint64_t kPointsPerStep = 20000;
// More points than any drive holds; the codec counts with signed numbers.
constexpr std::uint64_t kMaxPoints = std::uint64_t{1} << 62;
constexpr std::uint64_t kCopyBlock = 1 << 20;

/// Destroys a codec object of LASzip with what it holds.
struct LaszipDeleter {
    void operator()(void* codec) const noexcept {
        // Open readers and writers leak otherwise. If nothing is open, closing only sets an error text.
        laszip_close_reader(codec);
        laszip_close_writer(codec);
        laszip_destroy(codec);
    }
};
using LaszipHandle = std::unique_ptr<void, LaszipDeleter>;

LaszipHandle CreateCodec() {
    laszip_POINTER codec = nullptr;
    if (laszip_create(&codec) != 0) {
        throw LDataError(Text(text::kLazOutOfMemory));
    }
    return LaszipHandle(codec);
}

/// LAS 1.4 has a 64-bit count beside the old one, which may then be 0.
std::uint64_t PointCountOf(const laszip_header& header) {
    return header.version_minor >= 4 && header.extended_number_of_point_records != 0
               ? header.extended_number_of_point_records
               : header.number_of_point_records;
}

std::wstring CodecError(const LaszipHandle& codec) {
    laszip_CHAR* text = nullptr;
    if (laszip_get_error(codec.get(), &text) != 0 || text == nullptr) {
        return {};
    }
    return FromUtf8(text);
}

/// One decompression of a LAZ file into a LAS file; used once.
class LazDecompressor {
  public:
    LazDecompressor(const std::wstring& lazPath, const std::wstring& lasPath, Kst::ProgressIf& progress);

    /// True when the LAS file is complete at its path, false if the user stopped. Throws LDataError with a
    /// text for the user. Leaves either the complete file or nothing.
    bool Run();

  private:
    void OpenInput();
    void RequireSpace() const;
    void OpenOutput();
    bool CopyPoints();
    bool CopyExtendedRecords();
    bool CopyBytes(std::uint64_t from, std::uint64_t length);
    void PatchHeader();
    template <typename T>
    void PatchField(std::uint64_t offset, T value);
    void Finish();

    void CheckRead(int result) const;
    void CheckWritten(int result) const;
    [[noreturn]] void FailToWrite(SystemError error) const;

    std::wstring lazPath_;
    std::wstring lasPath_;
    Kst::ProgressIf& progress_;
    LazLayout layout_;
    std::vector<ExtendedRecord> extendedRecords_;

    // The codecs use the streams, so they are declared after them and destroyed before.
    std::ifstream input_;
    TemporaryFile temporary_;
    std::ofstream output_;
    LaszipHandle reader_;
    LaszipHandle writer_;
    laszip_header* header_ = nullptr;  ///< of the file to be written; owned by the reader
    std::uint64_t pointCount_ = 0;
    std::uint64_t extendedStart_ = 0;  ///< where the copied extended records start; 0 for none
    std::uint64_t waveformStart_ = 0;  ///< where the copied waveform record starts; 0 for none
    std::uint32_t extendedCount_ = 0;
};

}  // namespace

LazDecompressor::LazDecompressor(const std::wstring& lazPath, const std::wstring& lasPath,
                                 Kst::ProgressIf& progress)
    : lazPath_(lazPath), lasPath_(lasPath), progress_(progress), temporary_(lasPath) {}

bool LazDecompressor::Run() {
    if (IsSameFile(lazPath_, lasPath_)) {
        throw LDataError(FormatText(Text(text::kLazOntoItself), {lazPath_}));
    }
    layout_ = ReadLazLayout(lazPath_);
    RequireUsableCodecRecord(lazPath_, layout_);
    extendedRecords_ = ReadExtendedRecords(lazPath_, layout_);
    OpenInput();
    RequireSpace();
    OpenOutput();
    if (!CopyPoints() || !CopyExtendedRecords()) {
        return false;
    }
    PatchHeader();
    Finish();
    return true;
}

void LazDecompressor::OpenInput() {
    ForgetStreamError();
    input_.open(ToPath(lazPath_), std::ios::binary);
    if (!input_) {
        throw LDataError(
            FormatText(Text(text::kLazCannotRead), {lazPath_, SystemErrorText(LastStreamError())}));
    }
    reader_ = CreateCodec();
    // Points of formats 6 to 10 that were packed into older formats for old readers come out as they were.
    CheckRead(laszip_request_compatibility_mode(reader_.get(), 1));
    laszip_BOOL compressed = 0;
    CheckRead(laszip_open_reader_stream(reader_.get(), input_, &compressed));
    CheckRead(laszip_get_header_pointer(reader_.get(), &header_));
    pointCount_ = PointCountOf(*header_);
    if (pointCount_ > kMaxPoints) {
        throw LDataError(FormatText(Text(text::kLazHeaderDamaged), {lazPath_}));
    }
}

void LazDecompressor::RequireSpace() const {
    const std::wstring folder = FolderOf(lasPath_);
    const auto available = FreeSpaceIn(folder.empty() ? L"." : folder);
    if (!available) {
        return;  // a drive that does not tell; writing will
    }
    double needed = static_cast<double>(layout_.offsetToPoints) +
                    static_cast<double>(pointCount_) * header_->point_data_record_length;
    for (const ExtendedRecord& record : extendedRecords_) {
        needed += static_cast<double>(record.length);
    }
    if (needed > static_cast<double>(*available)) {
        throw LDataError(FormatText(Text(text::kLazDiskFull),
                                    {lasPath_, needed * 1e-6, static_cast<double>(*available) * 1e-6}));
    }
}

void LazDecompressor::OpenOutput() {
    ForgetStreamError();
    output_.open(ToPath(temporary_.Path()), std::ios::binary | std::ios::trunc);
    if (!output_) {
        FailToWrite(LastStreamError());
    }
    writer_ = CreateCodec();
    CheckWritten(laszip_preserve_generating_software(writer_.get(), 1));
    CheckWritten(laszip_set_header(writer_.get(), header_));
    // The octree of a COPC file holds places of compressed chunks; a LAS file that kept it would claim an
    // index that leads nowhere. Not finding the record is no error.
    laszip_remove_vlr(writer_.get(), las::kCopcUserId.data(), 1);
    CheckWritten(laszip_open_writer_stream(writer_.get(), output_, 0, 0));
}

bool LazDecompressor::CopyPoints() {
    laszip_point_struct* point = nullptr;
    CheckRead(laszip_get_point_pointer(reader_.get(), &point));
    progress_.SetRange(pointCount_);
    for (std::uint64_t done = 0; done < pointCount_;) {
        if (progress_.IsCancelled()) {
            return false;
        }
        const std::uint64_t stepEnd = done + std::min(kPointsPerStep, pointCount_ - done);
        for (; done < stepEnd; ++done) {
            CheckRead(laszip_read_point(reader_.get()));
            CheckWritten(laszip_set_point(writer_.get(), point));
            CheckWritten(laszip_write_point(writer_.get()));
        }
        progress_.SetPosition(done);
    }
    CheckWritten(laszip_close_writer(writer_.get()));
    return true;
}

bool LazDecompressor::CopyExtendedRecords() {
    input_.clear();
    for (const ExtendedRecord& record : extendedRecords_) {
        const auto place = static_cast<std::uint64_t>(output_.tellp());
        if (!CopyBytes(record.offset, record.length)) {
            return false;
        }
        if (extendedStart_ == 0) {
            extendedStart_ = place;
        }
        if (record.isWaveform) {
            waveformStart_ = place;
        }
        ++extendedCount_;
    }
    return true;
}

bool LazDecompressor::CopyBytes(std::uint64_t from, std::uint64_t length) {
    std::vector<char> block(static_cast<std::size_t>(std::min(kCopyBlock, length)));
    input_.seekg(static_cast<std::streamoff>(from));
    while (length > 0) {
        if (progress_.IsCancelled()) {
            return false;
        }
        const auto part = static_cast<std::streamsize>(std::min<std::uint64_t>(block.size(), length));
        ForgetStreamError();
        if (!input_.read(block.data(), part)) {
            throw LDataError(
                FormatText(Text(text::kLazCannotRead), {lazPath_, SystemErrorText(LastStreamError())}));
        }
        CheckWritten(output_.write(block.data(), part) ? 0 : 1);
        length -= static_cast<std::uint64_t>(part);
    }
    return true;
}

void LazDecompressor::PatchHeader() {
    if (layout_.waveformStart != 0) {
        PatchField(las::at::kWaveformStart, waveformStart_);
    }
    if (header_->version_minor >= 4) {
        PatchField(las::at::kEvlrStart, extendedStart_);
        PatchField(las::at::kEvlrCount, extendedCount_);
    }
}

template <typename T>
void LazDecompressor::PatchField(std::uint64_t offset, T value) {
    output_.seekp(static_cast<std::streamoff>(offset));
    output_.write(reinterpret_cast<const char*>(&value), sizeof(value));
}

void LazDecompressor::Finish() {
    ForgetStreamError();
    output_.close();
    if (!output_) {
        FailToWrite(LastStreamError());
    }
    SystemError error = CopyLastWriteTime(lazPath_, temporary_.Path());
    if (error == 0) {
        error = temporary_.Commit();
    }
    if (error != 0) {
        FailToWrite(error);
    }
}

void LazDecompressor::CheckRead(int result) const {
    if (result != 0) {
        throw LDataError(FormatText(Text(text::kLazCannotDecompress), {lazPath_, CodecError(reader_)}));
    }
}

void LazDecompressor::CheckWritten(int result) const {
    if (result == 0) {
        return;
    }
    // The system's reason is still known: the stream that failed was the last to call the system.
    if (!output_) {
        FailToWrite(LastStreamError());
    }
    throw LDataError(FormatText(Text(text::kLazCannotWrite), {lasPath_, CodecError(writer_)}));
}

void LazDecompressor::FailToWrite(SystemError error) const {
    throw LDataError(FormatText(Text(text::kLazCannotWrite), {lasPath_, SystemErrorText(error)}));
}

}  // namespace orvex

bool OrvexUtilities::LAZDecompress(const std::wstring& lazPath, const std::wstring& lasPath,
                                   Kst::ProgressIf& progress, std::wstring& reason) {
    reason.clear();
    try {
        return orvex::LazDecompressor(lazPath, lasPath, progress).Run();
    } catch (...) {
        reason = orvex::CurrentExceptionText();
        return false;
    }
}
