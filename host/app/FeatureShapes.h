#pragma once
#include <QPolygonF>
#include <QRectF>
#include <functional>
#include <string>
#include <vector>

#include "host/app/Thumbnails.h"

namespace orvex {

/// The shapes of a shapefile as the map draws them, in coordinates of its CRS.
struct FeatureShapes {
    /// Lines, or the rings of a polygon.
    struct Shape {
        std::vector<QPolygonF> parts;
        QRectF bounds;
    };

    QPolygonF points;
    std::vector<Shape> lines;
    std::vector<Shape> polygons;
    std::size_t vertices = 0;  ///< of all shapes
    bool isCut = false;        ///< the file has more than these
};

/// Reads the shapes of a shapefile, at most `limits.vertices` vertices: of a larger file, vertices that lie
/// close together are left out, then features. `isCancelled` is asked between features; what is cancelled has
/// neither shapes nor a problem. Nothing is written. Never throws, except for want of memory. From any
/// thread.
Thumbnail ReadShapes(const std::wstring& path, const std::function<bool()>& isCancelled,
                     const ThumbnailLimits& limits = {});

}  // namespace orvex
