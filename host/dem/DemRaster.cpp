#include "host/dem/DemRaster.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/dem/HostGdal.h"
#include "raster/RasterBands.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"

namespace orvex {
namespace {

/// How many pixels of a side whole blocks take when at most `room` shall: at least one block.
int WholeBlocks(int side, int block, std::int64_t room) {
    if (room >= side) {
        return side;
    }
    return static_cast<int>(std::max<std::int64_t>(room / block, 1) * block);
}

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
// No length in any unit and no place in any CRS; programs write the ends of a type's range where they have no
// height.
constexpr double kLargestNumber = 1e30;
// Bytes of a block.
constexpr double kLargestBlock = 512e6;

bool IsInteger(GDALDataType type) {
    return GDALDataTypeIsInteger(type) != 0;
}

}  // namespace

RasterWindows::RasterWindows(Size raster, Size block, int mostPixels) : raster_(raster) {
    const int blockWidth = std::clamp(block.width, 1, raster.width);
    const int blockHeight = std::clamp(block.height, 1, raster.height);
    group_.width = std::min(raster.width, WholeBlocks(raster.width, blockWidth, mostPixels / blockHeight));
    // Several rows of blocks only where a row leaves room.
    group_.height =
        group_.width < raster.width
            ? blockHeight
            : std::min(raster.height, WholeBlocks(raster.height, blockHeight, mostPixels / group_.width));
    part_.width = std::min(group_.width, mostPixels);
    part_.height = std::clamp(mostPixels / part_.width, 1, group_.height);
}

std::optional<RasterWindow> RasterWindows::Next() {
    if (groupY_ >= raster_.height) {
        return std::nullopt;
    }
    const int groupWidth = std::min(group_.width, raster_.width - groupX_);
    const int groupHeight = std::min(group_.height, raster_.height - groupY_);
    RasterWindow window{groupX_ + x_, groupY_ + y_, std::min(part_.width, groupWidth - x_),
                        std::min(part_.height, groupHeight - y_), false};
    x_ += window.width;
    if (x_ < groupWidth) {
        return window;
    }
    x_ = 0;
    y_ += window.height;
    if (y_ < groupHeight) {
        return window;
    }
    y_ = 0;
    window.endsBlocks = true;
    groupX_ += groupWidth;
    if (groupX_ >= raster_.width) {
        groupX_ = 0;
        groupY_ += groupHeight;
    }
    return window;
}

DemRaster::DemRaster(const std::wstring& path) : path_(path) {
    if (KindOf(path) == FileKind::Missing) {
        throw LDataError(FormatText(Text(text::kDemFileMissing), {path}));
    }
    const GdalErrorScope errors;
    const NoNetwork noNetwork;
    std::wstring cause;
    dataset_ = OpenRasterFile(path, cause);
    if (!dataset_) {
        Fail(text::kDemOpenFailed, cause);
    }
    if (dataset_->GetRasterCount() == 0) {
        Fail(text::kDemNoBands, {});
    }
    band_ = dataset_->GetRasterBand(1);
    if (GDALDataTypeIsComplex(band_->GetRasterDataType()) != 0) {
        Fail(text::kDemComplexRefused, {});
    }
    RequireSmallBlocks();
    FindPlace();
    FindNoData();
    factor_ = band_->GetScale();
    term_ = band_->GetOffset();
}

// A block is decoded as a whole, however little of it is asked for.
void DemRaster::RequireSmallBlocks() const {
    RasterWindows::Size block;
    band_->GetBlockSize(&block.width, &block.height);
    const char* const interleave = dataset_->GetMetadataItem("INTERLEAVE", "IMAGE_STRUCTURE");
    const bool holdsAllBands = interleave != nullptr && EQUAL(interleave, "PIXEL");
    const double bytes = static_cast<double>(block.width) * block.height *
                         GDALGetDataTypeSizeBytes(band_->GetRasterDataType()) *
                         (holdsAllBands ? dataset_->GetRasterCount() : 1);
    if (bytes > kLargestBlock) {
        throw LDataError(
            FormatText(Text(text::kDemBlocksTooLarge), {path_, bytes * 1e-6, kLargestBlock * 1e-6}));
    }
}

RasterWindows::Size DemRaster::Size() const {
    return {band_->GetXSize(), band_->GetYSize()};
}

RasterWindows DemRaster::StartReading(int mostPixels) {
    impossible_ = 0;
    RasterWindows::Size block;
    band_->GetBlockSize(&block.width, &block.height);
    return {Size(), block, mostPixels};
}

void DemRaster::FindPlace() {
    bool isKnown = dataset_->GetGeoTransform(transform_.data()) == CE_None;
    crs_ = dataset_->GetSpatialRef();
    if (!isKnown && dataset_->GetGCPCount() > 0) {
        // Control points that lie as evenly as a raster does are another way to say the same.
        isKnown = GDALGCPsToGeoTransform(dataset_->GetGCPCount(), dataset_->GetGCPs(), transform_.data(),
                                         FALSE) != 0;
        crs_ = dataset_->GetGCPSpatialRef();
    }
    const double area = transform_[1] * transform_[5] - transform_[2] * transform_[4];
    const double side = std::max(band_->GetXSize(), band_->GetYSize());
    const bool isNear = std::ranges::all_of(
        transform_, [side](double term) { return std::abs(term) * side <= kLargestNumber; });
    if (!isKnown || !isNear || !std::isfinite(area) || area == 0) {
        Fail(text::kDemNoGeoreference, {});
    }
    if (crs_ != nullptr && crs_->IsEmpty()) {
        crs_ = nullptr;
    }
}

void DemRaster::FindNoData() {
    noData_ = BandNodataAsStored(band_);
    const int flags = band_->GetMaskFlags();
    hasMask_ = flags != GMF_ALL_VALID && flags != GMF_NODATA;
}

void DemRaster::MultiplyHeights(double factor) {
    factor_ *= factor;
    term_ *= factor;
}

bool DemRaster::HasFractions() const {
    return !IsInteger(band_->GetRasterDataType()) || factor_ != std::floor(factor_) ||
           term_ != std::floor(term_);
}

bool DemRaster::IsComplete() const {
    return !noData_ && !hasMask_ && IsInteger(band_->GetRasterDataType());
}

int DemRaster::Coverage(const RasterWindow& window) const {
    return band_->GetDataCoverageStatus(window.x, window.y, window.width, window.height, 0);
}

bool DemRaster::Read(const RasterWindow& window, std::vector<double>& heights) {
    const GdalErrorScope errors;
    const NoNetwork noNetwork;
    const int coverage = Coverage(window);
    if (coverage == GDAL_DATA_COVERAGE_STATUS_EMPTY) {
        return false;
    }
    heights.resize(window.Pixels());
    if (band_->RasterIO(GF_Read, window.x, window.y, window.width, window.height, heights.data(),
                        window.width, window.height, GDT_Float64, 0, 0, nullptr) != CE_None) {
        Fail(text::kDemReadFailed, FailureReason(errors));
    }
    if ((coverage & GDAL_DATA_COVERAGE_STATUS_EMPTY) != 0) {
        DropAbsent(window, heights);
    }
    DropNoData(heights);
    if (hasMask_) {
        DropMasked(window, heights);
    }
    Scale(heights);
    DropImpossible(heights);
    if (window.endsBlocks) {
        // Nobody asks for these blocks again; kept, they would fill the cache that layers are drawn from.
        band_->FlushCache(false);
    }
    return true;
}

// A block that was never written reads as zeros, which are no heights.
void DemRaster::DropAbsent(const RasterWindow& window, std::vector<double>& heights) const {
    const auto width = static_cast<std::size_t>(window.width);
    RasterWindows::Size block;
    band_->GetBlockSize(&block.width, &block.height);
    RasterWindow part;
    for (int y = 0; y < window.height; y += part.height) {
        part.y = window.y + y;
        part.height = std::min(window.height - y, block.height - part.y % block.height);
        for (int x = 0; x < window.width; x += part.width) {
            part.x = window.x + x;
            part.width = std::min(window.width - x, block.width - part.x % block.width);
            if (Coverage(part) != GDAL_DATA_COVERAGE_STATUS_EMPTY) {
                continue;
            }
            for (int row = y; row < y + part.height; ++row) {
                double* const first = heights.data() + static_cast<std::size_t>(row) * width + x;
                std::fill_n(first, part.width, kNone);
            }
        }
    }
}

void DemRaster::DropNoData(std::vector<double>& heights) const {
    if (noData_) {
        const double noData = *noData_;
        for (double& height : heights) {
            height = height == noData ? kNone : height;
        }
    }
}

void DemRaster::DropImpossible(std::vector<double>& heights) {
    std::uint64_t impossible = 0;
    for (double& height : heights) {
        const bool isPossible = std::abs(height) <= kLargestNumber;
        impossible += !isPossible && !std::isnan(height) ? 1U : 0U;
        height = isPossible ? height : kNone;
    }
    impossible_ += impossible;
}

void DemRaster::DropMasked(const RasterWindow& window, std::vector<double>& heights) {
    const GdalErrorScope errors;
    GDALRasterBand* const band = band_->GetMaskBand();
    mask_.resize(heights.size());
    if (band->RasterIO(GF_Read, window.x, window.y, window.width, window.height, mask_.data(), window.width,
                       window.height, GDT_Byte, 0, 0, nullptr) != CE_None) {
        Fail(text::kDemReadFailed, FailureReason(errors));
    }
    for (std::size_t i = 0; i < heights.size(); ++i) {
        heights[i] = mask_[i] == 0 ? kNone : heights[i];
    }
    if (window.endsBlocks) {
        band->FlushCache(false);
    }
}

void DemRaster::Scale(std::vector<double>& heights) const {
    if (factor_ == 1 && term_ == 0) {
        return;
    }
    for (double& height : heights) {
        height = height * factor_ + term_;
    }
}

void DemRaster::Fail(StringId text, const std::wstring& cause) const {
    std::wstring told = FormatText(Text(text), {path_, cause});
    while (told.ends_with(L' ')) {  // where there is no cause
        told.pop_back();
    }
    throw LDataError(std::move(told));
}

}  // namespace orvex
