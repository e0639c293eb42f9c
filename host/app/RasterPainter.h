#pragma once
#include <QImage>
#include <QPolygonF>
#include <array>
#include <optional>

#include "host/app/Project.h"
#include "host/app/ViewTransform.h"

class QPainter;

namespace orvex {

/// From column and row to world coordinates, as RasterFacts has it; from the extent where the file says no
/// more. None without georeference.
std::optional<std::array<double, 6>> TransformOf(const RasterFacts& raster);

/// The corners of a raster in world coordinates, around it from its first pixel; empty without georeference.
QPolygonF CornersOf(const RasterFacts& raster);

/// Draws the part of a raster's picture that lies within `visible` (pixels of the view) where the raster
/// lies. Nothing without georeference.
void DrawRaster(QPainter& painter, const QImage& picture, const RasterFacts& raster,
                const ViewTransform& view, const QRectF& visible);

}  // namespace orvex
