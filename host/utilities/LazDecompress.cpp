// Decompression of LAZ files into LAS files.
#include <algorithm>
#include <atomic>
#include <fstream>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "host/utilities/LazPoints.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/LasFormat.h"
#include "support/MappedFile.h"
#include "support/ProgressIf.h"
#include "support/TemporaryFile.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::uint64_t kCopyBlock = 1 << 20;

/// One decompression of a LAZ file into a LAS file; used once.
class LazDecompressor {
  public:
    LazDecompressor(const std::wstring& lazPath, const std::wstring& lasPath, Kst::ProgressIf& progress);

    /// True when the LAS file is complete at its path, false if the user stopped. Throws LDataError with a
    /// text for the user. Leaves either the complete file or nothing.
    bool Run();

  private:
    void RequireSpace(const LazPoints& points) const;
    void WriteHead(const LazPoints& points);
    bool WritePoints(LazPoints& points, const LazChunkTable& table);
    bool TakeRecords(std::uint64_t first, std::span<const std::byte> records);
    bool CopyExtendedRecords();
    bool CopyBytes(std::uint64_t from, std::uint64_t length, std::uint64_t to);
    void PatchHeader();
    template <typename T>
    void PatchField(std::uint64_t offset, T value);
    void Finish();

    void WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) const;
    [[noreturn]] void FailToWrite(SystemError error) const;

    std::wstring lazPath_;
    std::wstring lasPath_;
    Kst::ProgressIf& progress_;
    LazLayout layout_;
    std::vector<ExtendedRecord> extendedRecords_;

    TemporaryFile temporary_;
    MappedFile output_;
    std::uint64_t pointsStart_ = 0;
    std::size_t recordLength_ = 0;
    const std::thread::id caller_ = std::this_thread::get_id();  ///< the one that may report progress
    std::atomic<std::uint64_t> pointsDone_ = 0;
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
    const LazChunkTable table = RequireUsableCodecRecord(lazPath_, layout_);
    extendedRecords_ = ReadExtendedRecords(lazPath_, layout_);
    LazPoints points(lazPath_);
    recordLength_ = points.RecordLength();
    RequireSpace(points);
    WriteHead(points);
    if (!WritePoints(points, table) || !CopyExtendedRecords()) {
        return false;
    }
    PatchHeader();
    Finish();
    return true;
}

void LazDecompressor::RequireSpace(const LazPoints& points) const {
    const std::wstring folder = FolderOf(lasPath_);
    const auto available = FreeSpaceIn(folder.empty() ? L"." : folder);
    if (!available) {
        return;  // a drive that does not tell; writing will
    }
    double needed = static_cast<double>(layout_.offsetToPoints) +
                    static_cast<double>(points.Count()) * static_cast<double>(recordLength_);
    for (const ExtendedRecord& record : extendedRecords_) {
        needed += static_cast<double>(record.length);
    }
    if (needed > static_cast<double>(*available)) {
        throw LDataError(FormatText(Text(text::kLazDiskFull),
                                    {lasPath_, needed * 1e-6, static_cast<double>(*available) * 1e-6}));
    }
}

void LazDecompressor::WriteHead(const LazPoints& points) {
    const std::string head = points.Head();
    pointsStart_ = head.size();
    ForgetStreamError();
    // Unlike the file that is written at any place, the stream makes the file if it has not been made before,
    // or tells why it cannot be.
    std::ofstream stream(ToPath(temporary_.Path()), std::ios::binary | std::ios::trunc);
    if (!stream.write(head.data(), static_cast<std::streamsize>(head.size())).flush()) {
        FailToWrite(LastStreamError());
    }
    if (const SystemError error = output_.Open(temporary_.Path(), false); error != 0) {
        FailToWrite(error);
    }
}

bool LazDecompressor::WritePoints(LazPoints& points, const LazChunkTable& table) {
    progress_.SetRange(points.Count());
    const bool isRead =
        !progress_.IsCancelled() &&
        ReadLazPoints(points, table, 0, [this](std::uint64_t first, std::span<const std::byte> records) {
            return TakeRecords(first, records);
        });
    if (isRead) {
        // The thread that reports may have come late to the work.
        progress_.SetPosition(pointsDone_);
    }
    return isRead && !progress_.IsCancelled();
}

bool LazDecompressor::TakeRecords(std::uint64_t first, std::span<const std::byte> records) {
    WriteAt(pointsStart_ + first * recordLength_, records);
    pointsDone_ += records.size() / recordLength_;
    if (std::this_thread::get_id() != caller_) {
        return true;
    }
    progress_.SetPosition(pointsDone_);
    return !progress_.IsCancelled();
}

void LazDecompressor::WriteAt(std::uint64_t offset, std::span<const std::byte> bytes) const {
    if (const SystemError error = output_.WriteAt(offset, bytes); error != 0) {
        FailToWrite(error);
    }
}

bool LazDecompressor::CopyExtendedRecords() {
    std::uint64_t place = pointsStart_ + pointsDone_ * recordLength_;
    for (const ExtendedRecord& record : extendedRecords_) {
        if (!CopyBytes(record.offset, record.length, place)) {
            return false;
        }
        if (extendedStart_ == 0) {
            extendedStart_ = place;
        }
        if (record.isWaveform) {
            waveformStart_ = place;
        }
        ++extendedCount_;
        place += record.length;
    }
    return true;
}

bool LazDecompressor::CopyBytes(std::uint64_t from, std::uint64_t length, std::uint64_t to) {
    std::uint64_t size = 0;
    const MappedFile input = OpenForReading(lazPath_, size);
    std::vector<std::byte> block;
    for (std::uint64_t done = 0; done < length;) {
        if (progress_.IsCancelled()) {
            return false;
        }
        block.resize(static_cast<std::size_t>(std::min(kCopyBlock, length - done)));
        std::size_t read = 0;
        const SystemError error = input.ReadAt(from + done, block, read);
        if (error != 0) {
            throw LDataError(FormatText(Text(text::kLazCannotRead), {lazPath_, SystemErrorText(error)}));
        }
        if (read < block.size()) {  // cut off since its layout was read
            throw LDataError(FormatText(Text(text::kLazHeaderDamaged), {lazPath_}));
        }
        WriteAt(to + done, block);
        done += block.size();
    }
    return true;
}

void LazDecompressor::PatchHeader() {
    if (layout_.waveformStart != 0) {
        PatchField(las::at::kWaveformStart, waveformStart_);
    }
    if (layout_.versionMinor >= 4) {
        PatchField(las::at::kEvlrStart, extendedStart_);
        PatchField(las::at::kEvlrCount, extendedCount_);
    }
}

template <typename T>
void LazDecompressor::PatchField(std::uint64_t offset, T value) {
    WriteAt(offset, std::as_bytes(std::span(&value, 1)));
}

void LazDecompressor::Finish() {
    output_.Close();
    SystemError error = CopyLastWriteTime(lazPath_, temporary_.Path());
    if (error == 0) {
        error = temporary_.Commit();
    }
    if (error != 0) {
        FailToWrite(error);
    }
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
