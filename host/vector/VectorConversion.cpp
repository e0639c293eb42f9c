#include "host/vector/VectorConversion.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <memory>
#include <tuple>
#include <utility>

#include "host/vector/ShapefileNames.h"
#include "host/vector/ShapefileWriter.h"
#include "host/vector/VectorSource.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/TemporaryFile.h"
#include "support/Text.h"

namespace orvex {

namespace {

/// Shapefiles that are open at a time; each takes three handles.
constexpr std::size_t kMostOpen = 64;
constexpr std::uint64_t kFeaturesPerPoll = 64;

struct KindFacts {
    const wchar_t* name;     ///< in the names of files
    std::int32_t shapeType;  ///< code in the header
    bool VectorConversionOptions::*isWanted;
};
/// By ShapeKind.
constexpr KindFacts kKindFacts[] = {{L"points", 11, &VectorConversionOptions::points},
                                    {L"lines", 13, &VectorConversionOptions::lines},
                                    {L"polygons", 15, &VectorConversionOptions::polygons},
                                    {L"text", 11, &VectorConversionOptions::text}};

const KindFacts& FactsOf(ShapeKind kind) {
    return kKindFacts[static_cast<int>(kind)];
}

/// A geometry's simple parts by kind.
struct GeometryParts {
    std::vector<OGRGeometryUniquePtr> points;
    std::unique_ptr<OGRMultiLineString> lines;
    std::unique_ptr<OGRMultiPolygon> polygons;
};

template <typename Collection>
void AddPart(std::unique_ptr<Collection>& parts, const OGRGeometry& part) {
    if (parts == nullptr) {
        parts = std::make_unique<Collection>();
    }
    parts->addGeometry(&part);
}

/// Collections and surfaces are taken apart, however they are nested.
GeometryParts PartsOf(const OGRGeometry& whole) {
    GeometryParts parts;
    std::vector<const OGRGeometry*> open = {&whole};  // the next one is the last
    while (!open.empty()) {
        const OGRGeometry& geometry = *open.back();
        open.pop_back();
        const OGRwkbGeometryType type = wkbFlatten(geometry.getGeometryType());
        if (geometry.IsEmpty()) {
            continue;
        }
        if (type == wkbPoint) {
            parts.points.emplace_back(geometry.clone());
        } else if (OGR_GT_IsSubClassOf(type, wkbLineString)) {
            AddPart(parts.lines, geometry);
        } else if (type == wkbTriangle) {
            OGRPolygon polygon(*geometry.toPolygon());
            AddPart(parts.polygons, polygon);
        } else if (type == wkbPolygon) {
            AddPart(parts.polygons, geometry);
        } else if (OGR_GT_IsSubClassOf(type, wkbPolyhedralSurface)) {
            const OGRPolyhedralSurface& surface = *geometry.toPolyhedralSurface();
            open.insert(open.end(), std::make_reverse_iterator(surface.end()),
                        std::make_reverse_iterator(surface.begin()));
        } else if (OGR_GT_IsSubClassOf(type, wkbGeometryCollection)) {
            const OGRGeometryCollection& collection = *geometry.toGeometryCollection();
            open.insert(open.end(), std::make_reverse_iterator(collection.end()),
                        std::make_reverse_iterator(collection.begin()));
        }
    }
    return parts;
}

/// One conversion; use once.
class VectorConverter {
  public:
    VectorConverter(const std::wstring& path, const VectorConversionOptions& options,
                    Kst::ProgressIf& progress);

    std::optional<VectorConversionResult> Run();

  private:
    using OutputKey = std::tuple<int, std::string, ShapeKind>;  ///< layer of the file, named layer, kind
    struct Output {
        std::wstring name;
        std::unique_ptr<ShapefileWriter> writer;
        std::uint64_t lastUse = 0;
    };
    struct LayerFields {
        ShapefileFields plain;
        ShapefileFields withText;
    };

    void MakeFolder() const;
    bool ConvertLayer(int index);
    void ConvertFeature(int layer, OGRFeature& feature);
    void Write(int layer, ShapeKind kind, const OGRFeature& feature, OGRGeometryUniquePtr geometry,
               const std::optional<DrawingText>& text);
    ShapefileWriter& WriterFor(int layer, ShapeKind kind, const OGRFeature& feature);
    void KeepFewOpen();
    void Complete();
    void RenameAll();
    void Describe(const Output& output, const std::wstring& path);
    void DescribeFields();
    void Warn(StringId text, std::initializer_list<FormatArg> values);

