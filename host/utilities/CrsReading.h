#pragma once
#include <ogr_spatialref.h>

#include <string>

namespace orvex {

/// Reads a WKT of any dialect. False if it is empty, no WKT, or longer than 1 MiB. Call it inside a
/// GdalErrorScope.
bool ImportWkt(const std::string& wkt, OGRSpatialReference& crs);

/// Makes the CRS of an EPSG code. False for a code that PROJ's database lacks. Call it inside a
/// GdalErrorScope.
bool ImportEpsg(long code, OGRSpatialReference& crs);

/// A compound CRS with an EPSG code as PROJ's database has it, since WKT2 gives no codes for its parts; any
/// other CRS unchanged.
OGRSpatialReference WithCodedParts(const OGRSpatialReference& crs);

/// Horizontal part of a compound CRS, else the CRS itself; empty for a vertical CRS.
OGRSpatialReference HorizontalPart(const OGRSpatialReference& crs);

/// Base geographic CRS of a projected CRS, or the geographic CRS itself; empty if there is none.
OGRSpatialReference GeographicPart(const OGRSpatialReference& crs);

/// Node of the vertical part, for any dialect of WKT; null if there is none.
const OGR_SRSNode* VerticalNode(const OGRSpatialReference& crs);

/// EPSG code of the CRS, or of its node `node` ("PROJCS|UNIT"); 0 if there is none or it is another
/// authority's.
long EpsgCode(const OGRSpatialReference& crs, const char* node = nullptr);

}  // namespace orvex
