#include "host/app/FeatureJobs.h"

#include <ogrsf_frmts.h>

#include <array>
#include <fstream>

#include "host/app/PartProgress.h"
#include "host/dem/HostGdal.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/SidecarFile.h"

namespace orvex {

namespace {

bool IsShapefile(const std::wstring& path) {
    return UpperExtensionOf(path) == L".SHP";
}

/// The code in a shapefile's header.
std::int32_t ShapeTypeOf(const std::wstring& path) {
    constexpr std::size_t kTypeAt = 32;
    std::array<unsigned char, 4> bytes{};
    std::ifstream file(ToPath(path), std::ios::binary);
    file.seekg(kTypeAt).read(reinterpret_cast<char*>(bytes.data()), bytes.size());
    return file ? bytes[0] | bytes[1] << 8 | bytes[2] << 16 | bytes[3] << 24 : 0;
}

std::string WktOf(const OGRSpatialReference* crs) {
    char* text = nullptr;
    if (crs != nullptr) {
        crs->exportToWkt(&text);
    }
    std::string wkt = text == nullptr ? "" : text;
    CPLFree(text);
    return wkt;
}

/// A shapefile as it is. Throws LDataError when GDAL cannot read it.
NewFile Describe(const AssignedFile& assigned) {
    const GdalErrorScope errors;
    const NoNetwork noNetwork;
    const std::array<const char*, 2> driver = {"ESRI Shapefile", nullptr};
    const GDALDatasetUniquePtr dataset(
        GDALDataset::Open(ToUtf8(assigned.path).c_str(), GDAL_OF_VECTOR, driver.data()));
    OGRLayer* const layer = dataset == nullptr ? nullptr : dataset->GetLayer(0);
    if (layer == nullptr) {
        const bool hasIndex = !SidecarOf(assigned.path, L".shx").empty();
        const std::wstring cause = hasIndex ? FailureReason(errors) : Text(text::kShapeIndexMissing);
        throw LDataError(FormatText(Text(text::kVectorUnreadable), {assigned.path, cause}));
    }
    NewFile added;
    added.layer = assigned.layer;
    added.wkt = WktOf(layer->GetSpatialRef());
    added.file.path = assigned.path;
    added.file.feature.shapeType = ShapeTypeOf(assigned.path);
    added.file.feature.count = static_cast<std::uint64_t>(std::max<GIntBig>(layer->GetFeatureCount(), 0));
    OGREnvelope box;
    if (layer->GetExtent(&box, FALSE) == OGRERR_NONE && box.IsInit()) {
        added.file.feature.extent = {box.MinX, box.MinY, box.MaxX, box.MaxY};
    }
    return added;
}

}  // namespace

FeatureImport::FeatureImport(std::vector<AssignedFile> files, VectorConversionOptions options)
    : files_(std::move(files)), options_(std::move(options)) {}

void FeatureImport::Run(Kst::ProgressIf& progress) {
    SetUpGdal();
    progress.SetRange(kStepsPerFile * files_.size());
    for (std::size_t i = 0; i < files_.size() && !Result().stopped; ++i) {
        progress.SetText(FormatText(Text(text::kDemConversionProgress),
                                    {i + 1, files_.size(), FileNameOf(files_[i].path)}));
        PartProgress part(progress, i);
        ImportOne(files_[i], part);
    }
}

void FeatureImport::ImportOne(const AssignedFile& file, Kst::ProgressIf& progress) {
    try {
        if (IsShapefile(file.path)) {
            NewFile described = Describe(file);
            const std::lock_guard guard(lock_);
            result_.files.push_back(std::move(described));
            result_.stopped = progress.IsCancelled();
            return;
        }
        const auto converted = ConvertVector(file.path, options_, progress);
        const std::lock_guard guard(lock_);
        if (converted) {
            Keep(file, *converted);
        } else {
            result_.stopped = true;
        }
    } catch (...) {
        const std::lock_guard guard(lock_);
        result_.failures.push_back({file.path, CurrentExceptionText()});
    }
}

void FeatureImport::Keep(const AssignedFile& from, const VectorConversionResult& converted) {
    for (const ConvertedShapefile& shapefile : converted.shapefiles) {
        NewFile& added = result_.files.emplace_back();
        added.layer = from.layer;
        added.wkt = converted.wkt;
        added.file.path = shapefile.path;
        added.file.feature = {shapefile.shapeType, shapefile.count, shapefile.extent};
    }
    if (converted.shapefiles.empty()) {
        result_.failures.push_back({from.path, Text(text::kVectorNothingChosen)});
    }
    for (const std::wstring& warning : converted.warnings) {
        result_.warnings.push_back({from.path, warning});
    }
    for (const std::wstring& note : converted.notes) {
        result_.notes.push_back({from.path, note});
    }
}

FeatureImportResult FeatureImport::Result() const {
    const std::lock_guard guard(lock_);
    return result_;
}

}  // namespace orvex
