#include "benchmarks/PointFiles.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstring>
#include <fstream>
#include <limits>
#include <stdexcept>
#include <vector>

#include "support/LasFormat.h"
#include "support/MappedFile.h"
#include "support/Text.h"

namespace orvex::bench {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kBufferSize = 1 << 20;
constexpr double kScale = 0.01;

template <typename T>
void Put(std::vector<char>& bytes, std::size_t offset, T value) {
    std::memcpy(bytes.data() + offset, &value, sizeof(value));
}

template <typename T>
T Get(const char* bytes, std::size_t offset) {
    T value;
    std::memcpy(&value, bytes + offset, sizeof(value));
    return value;
}

/// A LAS file that is written from start to end; its header gets counts and extent when it is finished.
class PointWriter {
  public:
    PointWriter(const std::wstring& path, std::vector<char> head)
        : file_(ToPath(path), std::ios::binary),
          head_(std::move(head)),
          recordLength_(Get<std::uint16_t>(head_.data(), las::at::kPointRecordLength)) {
        lowest_.fill(std::numeric_limits<std::int32_t>::max());
        highest_.fill(std::numeric_limits<std::int32_t>::min());
        file_.write(head_.data(), static_cast<std::streamsize>(head_.size()));
        buffer_.reserve(kBufferSize + recordLength_);
    }

    std::uint64_t Count() const { return count_; }
    void Add(const char* record) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const auto value = Get<std::int32_t>(record, axis * sizeof(std::int32_t));
            lowest_[axis] = std::min(lowest_[axis], value);
            highest_[axis] = std::max(highest_[axis], value);
        }
        buffer_.insert(buffer_.end(), record, record + recordLength_);
        ++count_;
        if (buffer_.size() >= kBufferSize) {
            Flush();
        }
    }

    void Finish() {
        Flush();
        const bool isExtended = head_[las::at::kVersionMinor] >= 4;
        const bool isLegacyFormat = head_[las::at::kPointFormat] < las::kFirstExtendedFormat;
        Put(head_, las::at::kLegacyPointCount, static_cast<std::uint32_t>(isLegacyFormat ? count_ : 0));
        if (isExtended) {
            Put(head_, las::at::kPointCount, count_);
            Put(head_, las::at::kEvlrStart, std::uint64_t{0});
            Put(head_, las::at::kEvlrCount, std::uint32_t{0});
        }
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const auto scale = Get<double>(head_.data(), las::at::kScale + 8 * axis);
            const auto offset = Get<double>(head_.data(), las::at::kOffset + 8 * axis);
            Put(head_, las::at::kMaximum + 16 * axis, highest_[axis] * scale + offset);
            Put(head_, las::at::kMinimum + 16 * axis, lowest_[axis] * scale + offset);
        }
        file_.seekp(0);
        file_.write(head_.data(), static_cast<std::streamsize>(head_.size()));
        if (!file_.flush()) {
            throw std::runtime_error("a generated LAS file cannot be written");
        }
    }

  private:
    void Flush() {
        file_.write(buffer_.data(), static_cast<std::streamsize>(buffer_.size()));
        buffer_.clear();
    }

    std::ofstream file_;
    std::vector<char> head_;
    std::vector<char> buffer_;
    std::size_t recordLength_;
    std::uint64_t count_ = 0;
    std::array<std::int32_t, 3> lowest_{};
    std::array<std::int32_t, 3> highest_{};
};

std::vector<char> TerrainHead(PointLayout layout) {
    const bool isExtended = layout == PointLayout::Extended;
    const las::VersionFacts& version = *las::FindVersion(isExtended ? las::kLas14 : las::kLas12);
    const int format = isExtended ? 6 : 1;
    std::vector<char> head(version.headerSize);
    std::ranges::copy(las::kSignature, head.begin());
    Put(head, las::at::kVersionMajor, std::uint8_t{1});
    Put(head, las::at::kVersionMinor, static_cast<std::uint8_t>(version.minor));
    Put(head, las::at::kHeaderSize, version.headerSize);
    Put(head, las::at::kOffsetToPoints, std::uint32_t{version.headerSize});
    Put(head, las::at::kPointFormat, static_cast<std::uint8_t>(format));
    Put(head, las::at::kPointRecordLength, las::FindPointFormat(format)->minimumLength);
    constexpr std::array<double, 3> kOrigin = {400000, 5600000, 0};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        Put(head, las::at::kScale + 8 * axis, kScale);
        Put(head, las::at::kOffset + 8 * axis, kOrigin[axis]);
    }
    return head;
}

