#pragma once
#include <ogr_spatialref.h>

#include <string>

namespace orvex {

/// Reads a WKT of any dialect. False when it is empty, longer than any CRS is, or no WKT. Call it inside a
/// GdalErrorScope.
bool ImportWkt(const std::string& wkt, OGRSpatialReference& crs);

/// The CRS of an EPSG code. False for a code that PROJ's database does not have. Call it inside a
/// GdalErrorScope.
bool ImportEpsg(long code, OGRSpatialReference& crs);

/// A compound CRS that has a code, with its parts as PROJ's database has them: WKT2 gives the code of the
/// whole only. Any other CRS as it is.
OGRSpatialReference WithCodedParts(const OGRSpatialReference& crs);

/// The horizontal part of a compound CRS, else the CRS itself; empty for a vertical CRS.
OGRSpatialReference HorizontalPart(const OGRSpatialReference& crs);

/// The geographic CRS that a projected or geographic one stands on; empty when there is none.
OGRSpatialReference GeographicPart(const OGRSpatialReference& crs);

/// The node of the vertical part, whatever dialect the WKT was in; null when there is none.
const OGR_SRSNode* VerticalNode(const OGRSpatialReference& crs);

/// EPSG code of the CRS (null) or of a node ("PROJCS|UNIT"); 0 when it has none, or one of another authority.
long EpsgCode(const OGRSpatialReference& crs, const char* node = nullptr);

}  // namespace orvex
