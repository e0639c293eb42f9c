#include "host/utilities/CadReader.h"

#include <fmt/format.h>
#include <ogrsf_frmts.h>

#include <functional>
#include <limits>
#include <optional>

#include "host/utilities/DgnScanner.h"
#include "host/utilities/DwgCheck.h"
#include "host/utilities/DxfScanner.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/GdalAccess.h"
#include "support/GdalErrorScope.h"
#include "support/GdalRaii.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

/// Options of GDAL for the drawing that is read, whatever the process has set.
class ReadingOptions {
  private:
    NoNetwork noNetwork_;
    GdalOption inline_{"DXF_INLINE_BLOCKS", "YES"};
    GdalOption merge_{"DXF_MERGE_BLOCK_GEOMETRIES", "YES"};
    GdalOption block_{"DXF_FEATURE_LIMIT_PER_BLOCK", fmt::format("{}", DxfScanner::kMostOfBlock).c_str()};
    GdalOption headerOnly_{"DXF_HEADER_ONLY", "NO"};
    GdalOption unclosed_{"OGR_GEOMETRY_ACCEPT_UNCLOSED_RING", "YES"};
};

using LayerOf = std::function<std::string(const OGRFeature&)>;

void ReadLayer(OGRLayer& layer, const LayerOf& layerOf, FeatureTally& tally) {
    layer.ResetReading();
    while (const OGRFeatureUniquePtr feature{layer.GetNextFeature()}) {
        tally.Count(layerOf(*feature));
        const OGRGeometry* const geometry = feature->GetGeometryRef();
        if (geometry != nullptr && !geometry->IsEmpty()) {
            OGREnvelope box;
            geometry->getEnvelope(&box);
            tally.Extend(box.MinX, box.MinY);
            tally.Extend(box.MaxX, box.MaxY);
        }
    }
}

std::string LevelOf(const OGRFeature& feature, int field) {
    return fmt::format("Level {}", feature.GetFieldAsInteger(field));
}

/// Layer of a feature as its program shows it.
LayerOf LayerNaming(OGRLayer& layer, CadKind kind) {
    if (kind == CadKind::Dwg) {
        return [name = std::string(layer.GetName())](const OGRFeature&) { return name; };
    }
    const bool isDgn = kind == CadKind::Dgn;
    const int field = layer.GetLayerDefn()->GetFieldIndex(isDgn ? "Level" : "Layer");
    if (field < 0) {
        throw LDataError(Text(text::kCadUnreadable));
    }
    if (isDgn) {
        return [field](const OGRFeature& feature) { return LevelOf(feature, field); };
    }
    return [field](const OGRFeature& feature) { return std::string(feature.GetFieldAsString(field)); };
}

const char* DriverOf(CadKind kind) {
    switch (kind) {
        case CadKind::Dwg:
            return "CAD";
        case CadKind::Dxf:
            return "DXF";
        default:
            return "DGN";
    }
}

/// Cause of an error in a sentence.
std::wstring Reason(const GdalErrorScope& errors) {
    constexpr std::string_view kAtLine = "error at line ";
    const std::string text = errors.Text();
    if (const std::size_t at = text.find(kAtLine); at != std::string::npos) {
        const std::size_t start = at + kAtLine.size();
        const std::size_t end = text.find_first_not_of("0123456789", start);
        return FormatText(Text(text::kDxfDamaged), {FromUtf8(text.substr(start, end - start))});
    }
    return Text(text::kCadUnreadable);
}

void ReadOpened(const std::string& name, CadKind kind, FeatureTally& tally) {
    const GdalErrorScope errors;
    const GdalList driver({DriverOf(kind)});
    const GdalDataset dataset(
        GDALOpenEx(name.c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY, driver.Get(), nullptr, nullptr));
    if (!dataset) {
        throw LDataError(Reason(errors));
    }
    for (OGRLayer* layer : GDALDataset::FromHandle(dataset.get())->GetLayers()) {
        ReadLayer(*layer, LayerNaming(*layer, kind), tally);
    }
    if (errors.HasError()) {
        throw LDataError(Reason(errors));
    }
}

