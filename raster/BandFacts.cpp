#include "raster/BandFacts.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace orvex {
namespace {

// Up to here numbers become finite ones of single precision. Texts of few digits name its limits by numbers a
// little beyond them.
constexpr double kFiniteAsSingle = 0x1.ffffffp127;

}  // namespace

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

std::optional<double> BandNodataAsStored(GDALRasterBandH band) {
    const std::optional<double> value = BandNodata(band);
    const bool isRounded =
        value && GDALGetRasterDataType(band) == GDT_Float32 && std::abs(*value) < kFiniteAsSingle;
    return isRounded ? static_cast<double>(static_cast<float>(*value)) : value;
}

int BandBits(GDALRasterBandH band) {
    int bits = GDALGetDataTypeSizeBits(GDALGetRasterDataType(band));
    if (const char* stated = GDALGetMetadataItem(band, "NBITS", "IMAGE_STRUCTURE"); stated != nullptr) {
        std::from_chars(stated, stated + std::strlen(stated), bits);
    }
    return bits;
}

}  // namespace orvex
