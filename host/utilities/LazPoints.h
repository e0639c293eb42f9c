#pragma once
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <functional>
#include <memory>
#include <span>
#include <string>

#include "host/utilities/LazLayout.h"

struct laszip_header;
struct laszip_point;

namespace orvex {

/// Points of a LAZ file in file order, as records of the LAS file that it decompresses to. Every object opens
/// the file for itself, so that threads can read different parts of one file. Errors are thrown as
/// LDataError.
class LazPoints {
  public:
    /// Opens a file whose layout and codec record have been found usable.
    explicit LazPoints(const std::wstring& path);
    ~LazPoints();
    LazPoints(const LazPoints&) = delete;
    LazPoints& operator=(const LazPoints&) = delete;

    const std::wstring& Path() const { return path_; }
    std::uint64_t Count() const { return count_; }
    /// Bytes of a record; more than in the LAZ file's header if points were packed into an older format.
    std::size_t RecordLength() const;
    /// Header and VLRs of the LAS file: what stands before its first point. They are those of the LAZ file,
    /// without what only describes the compression; the header's places of EVLRs are still those of the LAZ
    /// file.
    std::string Head() const;

    /// Makes `point` the next one. Cheap at the start of a chunk, otherwise the points before it in its chunk
    /// are decompressed.
    void Seek(std::uint64_t point);
    /// The next `count` records, valid until the next call.
    std::span<const std::byte> Read(std::size_t count);
    /// Throws the codec's error of a damaged chunk unless all that has been read of the file ends at `end`.
    void RequireEnd(std::uint64_t end);

  private:
    struct CodecDeleter {
        void operator()(void* codec) const noexcept;
    };
    using Codec = std::unique_ptr<void, CodecDeleter>;
    class Records;

    static Codec CreateCodec();
    void OpenReader();
    void OpenWriter();
    void Check(int result, const Codec& codec) const;
    [[noreturn]] void Fail(const std::wstring& cause) const;

    std::wstring path_;
    // The codecs use the streams, so they are declared after them and destroyed before.
    std::ifstream input_;
    std::unique_ptr<Records> records_;
    Codec reader_;
    Codec writer_;
    laszip_header* header_ = nullptr;  ///< owned by the reader, as is the point
    laszip_point* point_ = nullptr;
    std::uint64_t count_ = 0;
    std::uint64_t next_ = 0;
};

/// Takes records from several threads; false stops the reading.
using LazSink = std::function<bool(std::uint64_t first, std::span<const std::byte> records)>;

/// Reads all points on up to `threads` threads, 0 for one per core. `points` is an open reader of the file,
/// just opened; the calling thread reads with it. False if the sink stopped it. A damaged file leads to the
/// same exception whatever the number of threads.
bool ReadLazPoints(LazPoints& points, const LazChunkTable& table, unsigned threads, const LazSink& sink);

}  // namespace orvex
