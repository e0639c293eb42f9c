#include "host/companion/CompanionPicture.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "support/Format.h"
#include "support/LDataError.h"
#include "support/QtText.h"
#include "support/TemporaryFile.h"
#include "support/Text.h"

namespace orvex {
namespace {

using Rectangle = std::array<double, 4>;

Rectangle RectangleOf(const LasExtent& extent) {
    return {extent.minimum[0], extent.minimum[1], extent.maximum[0], extent.maximum[1]};
}

bool IsUsable(const Rectangle& rectangle) {
    return std::ranges::all_of(rectangle, [](double value) { return std::isfinite(value); }) &&
           rectangle[0] <= rectangle[2] && rectangle[1] <= rectangle[3];
}

/// What the picture shows: of octants all, of points their extent, as far as the header knows it.
Rectangle RectangleOf(const QvrFile& qvr, const CompanionOptions& options) {
    const Rectangle stated = RectangleOf(qvr.Frame().extent);
    const bool isStated = IsUsable(stated) && !options.entries;
    return options.extent.value_or(isStated ? stated : RectangleOf(qvr.RootBox()));
}

std::vector<PointRange> RangesOf(const QvrFile& qvr, const CompanionOptions& options) {
    if (!options.extent) {
        return {{0, std::min(options.points, qvr.PointCount())}};
    }
    constexpr double kFar = std::numeric_limits<double>::infinity();
    const Rectangle& view = *options.extent;
    return qvr.Select({{view[0], view[1], -kFar}, {view[2], view[3], kFar}}, options.points);
}

std::uint64_t CountOf(const std::vector<PointRange>& ranges) {
    std::uint64_t count = 0;
    for (const PointRange& range : ranges) {
        count += range.count;
    }
    return count;
}

class Drawer {
  public:
    Drawer(const QvrFile& qvr, const CompanionOptions& options, Kst::ProgressIf& progress)
        : qvr_(qvr),
          options_(options),
          progress_(progress),
          ranges_(RangesOf(qvr, options)),
          count_(CountOf(ranges_)),
          rectangle_(RectangleOf(qvr, options)) {}

    CompanionPicture Draw() {
        CompanionPicture picture;
        picture.path = options_.output;
        if (picture.path.empty()) {
            picture.path = PictureNameOf(qvr_.Path());
        }
        if (count_ != 0 && IsUsable(rectangle_)) {
            options_.entries ? DrawEntries(picture) : DrawPoints(picture);
        }
        return picture;
    }

  private:
    std::uint16_t LastGeneration() const {
        const std::uint64_t last = ranges_.back().first + ranges_.back().count - 1;
        return std::ranges::upper_bound(qvr_.Entries(), last, {}, &QvrEntry::first)[-1].generation;
    }

    void DrawEntries(CompanionPicture& picture) const {
        const std::uint16_t last = LastGeneration();
        std::vector<Outline> outlines;
        std::uint64_t points = 0;
        for (const PointRange& range : ranges_) {
            auto entry = std::ranges::lower_bound(qvr_.Entries(), range.first, {}, &QvrEntry::first);
            for (; entry != qvr_.Entries().end() && entry->first < range.first + range.count; ++entry) {
                outlines.push_back({RectangleOf(qvr_.BoxOf(*entry)),
                                    static_cast<float>(entry->generation) / std::max<float>(last, 1)});
                points += entry->count;
            }
        }
        picture.image = DrawOutlines(rectangle_, options_.width, outlines);
        picture.words = FormatText(Text(text::kCompanionShownRuns),
                                   {picture.path, outlines.size(), points, qvr_.PointCount(),
                                    LastGeneration(), qvr_.Entries().back().generation});
    }

    void DrawPoints(CompanionPicture& picture) {
        PointPicture drawn(rectangle_, options_.width, std::min(count_, options_.points));
        progress_.SetRange(count_);
        std::uint64_t done = 0;
        for (const PointRange& range : ranges_) {
            if (!DrawRange(drawn, range, done)) {
                return;
            }
            done += range.count;
        }
        const bool isHeight = options_.colour == PointColour::Height;
        picture.image = drawn.Image(options_.colour);
        picture.words = FormatText(Text(text::kCompanionShown),
                                   {picture.path, drawn.PointCount(), qvr_.PointCount(), LastGeneration(),
                                    qvr_.Entries().back().generation,
                                    Text(isHeight ? text::kCompanionByHeight : text::kCompanionByClass),
                                    drawn.CellColumns(), drawn.CellRows(), 100 * drawn.CoveredCells()});
    }

    /// False if cancelled.
    bool DrawRange(PointPicture& drawn, const PointRange& range, std::uint64_t before) {
        const std::size_t length = qvr_.RecordLength();
        for (std::uint64_t done = 0; done < range.count;) {
            if (progress_.IsCancelled()) {
                return false;
            }
            const PointRange part{range.first + done, std::min(qvr_.PointsPerRead(), range.count - done)};
            records_.resize(part.count * length);
            qvr_.Read(part, records_);
            for (std::span<const std::byte> rest = records_; !rest.empty(); rest = rest.subspan(length)) {
                drawn.Add(qvr_.PositionOf(rest), qvr_.ClassificationOf(rest));
            }
            done += part.count;
            progress_.SetPosition(before + done);
        }
        return true;
    }

    const QvrFile& qvr_;
    const CompanionOptions& options_;
    Kst::ProgressIf& progress_;
    std::vector<PointRange> ranges_;
    std::uint64_t count_;
    Rectangle rectangle_;
    std::vector<std::byte> records_;
};

}  // namespace

CompanionPicture DrawCompanion(const QvrFile& qvr, const CompanionOptions& options,
                               Kst::ProgressIf& progress) {
    return Drawer(qvr, options, progress).Draw();
}

void SavePicture(const QImage& image, const std::wstring& path) {
    TemporaryFile file(path);
    ForgetStreamError();
    SystemError error = 0;
    if (!image.save(ToQString(file.Path()), "PNG")) {
        error = LastStreamError();
    }
    if (error == 0) {
        error = file.Commit();
    }
    if (error != 0) {
        throw LDataError(FormatText(Text(text::kListExportFailed), {path, SystemErrorText(error)}));
    }
}

}  // namespace orvex
