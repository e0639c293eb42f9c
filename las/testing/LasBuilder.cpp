#include "las/testing/LasBuilder.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace orvex::testing {
namespace {

// The offsets and lengths do not come from the reader's table, so that a mistake there shows in the tests.
constexpr std::array<std::uint16_t, 11> kRecordLengths{20, 28, 26, 34, 57, 63, 30, 36, 38, 59, 67};

std::uint16_t HeaderSizeOf(int version) {
    if (version >= 14 && version < 20) {
        return 375;
    }
    return version == 13 ? 235 : 227;
}

template <typename T>
void Put(std::string& bytes, std::size_t offset, T value) {
    if (offset + sizeof(T) <= bytes.size()) {
        std::memcpy(bytes.data() + offset, &value, sizeof(T));
    }
}

void PutText(std::string& bytes, std::size_t offset, std::size_t length, std::string_view text) {
    std::memcpy(bytes.data() + offset, text.data(), std::min(length, text.size()));
}

// The length of the data takes 16 bits in a VLR and 64 in an EVLR.
template <typename Length, typename Records>
std::string RecordBytes(const Records& records) {
    std::string bytes;
    for (const auto& record : records) {
        std::string header(52 + sizeof(Length), '\0');
        Put(header, 0, record.reserved);
        PutText(header, 2, 16, record.userId);
        Put(header, 18, record.recordId);
        Put(header, 20, static_cast<Length>(record.data.size()));
        PutText(header, 20 + sizeof(Length), 32, record.description);
        bytes += header + record.data;
    }
    return bytes;
}

}  // namespace

LasBuilder::LasBuilder(int version, int pointFormat)
    : version_(version), pointFormat_(pointFormat), headerSize_(HeaderSizeOf(version)) {}

LasBuilder& LasBuilder::AddPoint(double x, double y, double z) {
    points_.push_back({x, y, z});
    return *this;
}

LasBuilder& LasBuilder::AddPoints(std::size_t count, double x, double y, double z) {
    const auto side = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(count))));
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t row = i / side;
        const std::size_t column = i % side;
        AddPoint(x + static_cast<double>(column), y + static_cast<double>(row),
                 z + 0.01 * static_cast<double>(i));
    }
    return *this;
}

LasBuilder& LasBuilder::AddVlr(std::string_view userId, std::uint16_t recordId, std::string_view data,
                               std::string_view description, std::uint16_t reserved) {
    vlrs_.push_back({std::string(userId), recordId, std::string(data), std::string(description), reserved});
    return *this;
}

LasBuilder& LasBuilder::AddEvlr(std::string_view userId, std::uint16_t recordId, std::string_view data,
                                std::string_view description, std::uint16_t reserved) {
    evlrs_.push_back({std::string(userId), recordId, std::string(data), std::string(description), reserved});
    return *this;
}

LasBuilder& LasBuilder::AddExtraBytes(std::string_view name, std::uint8_t dataType, std::uint8_t size) {
    std::string descriptor(192, '\0');
    Put(descriptor, 2, dataType);
    Put<std::uint8_t>(descriptor, 3, dataType == 0 ? size : std::uint8_t{0});
    PutText(descriptor, 4, 32, name);
    extraBytes_ += descriptor;
    extraByteCount_ = static_cast<std::uint16_t>(extraByteCount_ + size);
    return *this;
}

LasBuilder& LasBuilder::Wkt(std::string_view wkt, bool asEvlr) {
    const std::string data = std::string(wkt) + '\0';
    EncodingBits(16);
    return asEvlr ? AddEvlr("LASF_Projection", 2112, data) : AddVlr("LASF_Projection", 2112, data);
}

LasBuilder& LasBuilder::ProjectedEpsg(std::uint16_t code) {
    return GeoKeys({1, 1, 0, 3, 1024, 0, 1, 1, 1025, 0, 1, 1, 3072, 0, 1, code});
}

LasBuilder& LasBuilder::GeoKeys(const std::vector<std::uint16_t>& directory) {
    std::string data;
    for (const std::uint16_t number : directory) {
        data += Bytes(number);
    }
    return AddVlr("LASF_Projection", 34735, data, "GeoTiff GeoKeyDirectoryTag");
}

