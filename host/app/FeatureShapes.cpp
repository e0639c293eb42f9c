#include "host/app/FeatureShapes.h"

#include <ogrsf_frmts.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>

#include "host/app/HostText.h"
#include "host/app/MapItems.h"
#include "host/dem/HostGdal.h"
#include "support/Files.h"

namespace orvex {

namespace {

constexpr double kBytesPerVertex = 16;  ///< X and Y
constexpr double kStepsAcross = 4096;   ///< of a simplified file
constexpr std::uint64_t kFeaturesPerPoll = 256;

/// Collects the shapes of one file.
class ShapeCollector {
  public:
    /// `tolerance`: vertices that lie closer to the one before are left out; 0 keeps all.
    ShapeCollector(std::size_t mostVertices, double tolerance) : most_(mostVertices), tolerance_(tolerance) {}

    void Add(const OGRGeometry& geometry) {
        const OGRwkbGeometryType type = wkbFlatten(geometry.getGeometryType());
        if (type == wkbPoint) {
            AddPoint({geometry.toPoint()->getX(), geometry.toPoint()->getY()});
        } else if (type == wkbLineString) {
            FeatureShapes::Shape shape;
            AddPart(*geometry.toLineString(), shape);
            Keep(std::move(shape), shapes_->lines);
        } else if (OGR_GT_IsSubClassOf(type, wkbPolygon)) {
            FeatureShapes::Shape shape;
            for (const OGRLinearRing* ring : *geometry.toPolygon()) {
                AddPart(*ring, shape);
            }
            Keep(std::move(shape), shapes_->polygons);
        } else if (OGR_GT_IsSubClassOf(type, wkbGeometryCollection)) {
            for (const OGRGeometry* part : *geometry.toGeometryCollection()) {
                Add(*part);
            }
        } else if (OGR_GT_IsSubClassOf(type, wkbPolyhedralSurface)) {
            for (const OGRPolygon* polygon : *geometry.toPolyhedralSurface()) {
                Add(*polygon);
            }
        }
    }

    bool IsFull() const { return shapes_->vertices >= most_; }
    std::shared_ptr<FeatureShapes> Take() { return std::move(shapes_); }

  private:
    static bool IsPlace(const QPointF& point) {
        return std::abs(point.x()) <= kFarthest && std::abs(point.y()) <= kFarthest;  // NaN is none
    }

    void AddPoint(const QPointF& point) {
        if (IsPlace(point)) {
            shapes_->points.append(point);
            ++shapes_->vertices;
        }
    }

    void AddPart(const OGRSimpleCurve& curve, FeatureShapes::Shape& shape) const {
        QPolygonF part;
        const int count = curve.getNumPoints();
        for (int i = 0; i < count; ++i) {
            const QPointF point(curve.getX(i), curve.getY(i));
            const bool isEnd = i == 0 || i == count - 1;
            if (IsPlace(point) &&
                (isEnd || part.isEmpty() || (point - part.last()).manhattanLength() > tolerance_)) {
                part.append(point);
            }
        }
        if (!part.isEmpty()) {
            shape.parts.push_back(std::move(part));
        }
    }

    void Keep(FeatureShapes::Shape shape, std::vector<FeatureShapes::Shape>& to) {
        QPolygonF all;
        for (const QPolygonF& part : shape.parts) {
            all += part;
        }
        if (!all.isEmpty()) {
            shape.bounds = all.boundingRect();
            shapes_->vertices += static_cast<std::size_t>(all.size());
            to.push_back(std::move(shape));
        }
    }

    const std::size_t most_;
    const double tolerance_;
    std::shared_ptr<FeatureShapes> shapes_ = std::make_shared<FeatureShapes>();
};

double ToleranceFor(const std::wstring& path, OGRLayer& layer, std::size_t mostVertices) {
    const double vertices = static_cast<double>(FileSizeOf(path).value_or(0)) / kBytesPerVertex;
    OGREnvelope box;
    return vertices > static_cast<double>(mostVertices) && layer.GetExtent(&box, FALSE) == OGRERR_NONE
               ? std::max(box.MaxX - box.MinX, box.MaxY - box.MinY) / kStepsAcross
               : 0;
}

}  // namespace

Thumbnail ReadShapes(const std::wstring& path, const std::function<bool()>& isCancelled,
                     const ThumbnailLimits& limits) {
    SetUpGdal();
    const GdalErrorScope errors;
    const NoNetwork noNetwork;
    const std::array<const char*, 2> driver = {"ESRI Shapefile", nullptr};
    const GDALDatasetUniquePtr dataset(
        GDALDataset::Open(ToUtf8(path).c_str(), GDAL_OF_VECTOR, driver.data()));
    OGRLayer* const layer = dataset == nullptr ? nullptr : dataset->GetLayer(0);
    if (layer == nullptr) {
        return {{}, HostText(text::kFeaturesNotDrawn, {FailureReason(errors)}), nullptr};
    }
    ShapeCollector collector(limits.vertices, ToleranceFor(path, *layer, limits.vertices));
    std::uint64_t read = 0;
    bool isCut = false;
    for (const auto& feature : *layer) {
        if (++read % kFeaturesPerPoll == 0 && isCancelled()) {
            return {};
        }
        if (collector.IsFull()) {
            isCut = true;
            break;
        }
        if (const OGRGeometry* geometry = feature->GetGeometryRef(); geometry != nullptr) {
            collector.Add(*geometry);
        }
    }
    auto shapes = collector.Take();
    shapes->isCut = isCut;
    return {{}, isCut ? HostText(text::kFeaturesSimplified) : QString(), std::move(shapes)};
}

}  // namespace orvex
