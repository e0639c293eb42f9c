#include "raster/RasterColors.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "raster/TiffPhotometric.h"

namespace orvex {
namespace {

// Codes of RasterProperties; the kinds are those of the TIFF tag.
enum Model { kBlackAndWhite = 0, kGrayscale = 1, kColor = 2 };
enum Kind {
    kWhiteIsZero = 0,
    kBlackIsZero = 1,
    kRgb = 2,
    kPalette = 3,
    kTransparencyMask = 4,
    kUnknown = -1
};

constexpr int kMostColorsCompared = 65536;

struct Table {
    bool isGray = true;
    bool beginsWhite = false;
};

Table Compare(GDALColorTableH colors) {
    Table table;
    const int count = std::min(GDALGetColorEntryCount(colors), kMostColorsCompared);
    for (int i = 0; i < count; ++i) {
        const GDALColorEntry& entry = *GDALGetColorEntry(colors, i);
        table.isGray = table.isGray && entry.c1 == entry.c2 && entry.c2 == entry.c3;
        table.beginsWhite = table.beginsWhite || (i == 0 && entry.c1 == 255);
    }
    return table;
}

bool IsWhiteZero(GDALDatasetH dataset) {
    const char* item = GDALGetMetadataItem(dataset, "MINISWHITE", "IMAGE_STRUCTURE");
    return item != nullptr && std::strcmp(item, "YES") == 0;
}

bool IsTiff(const RasterProperties& properties) {
    return properties.driver == L"GTiff" || properties.driver == L"COG";
}

/// A palette of GDAL's is not always one of the file's: it gives one to every image of one bit, and to one
/// whose zero is white.
void ReadPalette(GDALDatasetH dataset, GDALRasterBandH band, RasterProperties& properties) {
    GDALColorTableH colors = GDALGetRasterColorTable(band);
    const Table table = colors == nullptr ? Table{} : Compare(colors);
    const bool isBilevel = properties.bitsPerBand == 1 && table.isGray;
    properties.colorModel = isBilevel                           ? kBlackAndWhite
                            : table.isGray && colors != nullptr ? kGrayscale
                                                                : kColor;
    if (IsWhiteZero(dataset) || (isBilevel && table.beginsWhite)) {
        properties.rasterKind = kWhiteIsZero;
    } else {
        properties.rasterKind = isBilevel ? kBlackIsZero : kPalette;
    }
}

void ReadInterpretation(GDALDatasetH dataset, GDALRasterBandH band, RasterProperties& properties) {
    switch (GDALGetRasterColorInterpretation(band)) {
        case GCI_PaletteIndex:
            ReadPalette(dataset, band, properties);
            break;
        case GCI_GrayIndex:
            properties.colorModel = properties.bitsPerBand == 1 ? kBlackAndWhite : kGrayscale;
            properties.rasterKind = IsWhiteZero(dataset) ? kWhiteIsZero : kBlackIsZero;
            break;
        case GCI_RedBand:
        case GCI_GreenBand:
        case GCI_BlueBand:
            properties.colorModel = kColor;
            properties.rasterKind = kRgb;
            break;
        case GCI_HueBand:
        case GCI_SaturationBand:
        case GCI_LightnessBand:
        case GCI_CyanBand:
        case GCI_MagentaBand:
        case GCI_YellowBand:
        case GCI_BlackBand:
        case GCI_YCbCr_YBand:
        case GCI_YCbCr_CbBand:
        case GCI_YCbCr_CrBand:
            properties.colorModel = kColor;
            break;
        default:
            break;
    }
}

/// GDAL keeps to itself what some TIFFs are: it shows a transparency mask as an image of one bit, or without
/// interpretation, as it does with others.
bool MayMeanMore(const RasterProperties& properties) {
    return IsTiff(properties) &&
           (properties.rasterKind == kUnknown || properties.colorModel == kBlackAndWhite);
}

void ReadTag(const std::wstring& path, RasterProperties& properties) {
    const auto tag = ReadTiffPhotometric(path);
    if (!tag || *tag < kWhiteIsZero || *tag > kTransparencyMask) {
        return;
    }
    properties.rasterKind = *tag;
    if (properties.colorModel < 0 && *tag <= kBlackIsZero) {
        properties.colorModel = properties.bitsPerBand == 1 ? kBlackAndWhite : kGrayscale;
    }
}

}  // namespace

void ReadColors(GDALDatasetH dataset, const std::wstring& path, RasterProperties& properties) {
    if (properties.bandDetails.empty()) {
        return;
    }
    ReadInterpretation(dataset, GDALGetRasterBand(dataset, 1), properties);
    if (MayMeanMore(properties)) {
        ReadTag(path, properties);
    }
}

}  // namespace orvex