std::uint16_t LasBuilder::RecordLength() const {
    return static_cast<std::uint16_t>(kRecordLengths.at(static_cast<std::size_t>(pointFormat_)) +
                                      extraByteCount_);
}

std::string LasBuilder::Vlrs() const {
    std::vector<Record> records = vlrs_;
    if (HasExtraBytes()) {
        records.push_back({"LASF_Spec", 4, extraBytes_, "Extra Bytes Record", 0});
    }
    return RecordBytes<std::uint16_t>(records);
}

std::string LasBuilder::Points() const {
    std::string bytes;
    bytes.reserve(points_.size() * RecordLength());
    for (const Triple& point : points_) {
        std::string record(RecordLength(), '\0');
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const double steps = std::round((point[axis] - offset_[axis]) / scale_[axis]);
            Put(record, 4 * axis, static_cast<std::int32_t>(steps));
        }
        // One return of one.
        Put<std::uint8_t>(record, 14, pointFormat_ < 6 ? 0x09 : 0x11);
        bytes += record;
    }
    return bytes;
}

void LasBuilder::PutExtent(std::string& header) const {
    Triple low{};
    Triple high{};
    if (!points_.empty()) {
        low = high = points_.front();
    }
    for (const Triple& point : points_) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            low[axis] = std::min(low[axis], point[axis]);
            high[axis] = std::max(high[axis], point[axis]);
        }
    }
    for (std::size_t axis = 0; axis < 3; ++axis) {
        Put(header, 131 + 8 * axis, scale_[axis]);
        Put(header, 155 + 8 * axis, offset_[axis]);
        Put(header, 179 + 16 * axis, high[axis]);
        Put(header, 187 + 16 * axis, low[axis]);
    }
}

std::string LasBuilder::Header(std::size_t vlrBytes, std::size_t pointBytes) const {
    // Every field finds room; what the header size leaves out is cut off at the end.
    std::string header(std::max<std::size_t>(headerSize_, 375), '\0');
    const std::size_t offsetToPoints = headerSize_ + vlrBytes + gap_.size();
    const bool isLegacyFormat = pointFormat_ < 6;
    PutText(header, 0, 4, "LASF");
    Put(header, 6, encoding_);
    Put(header, 24, static_cast<std::uint8_t>(version_ / 10));
    Put(header, 25, static_cast<std::uint8_t>(version_ % 10));
    PutText(header, 26, 32, systemIdentifier_);
    PutText(header, 58, 32, generatingSoftware_);
    Put(header, 90, creationDay_);
    Put(header, 92, creationYear_);
    Put(header, 94, headerSize_);
    Put(header, 96, static_cast<std::uint32_t>(offsetToPoints));
    Put(header, 100, static_cast<std::uint32_t>(vlrs_.size() + (HasExtraBytes() ? 1 : 0)));
    Put(header, 104, static_cast<std::uint8_t>(pointFormat_ + (isCompressed_ ? 128 : 0)));
    Put(header, 105, RecordLength());
    Put(header, 107, static_cast<std::uint32_t>(isLegacyFormat ? points_.size() : 0));
    Put(header, 111, static_cast<std::uint32_t>(isLegacyFormat ? points_.size() : 0));
    PutExtent(header);
    if (version_ == 14) {
        Put(header, 235, static_cast<std::uint64_t>(evlrs_.empty() ? 0 : offsetToPoints + pointBytes));
        Put(header, 243, static_cast<std::uint32_t>(evlrs_.size()));
        Put(header, 247, static_cast<std::uint64_t>(points_.size()));
        Put(header, 255, static_cast<std::uint64_t>(points_.size()));
    }
    header.resize(headerSize_);
    return header;
}

std::string LasBuilder::Build() const {
    const std::string vlrs = Vlrs();
    const std::string points = Points();
    std::string file = Header(vlrs.size(), points.size()) + vlrs + gap_ + points +
                       RecordBytes<std::uint64_t>(evlrs_) + appended_;
    for (const auto& [offset, bytes] : lies_) {
        if (offset + bytes.size() <= file.size()) {
            file.replace(offset, bytes.size(), bytes);
        }
    }
    file.resize(std::min(cut_, file.size()));
    return file;
}

}  // namespace orvex::testing