InspectionLimits LimitsOf(const std::wstring& path) {
    // Several times the file, since GDAL reads parts of it again; not without end.
    constexpr std::uint64_t kTimes = 32;
    InspectionLimits limits;
    limits.read = std::max(limits.read, kTimes * FileSizeOf(path).value_or(0));
    return limits;
}

FeatureInfo ReadThrough(const std::wstring& path, CadKind kind, ReadWatch watch) {
    const ReadingOptions options;
    const GdalAccess access(AbsolutePath(path), LimitsOf(path), std::move(watch));
    FeatureInfo info;
    try {
        ReadOpened(access.Name(), kind, info.tally);
    } catch (const LDataError&) {
        // What GDAL reports then follows from it.
        if (!access.Refusal().empty()) {
            throw LDataError(access.Refusal());
        }
        throw;
    }
    if (!access.Refusal().empty()) {
        throw LDataError(access.Refusal());
    }
    return info;
}

/// A watch that feeds a scanner what it has not seen yet.
template <typename Scanner>
ReadWatch WatchWith(Scanner& scanner) {
    return {[&scanner](std::uint64_t offset, std::span<const std::byte> bytes) -> std::wstring {
        const std::uint64_t seen = scanner.Position();
        if (offset > seen || offset + bytes.size() <= seen) {
            return {};
        }
        try {
            scanner.Feed(bytes.subspan(static_cast<std::size_t>(seen - offset)));
            return {};
        } catch (const LDataError& error) {
            return error.Text();
        }
    }};
}

FeatureInfo ReadDwg(const std::wstring& path) {
    CheckDwg(path);
    FeatureInfo info = ReadThrough(path, CadKind::Dwg, {[](auto, auto) { return std::wstring(); }});
    if (info.tally.Features() == 0) {
        throw LDataError(Text(text::kDwgNothingReadable));
    }
    info.leftOut.push_back(Text(text::kDwgPartly));
    return info;
}

FeatureInfo ReadDxf(const std::wstring& path) {
    DxfScanner scanner(FileSizeOf(path).value_or(0));
    ScanDefinitions(path, scanner);
    ReadWatch watch = WatchWith(scanner);
    // GDAL takes them for Latin-1.
    std::optional<GdalOption> encoding;
    if (scanner.IsUtf8()) {
        encoding.emplace("DXF_ENCODING", "UTF-8");
    }
    // GDAL 3.6 reads on without end where a file ends within a line.
    watch.tail = "\n";
    FeatureInfo info = ReadThrough(path, CadKind::Dxf, std::move(watch));
    info.leftOut = scanner.LeftOut();
    if (info.tally.Features() == 0) {
        throw LDataError(info.leftOut.empty() ? Text(text::kCadNoObjects) : info.leftOut.front());
    }
    return info;
}

FeatureInfo ReadDgn(const std::wstring& path) {
    DgnScanner scanner;
    FeatureInfo info = ReadThrough(path, CadKind::Dgn, WatchWith(scanner));
    if (!scanner.IsAtEnd()) {
        throw LDataError(Text(text::kCadIncomplete));
    }
    if (info.tally.Features() == 0) {
        throw LDataError(Text(text::kCadNoObjects));
    }
    return info;
}

}  // namespace

void PrepareGdalReading() {
    static const bool prepared = [] {
        RegisterOGRDXF();
        RegisterOGRDGN();
        RegisterOGRCAD();
        GdalAccess::Install();
        return true;
    }();
    static_cast<void>(prepared);
}

FeatureInfo ReadCad(const std::wstring& path, CadKind kind) {
    PrepareGdalReading();
    RequireReadable(path, kind);
    switch (kind) {
        case CadKind::Dwg:
            return ReadDwg(path);
        case CadKind::Dxf:
            return ReadDxf(path);
        default:
            return ReadDgn(path);
    }
}

}  // namespace orvex
