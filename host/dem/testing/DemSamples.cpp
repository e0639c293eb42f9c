#include "host/dem/testing/DemSamples.h"

#include <cpl_conv.h>
#include <cpl_string.h>
#include <gdal_priv.h>

#include "host/dem/HostGdal.h"
#include "support/Text.h"

namespace orvex::testing {
namespace {

/// A mask inside the file that hides the first pixel.
bool WriteMask(GDALDataset& dataset) {
    const CPLConfigOptionSetter inside("GDAL_TIFF_INTERNAL_MASK", "YES", false);
    GByte hidden = 0;
    return dataset.CreateMaskBand(GMF_PER_DATASET) == CE_None &&
           dataset.GetRasterBand(1)->GetMaskBand()->Fill(255) == CE_None &&
           dataset.GetRasterBand(1)->GetMaskBand()->RasterIO(GF_Write, 0, 0, 1, 1, &hidden, 1, 1, GDT_Byte, 0,
                                                             0) == CE_None;
}

void Describe(GDALDataset& dataset, const DemSample& sample) {
    GDALRasterBand& band = *dataset.GetRasterBand(1);
    if (sample.transform) {
        auto transform = *sample.transform;
        dataset.SetGeoTransform(transform.data());
    }
    if (!sample.crs.empty()) {
        OGRSpatialReference crs;
        crs.SetFromUserInput(sample.crs.c_str());
        crs.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
        dataset.SetSpatialRef(&crs);
    }
    if (sample.noData) {
        band.SetNoDataValue(*sample.noData);
    }
    if (!sample.unit.empty()) {
        band.SetUnitType(sample.unit.c_str());
    }
    if (sample.scale != 1 || sample.offset != 0) {
        band.SetScale(sample.scale);
        band.SetOffset(sample.offset);
    }
    for (const auto& [key, value] : sample.metadata) {
        dataset.SetMetadataItem(key.c_str(), value.c_str());
    }
}

bool WriteValues(GDALRasterBand& band, const DemSample& sample) {
    std::vector<double> line(static_cast<std::size_t>(sample.width));
    for (int row = 0; row < sample.height; ++row) {
        for (int column = 0; column < sample.width; ++column) {
            line[static_cast<std::size_t>(column)] = sample.value(column, row);
        }
        if (band.RasterIO(GF_Write, 0, row, sample.width, 1, line.data(), sample.width, 1, GDT_Float64, 0, 0,
                          nullptr) != CE_None) {
            return false;
        }
    }
    return true;
}

}  // namespace

bool WriteDem(const std::wstring& path, const DemSample& sample) {
    if (!SetUpGdal()) {
        return false;
    }
    CPLStringList options;
    for (const auto& [key, value] : sample.creationOptions) {
        options.SetNameValue(key.c_str(), value.c_str());
    }
    const GDALDatasetUniquePtr dataset(GetGDALDriverManager()->GetDriverByName("GTiff")->Create(
        ToUtf8(path).c_str(), sample.width, sample.height, 1, sample.type, options.List()));
    if (!dataset) {
        return false;
    }
    Describe(*dataset, sample);
    return (!sample.hidesFirstPixel || WriteMask(*dataset)) &&
           (!sample.value || WriteValues(*dataset->GetRasterBand(1), sample));
}

}  // namespace orvex::testing