/// A number from a number, as if at random.
std::uint64_t Mixed(std::uint64_t number) {
    number += 0x9E3779B97F4A7C15U;
    number = (number ^ (number >> 30U)) * 0xBF58476D1CE4E5B9U;
    number = (number ^ (number >> 27U)) * 0x94D049BB133111EBU;
    return number ^ (number >> 31U);
}

struct Return {
    double x, y, z;
    double time;
    std::uint8_t classification, number, count;
    std::uint16_t intensity, strip;
};

constexpr std::uint8_t kGround = 2, kTree = 5, kBuilding = 6;

/// The scanner's flight: strips from south to north beside each other.
class Flight {
  public:
    Flight(PointWriter& writer, std::uint64_t points, PointLayout layout)
        : writer_(writer),
          points_(points),
          layout_(layout),
          side_(std::sqrt(static_cast<double>(points)) * kSpacing),
          record_(las::FindPointFormat(layout == PointLayout::Extended ? 6 : 1)->minimumLength) {}

    void Run() {
        for (std::uint16_t strip = 0; writer_.Count() < points_; ++strip) {
            RunStrip(strip);
        }
    }

  private:
    static constexpr double kSpacing = 0.35;
    static constexpr double kStripWidth = 300;
    // Blocks of houses, and the trees between them.
    static constexpr double kLot = 40, kYard = 10, kCrown = 8;
    static constexpr double kGround0 = 200;

    void RunStrip(std::uint16_t strip) {
        const double west = strip * kStripWidth;
        const double width = std::min(kStripWidth, std::max(side_ - west, kSpacing));
        const auto lines = static_cast<std::uint64_t>(side_ / kSpacing) + 1;
        const auto pulses = static_cast<std::uint64_t>(width / kSpacing) + 1;
        // What the height has of x stays the same along the strip.
        std::vector<std::array<double, 2>> waves;
        for (std::uint64_t i = 0; i < pulses; ++i) {
            const double x = west + static_cast<double>(i) * kSpacing;
            waves.push_back({25 * std::sin(x / 310), 4 * std::sin(x / 47 + 1)});
        }
        for (std::uint64_t line = 0; line < lines && writer_.Count() < points_; ++line) {
            const double y = static_cast<double>(line) * kSpacing;
            const std::array<double, 2> along = {std::cos(y / 270), std::cos(y / 61)};
            for (std::uint64_t i = 0; i < pulses && writer_.Count() < points_; ++i) {
                // The mirror swings to and fro.
                const std::uint64_t pulse = line % 2 == 0 ? i : pulses - 1 - i;
                const double ground = kGround0 + waves[pulse][0] * along[0] + waves[pulse][1] * along[1];
                Pulse(west + static_cast<double>(pulse) * kSpacing, y, ground, strip);
            }
        }
    }

    void Pulse(double x, double y, double ground, std::uint16_t strip) {
        const std::uint64_t chance = Mixed(++pulses_);
        const auto part = [chance](unsigned byte) {
            return static_cast<double>(chance >> (8 * byte) & 0xFFU) / 256;
        };
        Return seen{x + 0.1 * part(0),
                    y + 0.1 * part(1),
                    ground + 0.05 * part(2),
                    1e6 + static_cast<double>(pulses_) * 2e-6,
                    kGround,
                    1,
                    1,
                    static_cast<std::uint16_t>(300 + 200 * part(3)),
                    strip};
        const std::uint64_t lot = Mixed(Cell(x, kLot) << 32U | Cell(y, kLot));
        const bool isBuilt = lot % 3 == 0 && std::fmod(x, kLot) > kYard && std::fmod(y, kLot) > kYard;
        const std::uint64_t crown = Mixed(Cell(x, kCrown) << 32U | Cell(y, kCrown) << 1U | 1U);
        if (isBuilt) {
            seen.z = kGround0 + 30 + static_cast<double>(lot / 3 % 16) + 0.03 * part(2);
            seen.classification = kBuilding;
        } else if (lot % 3 != 0 && crown % 4 == 0 && part(4) < 0.7) {
            const double fromMiddle =
                std::hypot(std::fmod(x, kCrown) - kCrown / 2, std::fmod(y, kCrown) - kCrown / 2);
            Return leaves = seen;
            leaves.z += std::max(1.0, 15 - fromMiddle * 2.5 - 3 * part(5));
            leaves.classification = kTree;
            leaves.count = seen.count = seen.number = 2;
            Write(leaves);
        }
        Write(seen);
    }

    static std::uint64_t Cell(double coordinate, double size) {
        return static_cast<std::uint64_t>(coordinate / size);
    }

