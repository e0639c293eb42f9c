#include "raster/RasterBands.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "raster/GdalMetadata.h"
#include "raster/GeoKeys.h"
#include "raster/TiffStructure.h"

namespace orvex {
namespace {

// Numbers up to here round to a finite float. Decimal texts of the limits of a float lie slightly beyond
// them.
constexpr double kFiniteAsFloat = 0x1.ffffffp127;

/// No-data value as stated in the file; nullopt if none.
std::optional<double> BandNodata(GDALRasterBandH band) {
    int isStated = 0;
    double value = 0;
    switch (GDALGetRasterDataType(band)) {
        case GDT_Int64:
            value = static_cast<double>(GDALGetRasterNoDataValueAsInt64(band, &isStated));
            break;
        case GDT_UInt64:
            value = static_cast<double>(GDALGetRasterNoDataValueAsUInt64(band, &isStated));
            break;
        default:
            value = GDALGetRasterNoDataValue(band, &isStated);
    }
    return isStated != 0 ? std::optional(value) : std::nullopt;
}

using GetLimit = double(CPL_STDCALL*)(GDALRasterBandH, int*);

/// A minimum or maximum stated in the file; nullopt if none (GDAL's function then returns the limit of the
/// data type).
std::optional<double> Limit(GDALRasterBandH band, const char* item, GetLimit get, bool onlyStated) {
    if (const auto found = MetadataNumber<double>(band, item, nullptr)) {
        return found;
    }
    int isStated = 0;
    const double value = onlyStated ? 0 : get(band, &isStated);
    return isStated != 0 ? std::optional(value) : std::nullopt;
}

RasterBandProperties Describe(GDALRasterBandH band, bool onlyStated, const GeoKeyFacts* known) {
    RasterBandProperties properties;
    properties.dataType = GdalText(GDALGetDataTypeName(GDALGetRasterDataType(band)));
    properties.bits = BandBits(band);
    GDALGetBlockSize(band, &properties.blockWidth, &properties.blockHeight);
    properties.colorInterpretation =
        GdalText(GDALGetColorInterpretationName(GDALGetRasterColorInterpretation(band)));
    properties.nodata = BandNodata(band);
    properties.minimum = Limit(band, "STATISTICS_MINIMUM", GDALGetRasterMinimum, onlyStated);
    properties.maximum = Limit(band, "STATISTICS_MAXIMUM", GDALGetRasterMaximum, onlyStated);
    properties.overviews = onlyStated ? 0 : GDALGetOverviewCount(band);
    properties.description = GdalText(GDALGetDescription(band));
    properties.unit = known != nullptr ? known->verticalUnit : GdalText(GDALGetRasterUnitType(band));
    int isStated = 0;
    const double scale = GDALGetRasterScale(band, &isStated);
    properties.scale = isStated != 0 ? scale : 1;
    const double offset = GDALGetRasterOffset(band, &isStated);
    properties.offset = isStated != 0 ? offset : 0;
    return properties;
}

// Codes of RasterEssentials::colorModel, and of rasterKind, which are those of the TIFF tag.
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

struct PaletteFacts {
    bool isGray = true;
    bool beginsWhite = false;
};

PaletteFacts ExaminePalette(GDALColorTableH colors) {
    PaletteFacts palette;
    const int count = std::min(GDALGetColorEntryCount(colors), kMostColorsCompared);
    for (int i = 0; i < count; ++i) {
        const GDALColorEntry& entry = *GDALGetColorEntry(colors, i);
        palette.isGray = palette.isGray && entry.c1 == entry.c2 && entry.c2 == entry.c3;
        palette.beginsWhite = palette.beginsWhite || (i == 0 && entry.c1 == 255);
    }
    return palette;
}

bool IsMinIsWhite(GDALDatasetH dataset) {
    const char* item = GDALGetMetadataItem(dataset, "MINISWHITE", "IMAGE_STRUCTURE");
    return item != nullptr && std::strcmp(item, "YES") == 0;
}

bool IsTiff(const RasterProperties& properties) {
    return properties.driver == L"GTiff" || properties.driver == L"COG";
}

/// GDAL also reports a palette for every image of one bit, and for an image whose zero is white; the file
/// itself has none then.
void ReadPalette(GDALDatasetH dataset, GDALRasterBandH band, RasterProperties& properties) {
    GDALColorTableH colors = GDALGetRasterColorTable(band);
    const PaletteFacts palette = colors == nullptr ? PaletteFacts{} : ExaminePalette(colors);
    const bool isBilevel = properties.bitsPerBand == 1 && palette.isGray;
    properties.colorModel = isBilevel                             ? kBlackAndWhite
                            : palette.isGray && colors != nullptr ? kGrayscale
                                                                  : kColor;
    if (IsMinIsWhite(dataset) || (isBilevel && palette.beginsWhite)) {
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
            properties.rasterKind = IsMinIsWhite(dataset) ? kWhiteIsZero : kBlackIsZero;
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

/// True where only the tag tells: GDAL reports a transparency mask as an image of one bit or as undefined.
bool NeedsTiffTag(const RasterProperties& properties) {
    return IsTiff(properties) &&
           (properties.rasterKind == kUnknown || properties.colorModel == kBlackAndWhite);
}

void ReadPhotometricTag(const std::wstring& path, RasterProperties& properties) {
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

std::optional<double> BandNodataAsStored(GDALRasterBandH band) {
    const std::optional<double> value = BandNodata(band);
    const bool isRounded =
        value && GDALGetRasterDataType(band) == GDT_Float32 && std::abs(*value) < kFiniteAsFloat;
    return isRounded ? static_cast<double>(static_cast<float>(*value)) : value;
}

int BandBits(GDALRasterBandH band) {
    return MetadataNumber<int>(band, "NBITS", "IMAGE_STRUCTURE")
        .value_or(GDALGetDataTypeSizeBits(GDALGetRasterDataType(band)));
}

void ReadBands(GDALDatasetH dataset, bool onlyStated, const GeoKeyFacts* known,
               RasterProperties& properties) {
    properties.bands = GDALGetRasterCount(dataset);
    const int described = std::min(properties.bands, static_cast<int>(kMostBandsDescribed));
    std::vector<RasterBandProperties> bands;
    for (int number = 1; number <= described; ++number) {
        GDALRasterBandH band = GDALGetRasterBand(dataset, number);
        if (band == nullptr) {
            break;
        }
        bands.push_back(Describe(band, onlyStated, known));
    }
    if (!bands.empty()) {
        properties.bitsPerBand = bands.front().bits;
        properties.overviews = bands.front().overviews;
    }
    properties.bandDetails = std::move(bands);
}

void ReadColors(GDALDatasetH dataset, const std::wstring& path, RasterProperties& properties) {
    if (properties.bandDetails->empty()) {
        return;
    }
    ReadInterpretation(dataset, GDALGetRasterBand(dataset, 1), properties);
    if (NeedsTiffTag(properties)) {
        ReadPhotometricTag(path, properties);
    }
}

}  // namespace orvex
