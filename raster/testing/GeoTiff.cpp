#include "raster/testing/GeoTiff.h"

#include <cpl_conv.h>
#include <gtest/gtest.h>
#include <ogr_spatialref.h>

#include "crs/GdalSetup.h"
#include "support/GdalRaii.h"
#include "support/Text.h"

namespace orvex::testing {

std::wstring GeoTiff::Write(const TemporaryFolder& folder, const std::wstring& name) const {
    EXPECT_TRUE(EnsureGdal());
    std::wstring path = folder.Name(name);
    const GdalList list(options);
    const GdalDataset dataset(GDALCreate(GDALGetDriverByName("GTiff"), ToUtf8(path).c_str(), width, height,
                                         bands, type, const_cast<char**>(list.Get())));
    EXPECT_TRUE(dataset) << CPLGetLastErrorMsg();
    if (!crs.empty()) {
        OGRSpatialReference reference;
        EXPECT_EQ(reference.SetFromUserInput(crs.c_str()), OGRERR_NONE);
        GDALSetSpatialRef(dataset.get(), OGRSpatialReference::ToHandle(&reference));
    }
    if (transform) {
        auto numbers = *transform;
        GDALSetGeoTransform(dataset.get(), numbers.data());
    }
    if (change) {
        change(dataset.get());
    }
    return path;
}

}  // namespace orvex::testing
