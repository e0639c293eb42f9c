#include "las/LasPointViews.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "support/ByteReader.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {

LasExtent Octant(const LasExtent& extent, unsigned child) {
    constexpr std::array<unsigned, 3> kUpperBits{4, 2, 1};
    LasExtent part = extent;
    for (std::size_t axis = 0; axis < kUpperBits.size(); ++axis) {
        const double middle = std::midpoint(extent.minimum[axis], extent.maximum[axis]);
        auto& side = (child & kUpperBits[axis]) != 0 ? part.minimum : part.maximum;
        side[axis] = middle;
    }
    return part;
}

LasPointView::LasPointView(MappedView view, std::uint64_t skip, std::uint64_t firstPoint, std::uint64_t count,
                           std::uint16_t recordLength, const LasPointFrame& frame)
    : view_(std::move(view)),
      firstPoint_(firstPoint),
      count_(count),
      recordLength_(recordLength),
      frame_(frame) {
    records_ = view_.Bytes().subspan(skip);
}

std::span<std::byte> LasPointView::Record(std::uint64_t point) const {
    return Contains(point) ? records_.subspan((point - firstPoint_) * recordLength_, recordLength_)
                           : std::span<std::byte>();
}

std::array<double, 3> LasPointView::Position(std::uint64_t point) const {
    const ByteReader record(Record(point));
    std::array<double, 3> position{};
    for (std::size_t axis = 0; axis < position.size(); ++axis) {
        position[axis] = record.Read<std::int32_t>(4 * axis) * frame_.scale[axis] + frame_.offset[axis];
    }
    return position;
}

std::unique_ptr<LasPointViews> LasPointViews::Create(MappedFile file, const LasHeader& header,
                                                     bool readOnly) {
    if (header.PointRecordLength() == 0 || header.IsCompressed()) {
        return nullptr;
    }
    return std::unique_ptr<LasPointViews>(new LasPointViews(std::move(file), header, readOnly));
}

LasPointViews::LasPointViews(MappedFile file, const LasHeader& header, bool readOnly)
    : file_(std::move(file)),
      frame_{header.Scale(), header.Offset(), {header.Minimum(), header.Maximum()}},
      start_(header.OffsetToPoints()),
      recordLength_(header.PointRecordLength()),
      readOnly_(readOnly) {
    std::uint64_t size = 0;
    if (file_.Size(size) == 0 && size > start_) {
        pointCount_ = std::min(header.PointCount(), (size - start_) / recordLength_);
    }
}

std::uint64_t LasPointViews::Granularity() {
    return 4 * MappedFile::AllocationGranularity();
}

// First point whose record starts at or after a position, at most pointCount_.
std::uint64_t LasPointViews::FirstPointFrom(std::uint64_t position) const {
    const std::uint64_t length = position > start_ ? position - start_ : 0;
    return std::min((length + recordLength_ - 1) / recordLength_, pointCount_);
}

std::uint64_t LasPointViews::ViewOf(std::uint64_t point) const {
    return (start_ + point * recordLength_) / Granularity() - start_ / Granularity();
}

std::uint64_t LasPointViews::ViewCount() const {
    return pointCount_ == 0 ? 0 : ViewOf(pointCount_ - 1) + 1;
}

LasPointView LasPointViews::Map(std::uint64_t view) const {
    if (view >= ViewCount()) {
        throw LDataError(FormatText(Text(text::kNoSuchPointView), {view}));
    }
    const std::uint64_t begin = (start_ / Granularity() + view) * Granularity();
    const std::uint64_t first = FirstPointFrom(begin);
    const std::uint64_t last = FirstPointFrom(begin + Granularity());
    if (first == last) {
        return LasPointView({}, 0, first, 0, recordLength_, frame_);
    }
    const std::uint64_t firstByte = start_ + first * recordLength_;
    const std::uint64_t length = start_ + last * recordLength_ - begin;
    MappedView mapped;
    if (const SystemError error = file_.Map(begin, length, !readOnly_, mapped)) {
        throw LDataError(FormatText(Text(text::kPointMappingFailed), {SystemErrorText(error)}));
    }
    return LasPointView(std::move(mapped), firstByte - begin, first, last - first, recordLength_, frame_);
}

}  // namespace orvex
