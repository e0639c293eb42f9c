#pragma once
// Photo layers on the disk: shapefiles of points with the fields TimeUTC, Latitude, Longitude, Altitude,
// MasterTick, CameraID and PhotoPath.
#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/app/RasterJobs.h"
#include "orvexcommon/HostInterfaces.h"
#include "support/ProgressIf.h"

namespace orvex {

/// A photo's record in a photo layer.
struct PhotoRecord {
    std::wstring path;  ///< full
    /// Longitude, latitude (degrees, WGS 84) and altitude (metres); nullopt for a photo without a position,
    /// which has no place in the layer.
    std::optional<std::array<double, 3>> position;
    std::optional<double> heading;  ///< degrees, clockwise from north; not in the layer
    std::wstring timeUtc;           ///< empty if unknown, as the next
    std::wstring camera;
    double masterTick = 0;  ///< adjusted GPS seconds; 0 if unknown
};

/// How photos get into a layer.
struct PhotoTarget {
    std::wstring path;     ///< full path of the .shp
    bool append = false;   ///< to the layer that is there; else it is made, under a free name
    bool replace = false;  ///< photos that the layer has get new records; else they are left out
};

/// What became of photos that were to be written.
struct PhotoLayerResult {
    std::wstring path;     ///< the .shp, which may have got a number behind its name; empty: none was written
    bool stopped = false;  ///< nothing was written
    std::size_t added = 0;
    std::size_t replaced = 0;
    std::vector<FileFailure> notWritten;  ///< photos without a record of their own, and why
    std::vector<FileFailure> shortened;   ///< photos with a text that is longer than its field, and which
};

/// Writes photos to a layer, under a temporary name until it is complete; a layer that was there stays until
/// then, and its other fields and records are kept. The range of `progress` is the number of records. Throws
/// LDataError if the layer cannot be read or written; the disk is then as before. From any thread.
PhotoLayerResult WritePhotoLayer(const std::vector<PhotoRecord>& photos, const PhotoTarget& target,
                                 Kst::ProgressIf& progress);

/// Opens a shapefile as the project's object gives it to the component. Throws LDataError if it cannot be
/// read.
std::unique_ptr<OrvexLayer> OpenPhotoLayer(const std::wstring& path);

}  // namespace orvex
