#pragma once
// What the raster page and the DEM page ask of the shared parts, described.
#include "dialog/page/FileAdder.h"
#include "dialog/page/FileListPageDescription.h"
#include "orvexcommon/AddFilesParams.h"
#include "raster/RasterRow.h"
#include "support/HostObjects.h"

namespace orvex {

/// `params` outlives the page: the pickers open where it says.
FileListPageDescription DescribeRasterListPage(RasterUse use, const AddFilesParams& params);

/// Adds files: how they are read, with objects of the host's.
FileAdder<ListedRaster> MakeRasterAdder(RasterUse use, RasterInformationMaker maker);

/// Reads the files of listed rows again.
FileAdder<ListedRaster> MakeRasterRefresher(RasterUse use, RasterInformationMaker maker);

}  // namespace orvex
