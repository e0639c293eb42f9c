// What is said of CAD and KML files without loading them.
#include <functional>

#include "host/utilities/CadReader.h"
#include "host/utilities/KmlReader.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/LDataError.h"

using namespace orvex;

namespace {

std::wstring Lines(const std::vector<std::wstring>& sentences) {
    std::wstring lines;
    for (const std::wstring& sentence : sentences) {
        lines += (lines.empty() ? L"" : L"\n") + sentence;
    }
    return lines;
}

bool Answer(const std::function<FeatureInfo()>& read, std::uint64_t& featureCount, tagOrvexExtent& extent,
            OrvexLayerMap& layers, std::wstring& message) {
    featureCount = 0;
    extent = {};
    layers.clear();
    message.clear();
    try {
        const FeatureInfo info = read();
        layers = info.tally.Layers();
        extent = info.tally.Extent();
        featureCount = info.tally.Features();
        message = Lines(info.leftOut);
        return true;
    } catch (...) {
        message = CurrentExceptionText();
        return false;
    }
}

}  // namespace

bool OrvexUtilities::GetDWGInfo(const std::wstring& path, std::uint64_t& featureCount, tagOrvexExtent& extent,
                                OrvexLayerMap& layers, std::wstring& message) {
    return Answer([&] { return ReadCad(path, CadKind::Dwg); }, featureCount, extent, layers, message);
}

bool OrvexUtilities::GetDXFInfo(const std::wstring& path, std::uint64_t& featureCount, tagOrvexExtent& extent,
                                OrvexLayerMap& layers, std::wstring& message) {
    return Answer([&] { return ReadCad(path, CadKind::Dxf); }, featureCount, extent, layers, message);
}

bool OrvexUtilities::GetDGNInfo(const std::wstring& path, std::uint64_t& featureCount, tagOrvexExtent& extent,
                                OrvexLayerMap& layers, std::wstring& message) {
    return Answer([&] { return ReadCad(path, CadKind::Dgn); }, featureCount, extent, layers, message);
}

bool OrvexUtilities::GetKMLInfo(const std::wstring& path, std::uint64_t& featureCount, tagOrvexExtent& extent,
                                OrvexLayerMap& layers, std::wstring& message) {
    return Answer([&] { return ReadKml(path); }, featureCount, extent, layers, message);
}

std::wstring OrvexUtilities::OrvexGeometryToString(std::int32_t shapeType) {
    switch (shapeType) {
        case 0:
            return L"Null";
        case 1:
            return L"Point";
        case 3:
            return L"Polyline";
        case 5:
            return L"Polygon";
        case 8:
            return L"Multipoint";
        case 11:
            return L"PointZ";
        case 13:
            return L"PolylineZ";
        case 15:
            return L"PolygonZ";
        case 18:
            return L"MultipointZ";
        case 21:
            return L"PointM";
        case 23:
            return L"PolylineM";
        case 25:
            return L"PolygonM";
        case 28:
            return L"MultipointM";
        case 31:
            return L"MultiPatch";
        default:
            return L"Unknown";
    }
}