    void Write(const Return& seen) {
        if (writer_.Count() >= points_) {
            return;
        }
        const auto raw = [](double value) { return static_cast<std::int32_t>(std::lround(value / kScale)); };
        Put(record_, 0, raw(seen.x));
        Put(record_, 4, raw(seen.y));
        Put(record_, 8, raw(seen.z));
        Put(record_, las::point_at::kIntensity, seen.intensity);
        const bool isExtended = layout_ == PointLayout::Extended;
        const unsigned shift = isExtended ? 4 : 3;
        Put(record_, las::point_at::kReturns, static_cast<std::uint8_t>(seen.number | seen.count << shift));
        Put(record_, isExtended ? las::point_at::kClassification : las::point_at::kLegacyClassification,
            seen.classification);
        Put(record_, isExtended ? 20 : 18, seen.strip);
        Put(record_, isExtended ? las::point_at::kGpsTime : las::point_at::kLegacyGpsTime, seen.time);
        writer_.Add(record_.data());
    }

    PointWriter& writer_;
    std::uint64_t points_;
    PointLayout layout_;
    double side_;
    std::vector<char> record_;
    std::uint64_t pulses_ = 0;
};

std::vector<char> ReadAll(const std::wstring& path) {
    std::ifstream file(ToPath(path), std::ios::binary | std::ios::ate);
    std::vector<char> bytes(static_cast<std::size_t>(std::max<std::streamoff>(0, file.tellg())));
    file.seekg(0);
    if (!file.read(bytes.data(), static_cast<std::streamsize>(bytes.size())) ||
        bytes.size() < las::kHeaderSize14 ||
        (static_cast<std::uint8_t>(bytes[las::at::kPointFormat]) & las::kCompressionBits) != 0) {
        throw std::runtime_error("the tile is no uncompressed LAS file");
    }
    return bytes;
}

}  // namespace

BenchFolder::BenchFolder()
    : path_(fs::temp_directory_path() /
            fmt::format("orvex-bench-{}", std::chrono::steady_clock::now().time_since_epoch().count())) {
    fs::create_directories(path_);
}

BenchFolder::~BenchFolder() {
    std::error_code error;
    fs::remove_all(path_, error);
}

std::wstring BenchFolder::Name(const std::string& name) const {
    return FromPath(path_ / name);
}

void WriteTerrain(const std::wstring& path, std::uint64_t points, PointLayout layout) {
    PointWriter writer(path, TerrainHead(layout));
    Flight(writer, points, layout).Run();
    writer.Finish();
}

void WriteRepeated(const std::wstring& tile, const std::wstring& path, std::uint64_t points) {
    const std::vector<char> bytes = ReadAll(tile);
    const auto start = Get<std::uint32_t>(bytes.data(), las::at::kOffsetToPoints);
    const auto length = Get<std::uint16_t>(bytes.data(), las::at::kPointRecordLength);
    if (start >= bytes.size() || length < 20 || bytes.size() - start < length) {
        throw std::runtime_error("the tile has no points");
    }
    const std::uint64_t count = (bytes.size() - start) / length;
    std::array<std::int32_t, 2> step{};
    for (std::size_t axis = 0; axis < 2; ++axis) {
        const auto extent = Get<double>(bytes.data(), las::at::kMaximum + 16 * axis) -
                            Get<double>(bytes.data(), las::at::kMinimum + 16 * axis);
        step[axis] =
            static_cast<std::int32_t>(extent / Get<double>(bytes.data(), las::at::kScale + 8 * axis)) + 1;
    }
    const auto perRow = static_cast<std::uint64_t>(
        std::ceil(std::sqrt(static_cast<double>(points) / static_cast<double>(count))));
    PointWriter writer(path, {bytes.begin(), bytes.begin() + start});
    std::vector<char> record(length);
    for (std::uint64_t i = 0; i < points; ++i) {
        std::memcpy(record.data(), bytes.data() + start + i % count * length, length);
        const std::array<std::uint64_t, 2> place = {i / count % perRow, i / count / perRow};
        for (std::size_t axis = 0; axis < 2; ++axis) {
            Put(record, 4 * axis,
                static_cast<std::int32_t>(Get<std::int32_t>(record.data(), 4 * axis) +
                                          static_cast<std::int64_t>(place[axis]) * step[axis]));
        }
        writer.Add(record.data());
    }
    writer.Finish();
}

bool CopySequentially(const std::wstring& from, const std::wstring& to) {
    std::ifstream source(ToPath(from), std::ios::binary);
    std::vector<char> block(kBufferSize);
    {
        std::ofstream target(ToPath(to), std::ios::binary);
        while (source.read(block.data(), static_cast<std::streamsize>(block.size())) || source.gcount() > 0) {
            target.write(block.data(), source.gcount());
        }
        if (!source.eof() || !target.flush()) {
            return false;
        }
    }
    MappedFile copy;
    return copy.Open(to, false) == 0 && copy.Sync() == 0;
}

}  // namespace orvex::bench
