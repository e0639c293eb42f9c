// Reading of LAZ files on all cores, chunk by chunk.
#include <algorithm>
#include <atomic>
#include <cstdint>
#include <exception>
#include <limits>
#include <mutex>
#include <span>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "host/utilities/LazChunks.h"
#include "host/utilities/LazPoints.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/LDataError.h"

namespace orvex {
namespace {

// A block of records as the sink gets it.
constexpr std::uint64_t kBlockPoints = 20000;
constexpr std::uint64_t kBlockBytes = 1 << 20;
// The codec finds points by numbers of 32 bits; those beyond are reached by reading on.
constexpr std::uint64_t kLastFoundPoint = std::numeric_limits<std::uint32_t>::max();

/// Chunks in pieces that are worth going to; one piece if the chunks are not known.
std::vector<LazChunk> Pieces(const std::vector<LazChunk>& chunks, std::uint64_t points) {
    std::vector<LazChunk> pieces;
    for (const LazChunk& chunk : chunks) {
        if (pieces.empty() || (pieces.back().count >= kBlockPoints && chunk.first <= kLastFoundPoint)) {
            pieces.push_back(chunk);
        } else {
            pieces.back().count += chunk.count;
            pieces.back().end = chunk.end;
        }
    }
    if (pieces.empty()) {
        pieces.push_back({0, points, 0});
    }
    return pieces;
}

/// One reading of all points; used once.
class ParallelReading {
  public:
    ParallelReading(LazPoints& points, std::vector<LazChunk> pieces, const LazSink& sink)
        : points_(points), pieces_(std::move(pieces)), sink_(sink) {}

    bool Run(unsigned threads) {
        {
            std::vector<std::jthread> others;
            StartOthers(others, std::min<std::size_t>(threads, pieces_.size()));
            ReadPieces(points_);
        }
        if (failure_) {
            std::rethrow_exception(failure_);
        }
        return !stopped_;
    }

  private:
    void StartOthers(std::vector<std::jthread>& others, std::size_t threads) {
        try {
            while (others.size() + 1 < threads) {
                others.emplace_back([this] { ReadAsOther(); });
            }
        } catch (const std::system_error&) {
            // The system has no further thread; those that there are read everything.
        }
    }

    void ReadAsOther() {
        try {
            LazPoints points(points_.Path());
            ReadPieces(points);
        } catch (const std::exception&) {
            // No memory or file handle for a further reader: the others read everything.
        }
    }

    void ReadPieces(LazPoints& points) {
        for (;;) {
            const std::size_t number = next_++;
            if (number >= pieces_.size() || IsOver(number)) {
                return;
            }
            try {
                ReadPiece(points, number);
            } catch (...) {
                Fail(number, std::current_exception());
                return;
            }
        }
    }

    void ReadPiece(LazPoints& points, std::size_t number) {
        const LazChunk& piece = pieces_[number];
        const std::uint64_t most =
            std::clamp<std::uint64_t>(kBlockBytes / points.RecordLength(), 1, kBlockPoints);
        points.Seek(piece.first);
        for (std::uint64_t done = 0; done < piece.count && !IsOver(number);) {
            const std::uint64_t count = std::min(most, piece.count - done);
            if (!sink_(piece.first + done, points.Read(static_cast<std::size_t>(count)))) {
                stopped_ = true;
            }
            done += count;
        }
        // Who reads on from one chunk to the next finds a chunk that is not as long as it should be.
        if (number + 1 < pieces_.size() && !IsOver(number)) {
            points.RequireEnd(piece.end);
        }
    }

    bool IsOver(std::size_t number) const { return stopped_ || number > failed_; }

    /// Of several failures the one that a reading from start to end meets first counts: the pieces before it
    /// are all being read and are read to their ends.
    void Fail(std::size_t number, std::exception_ptr failure) {
        const std::lock_guard guard(lock_);
        if (number < failed_) {
            failed_ = number;
            failure_ = std::move(failure);
        }
    }

    LazPoints& points_;
    const std::vector<LazChunk> pieces_;
    const LazSink& sink_;
    std::atomic<std::size_t> next_ = 0;
    std::atomic<std::size_t> failed_ = std::numeric_limits<std::size_t>::max();
    std::atomic<bool> stopped_ = false;
    std::mutex lock_;
    std::exception_ptr failure_;
};

}  // namespace

bool ReadLazPoints(LazPoints& points, const LazChunkTable& table, unsigned threads, const LazSink& sink) {
    std::vector<LazChunk> pieces =
        Pieces(ReadLazChunks(points.Path(), table, points.Count()), points.Count());
    return ParallelReading(points, std::move(pieces), sink)
        .Run(threads != 0 ? threads : std::thread::hardware_concurrency());
}

}  // namespace orvex

bool OrvexUtilities::LAZReadPoints(
    const std::wstring& path, unsigned threads,
    const std::function<bool(std::uint64_t first, std::span<const std::byte> records)>& sink,
    std::wstring& reason) {
    reason.clear();
    try {
        const orvex::LazLayout layout = orvex::ReadLazLayout(path);
        const orvex::LazChunkTable table = orvex::RequireUsableCodecRecord(path, layout);
        orvex::LazPoints points(path);
        return orvex::ReadLazPoints(points, table, threads, sink);
    } catch (...) {
        reason = orvex::CurrentExceptionText();
        return false;
    }
}

bool OrvexUtilities::LAZReadHead(const std::wstring& path, std::string& head, std::wstring& reason) {
    reason.clear();
    try {
        orvex::RequireUsableCodecRecord(path, orvex::ReadLazLayout(path));
        head = orvex::LazPoints(path).Head();
        return true;
    } catch (...) {
        reason = orvex::CurrentExceptionText();
        return false;
    }
}