    const VectorConversionOptions& options_;
    Kst::ProgressIf& progress_;
    std::wstring path_;
    std::wstring folder_;
    VectorSource source_;
    std::optional<TemporaryFile> temporary_;
    std::map<int, LayerFields> fields_;  ///< by layer of the file
    std::map<OutputKey, Output> outputs_;
    std::uint64_t done_ = 0;
    std::uint64_t withoutGeometry_ = 0;
    VectorConversionResult result_;
};

VectorConverter::VectorConverter(const std::wstring& path, const VectorConversionOptions& options,
                                 Kst::ProgressIf& progress)
    : options_(options),
      progress_(progress),
      path_(path),
      folder_(FileNameOf(options.outputFolder).empty() ? FolderOf(options.outputFolder)
                                                       : options.outputFolder),
      source_(path) {}

std::optional<VectorConversionResult> VectorConverter::Run() {
    MakeFolder();
    temporary_.emplace(NativePath(folder_ + L"/shapefiles"));
    progress_.SetRange(source_.FeatureCount());
    for (int layer = 0; layer < source_.Dataset().GetLayerCount(); ++layer) {
        if (!ConvertLayer(layer)) {
            return std::nullopt;
        }
    }
    Complete();
    return std::move(result_);
}

void VectorConverter::MakeFolder() const {
    if (const SystemError error = CreateFolders(folder_)) {
        throw LDataError(FormatText(Text(text::kDemFolderCreateFailed), {folder_, SystemErrorText(error)}));
    }
}

bool VectorConverter::ConvertLayer(int index) {
    OGRLayer& layer = *source_.Dataset().GetLayer(index);
    const OGRFeatureDefn& definition = *layer.GetLayerDefn();
    fields_.emplace(index,
                    LayerFields{ShapefileFields(definition, false), ShapefileFields(definition, true)});
    const GdalErrorScope errors;
    for (auto& feature : layer) {
        if (++done_ % kFeaturesPerPoll == 0) {
            if (progress_.IsCancelled()) {
                return false;
            }
            progress_.SetPosition(done_);
        }
        ConvertFeature(index, *feature);
    }
    if (errors.HasError()) {
        Warn(text::kVectorReadPartly, {FailureReason(errors)});
    }
    return !progress_.IsCancelled();
}

void VectorConverter::ConvertFeature(int layer, OGRFeature& feature) {
    const OGRGeometry* geometry = feature.GetGeometryRef();
    OGRGeometryUniquePtr straight(geometry != nullptr && geometry->hasCurveGeometry() != FALSE
                                      ? geometry->getLinearGeometry()
                                      : nullptr);
    geometry = straight == nullptr ? geometry : straight.get();
    GeometryParts parts = geometry == nullptr ? GeometryParts() : PartsOf(*geometry);
    if (parts.points.empty() && parts.lines == nullptr && parts.polygons == nullptr) {
        ++withoutGeometry_;
        return;
    }
    const auto text = source_.TextOf(feature);
    for (OGRGeometryUniquePtr& point : parts.points) {
        Write(layer, text ? ShapeKind::Text : ShapeKind::Points, feature, std::move(point), text);
    }
    Write(layer, ShapeKind::Lines, feature, OGRGeometryUniquePtr(parts.lines.release()), text);
    Write(layer, ShapeKind::Polygons, feature, OGRGeometryUniquePtr(parts.polygons.release()), text);
}

void VectorConverter::Write(int layer, ShapeKind kind, const OGRFeature& feature,
                            OGRGeometryUniquePtr geometry, const std::optional<DrawingText>& text) {
    if (geometry != nullptr && options_.*FactsOf(kind).isWanted) {
        geometry->assignSpatialReference(nullptr);
        WriterFor(layer, kind, feature).Add(feature, std::move(geometry), text);
    }
}

ShapefileWriter& VectorConverter::WriterFor(int layer, ShapeKind kind, const OGRFeature& feature) {
    OGRLayer& from = *source_.Dataset().GetLayer(layer);
    const std::string name = VectorSource::LayerOf(from, feature);
    Output& output = outputs_[{layer, name, kind}];
    output.lastUse = done_;
    if (output.writer != nullptr && output.writer->IsOpen()) {
        return *output.writer;
    }
    KeepFewOpen();
    if (output.writer == nullptr) {
        if (outputs_.size() > kMostShapefiles) {
            throw LDataError(FormatText(Text(text::kVectorTooManyLayers), {path_, kMostShapefiles}));
        }
        output.name =
            ShapefileName(WithExtension(FileNameOf(path_), L""), FromUtf8(name), FactsOf(kind).name);
        const LayerFields& fields = fields_.at(layer);
        output.writer = std::make_unique<ShapefileWriter>(
            temporary_->Path() + L"." + std::to_wstring(outputs_.size()),
            NativePath(folder_ + L"/" + output.name + L".shp"), kind,
            kind == ShapeKind::Text ? fields.withText : fields.plain, source_.CrsOf(from));
    }
    return *output.writer;
}

/// Closes the shapefile that has waited longest for a feature if too many are open.
void VectorConverter::KeepFewOpen() {
    Output* oldest = nullptr;
    std::size_t open = 0;
    for (auto& [key, output] : outputs_) {
        if (output.writer != nullptr && output.writer->IsOpen()) {
            ++open;
            oldest = oldest == nullptr || output.lastUse < oldest->lastUse ? &output : oldest;
        }
    }
    if (open >= kMostOpen) {
        oldest->writer->Suspend();
    }
}

void VectorConverter::Complete() {
    for (auto& [key, output] : outputs_) {
        output.writer->Suspend();
    }
    for (OGRLayer* layer : source_.Dataset().GetLayers()) {
        if (const OGRSpatialReference* crs = source_.CrsOf(*layer); crs != nullptr && result_.wkt.empty()) {
            char* wkt = nullptr;
            crs->exportToWkt(&wkt);
            result_.wkt = wkt == nullptr ? "" : wkt;
            CPLFree(wkt);
        }
    }
    if (withoutGeometry_ > 0) {
        Warn(text::kVectorWithoutGeometry, {withoutGeometry_});
    }
    if (!source_.Remarks().empty()) {
        result_.notes.push_back(source_.Remarks());
    }
    DescribeFields();
    RenameAll();
}

void VectorConverter::DescribeFields() {
    std::vector<std::wstring> told;
    for (const auto& [layer, fields] : fields_) {
        for (const std::wstring& renamed : fields.plain.Renamed()) {
            if (std::ranges::find(told, renamed) == told.end()) {
                told.push_back(renamed);
            }
        }
        if (fields.plain.LeftOut() > 0) {
            Warn(text::kVectorFieldsLeftOut, {fields.plain.LeftOut()});
        }
    }
    std::wstring list;
    for (const std::wstring& renamed : told) {
        list += (list.empty() ? L"" : L", ") + renamed;
    }
    if (!list.empty() && !outputs_.empty()) {
        result_.notes.push_back(FormatText(Text(text::kVectorFieldsRenamed), {list}));
    }
}

/// The shapefiles renamed before one that fails are removed: they are this conversion's own.
void VectorConverter::RenameAll() {
    TakenNames taken(folder_);
    try {
        for (auto& [key, output] : outputs_) {
            std::wstring name;
            std::wstring path;
            do {
                name = taken.FreeName(output.name);
                taken.Add(name);
                path = NativePath(folder_ + L"/" + name);
            } while (!output.writer->RenameTo(path));
            Describe(output, path);
            if (name != output.name) {
                Warn(text::kVectorNameTaken, {output.name + L".shp", name + L".shp"});
            }
        }
    } catch (...) {
        for (const ConvertedShapefile& done : result_.shapefiles) {
            for (const wchar_t* part : kShapefileParts) {
                RemoveFile(WithExtension(done.path, part));
            }
        }
        throw;
    }
}

void VectorConverter::Describe(const Output& output, const std::wstring& path) {
    const ShapefileWriter& writer = *output.writer;
    result_.shapefiles.push_back(
        {path + L".shp", FactsOf(writer.Kind()).shapeType, writer.Count(), writer.Extent()});
    const ShapefileFields::Losses& losses = writer.Losses();
    if (losses.textsCut > 0) {
        Warn(text::kVectorTextsCut, {FileNameOf(path) + L".shp", losses.textsCut});
    }
    if (losses.numbers > 0) {
        Warn(text::kVectorNumbersLost, {FileNameOf(path) + L".shp", losses.numbers});
    }
}

void VectorConverter::Warn(StringId text, std::initializer_list<FormatArg> values) {
    std::wstring sentence = FormatText(Text(text), values);
    if (std::ranges::find(result_.warnings, sentence) == result_.warnings.end()) {
        result_.warnings.push_back(std::move(sentence));
    }
}

}  // namespace

std::optional<VectorConversionResult> ConvertVector(const std::wstring& path,
                                                    const VectorConversionOptions& options,
                                                    Kst::ProgressIf& progress) {
    const GdalErrorScope errors;
    const NoNetwork noNetwork;
    return VectorConverter(path, options, progress).Run();
}

}  // namespace orvex
