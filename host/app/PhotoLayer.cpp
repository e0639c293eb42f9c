#include "host/app/PhotoLayer.h"

#include <ogrsf_frmts.h>

#include <cmath>
#include <set>
#include <string_view>
#include <utility>

#include "host/app/NewShapefile.h"
#include "host/app/RecordFiles.h"
#include "host/dem/HostGdal.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/PathSet.h"
#include "support/Text.h"

namespace orvex {

namespace {

struct Field {
    const char* name;
    OGRFieldType type;
    int width;  ///< bytes of a text; characters of a number
    int precision;
};
/// A text of a dBASE table holds up to 254 bytes.
constexpr Field kFields[] = {
    {"TimeUTC", OFTString, 32, 0},    {"Latitude", OFTReal, 15, 10},  {"Longitude", OFTReal, 15, 10},
    {"Altitude", OFTReal, 14, 4},     {"MasterTick", OFTReal, 20, 6}, {"CameraID", OFTString, 64, 0},
    {"PhotoPath", OFTString, 254, 0},
};
constexpr const char* kPathField = "PhotoPath";
constexpr int kPathWidth = 254;
constexpr double kHighest = 1e8;  ///< metres; beyond that an altitude is none and fits no field

[[noreturn]] void Fail(const std::wstring& path, const std::wstring& reason) {
    throw LDataError(FormatText(Text(text::kPhotoLayerFailed), {path, reason}));
}

/// Paths in a layer may be relative to it.
std::wstring FullPath(const std::wstring& stored, const std::wstring& folder) {
    return RootLength(stored) != 0 ? NativePath(stored) : JoinPath(folder, stored);
}

/// At most `width` bytes, whole characters.
std::string Cut(const std::string& utf8, std::size_t width) {
    std::size_t end = std::min(utf8.size(), width);
    while (end > 0 && end < utf8.size() && (static_cast<unsigned char>(utf8[end]) & 0xC0U) == 0x80U) {
        --end;
    }
    return utf8.substr(0, end);
}

/// The path as it fits into its field: full, else relative to the layer; nullopt if neither does.
std::optional<std::wstring> StoredPath(const std::wstring& path, const std::wstring& folder) {
    // Without the name: a long path has another form on Windows.
    const std::filesystem::path way = ToPath(FolderOf(path)).lexically_relative(ToPath(folder));
    const std::wstring name = FileNameOf(path);
    const std::wstring relative = way.empty() ? L"" : way == "." ? name : JoinPath(FromPath(way), name);
    for (const std::wstring& text : {path, relative}) {
        if (!text.empty() && ToUtf8(text).size() <= kPathWidth) {
            return text;
        }
    }
    return std::nullopt;
}

/// A shapefile that is open for reading. The path must name a file: GDAL takes other texts for servers,
/// archives and data.
class OldLayer {
  public:
    explicit OldLayer(const std::wstring& path) : path_(path) {
        SetUpGdal();
        const GdalErrorScope errors;
        const char* const drivers[] = {"ESRI Shapefile", nullptr};
        if (!FileExists(path) || UpperExtensionOf(path) != L".SHP") {
            Fail(path, Text(text::kPhotoLayerNoShapefile));
        }
        dataset_.reset(GDALDataset::Open(ToUtf8(path).c_str(), GDAL_OF_VECTOR | GDAL_OF_READONLY, drivers));
        if (dataset_ == nullptr || dataset_->GetLayerCount() != 1) {
            Fail(path, FailureReason(errors));
        }
    }

    OGRLayer& Layer() const { return *dataset_->GetLayer(0); }
    OGRFeatureDefn& Definition() const { return *Layer().GetLayerDefn(); }
    bool HasField(const char* name) const { return Definition().GetFieldIndex(name) >= 0; }
    bool IsOfPoints() const { return wkbFlatten(Layer().GetGeomType()) == wkbPoint; }
    /// The files that a new copy takes the place of: all but those that describe the layer.
    std::vector<std::wstring> DataFiles() const {
        std::vector<std::wstring> files;
        const CPLStringList all(dataset_->GetFileList());
        for (int i = 0; i < all.size(); ++i) {
            const std::wstring file = FromUtf8(all[i]);
            const std::wstring extension = UpperExtensionOf(file);
            if (extension != L".PRJ" && extension != L".XML") {
                files.push_back(file);
            }
        }
        return files;
    }
    std::wstring PhotoPathOf(const OGRFeature& feature) const {
        const std::wstring stored = FromUtf8(feature.GetFieldAsString(kPathField));
        return stored.empty() ? stored : FullPath(stored, FolderOf(path_));
    }

  private:
    std::wstring path_;
    GDALDatasetUniquePtr dataset_;
};

/// Turns positions into points of a layer's coordinate system; one without a system has degrees.
class PointMaker {
  public:
    explicit PointMaker(const OGRSpatialReference* crs) {
        wgs84_.SetWellKnownGeogCS("WGS84");
        wgs84_.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
        if (crs != nullptr && crs->IsSame(&wgs84_) == 0) {
            isOther_ = true;
            transformation_.reset(OGRCreateCoordinateTransformation(&wgs84_, crs));
        }
    }
    const OGRSpatialReference& Wgs84() const { return wgs84_; }
    /// nullopt where the layer's coordinate system does not reach.
    std::optional<OGRPoint> At(const std::array<double, 3>& position) const {
        double x = position[0];
        double y = position[1];
        if (isOther_ && (transformation_ == nullptr || transformation_->Transform(1, &x, &y) == 0 ||
                         !std::isfinite(x) || !std::isfinite(y))) {
            return std::nullopt;
        }
        return OGRPoint(x, y, position[2]);
    }

  private:
    OGRSpatialReference wgs84_;
    bool isOther_ = false;
    std::unique_ptr<OGRCoordinateTransformation> transformation_;
};

/// Writes the records of one layer.
class LayerWriter {
  public:
    LayerWriter(const std::vector<PhotoRecord>& photos, const PhotoTarget& target, const OldLayer* old,
                Kst::ProgressIf& progress)
        : photos_(photos),
          target_(target),
          old_(old),
          progress_(progress),
          points_(old == nullptr ? nullptr : old->Layer().GetSpatialRef()),
          isDone_(photos.size()) {}

    /// False when stopped. Nothing of the result holds unless the file has been closed without an error.
    bool Write(const std::wstring& path, PhotoLayerResult& result) {
        result_ = &result;
        const GdalErrorScope errors;
        Create(path);
        hasFailed_ = dataset_ == nullptr;
        const bool isComplete = !hasFailed_ && CopyOld() && AddNew();
        layer_ = nullptr;
        dataset_.reset();  // writes what is left
        if (errors.HasError() || hasFailed_) {
            Fail(target_.path, FailureReason(errors));
        }
        return isComplete;
    }

  private:
    void Create(const std::wstring& path) {
        GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName("ESRI Shapefile");
        dataset_.reset(driver == nullptr
                           ? nullptr
                           : driver->Create(ToUtf8(path).c_str(), 0, 0, 0, GDT_Unknown, nullptr));
        if (dataset_ == nullptr) {
            return;
        }
        // The old .prj stays as it is: written anew it would lose what GDAL does not know.
        CPLStringList options;
        options.SetNameValue("ENCODING", "UTF-8");
        OGRSpatialReference wgs84 = points_.Wgs84();
        layer_ = dataset_->CreateLayer("photos", old_ == nullptr ? &wgs84 : nullptr,
                                       old_ == nullptr ? wkbPoint25D : old_->Layer().GetGeomType(),
                                       options.List());
        if (layer_ == nullptr) {
            dataset_.reset();
            return;
        }
        if (old_ != nullptr) {
            CreateOldFields();
        } else {
            for (const Field& field : kFields) {
                CreateField(field.name, field.type, field.width, field.precision);
            }
        }
    }
    void CreateOldFields() {
        for (int i = 0; i < old_->Definition().GetFieldCount(); ++i) {
            const OGRFieldDefn& field = *old_->Definition().GetFieldDefn(i);
            int width = field.GetWidth();
            for (const Field& own : kFields) {
                if (EQUAL(own.name, field.GetNameRef()) && field.GetType() == OFTString) {
                    width = std::max(width, own.width);
                }
            }
            CreateField(field.GetNameRef(), field.GetType(), width, field.GetPrecision());
        }
    }
    void CreateField(const char* name, OGRFieldType type, int width, int precision) {
        OGRFieldDefn field(name, type);
        field.SetWidth(width);
        field.SetPrecision(precision);
        layer_->CreateField(&field);
    }

    /// False when stopped, as the next.
    bool CopyOld() {
        if (old_ == nullptr) {
            return true;
        }
        PathMap<std::size_t> photos;
        for (std::size_t i = 0; i < photos_.size(); ++i) {
            photos.Insert(photos_[i].path, i);
        }
        old_->Layer().ResetReading();
        for (auto& feature : old_->Layer()) {
            if (!Advance()) {
                return false;
            }
            const OGRFeatureUniquePtr copy(OGRFeature::CreateFeature(layer_->GetLayerDefn()));
            copy->SetFrom(feature.get());
            if (const std::size_t* const index = photos.Find(old_->PhotoPathOf(*feature))) {
                UpdateOld(*index, *copy);
            }
            Keep(*copy);
        }
        return true;
    }
    /// A photo whose new position has no place in the layer keeps its old record.
    void UpdateOld(std::size_t index, OGRFeature& feature) {
        const PhotoRecord& photo = photos_[index];
        isDone_[index] = true;
        if (!target_.replace) {
            result_->notWritten.push_back({photo.path, Text(text::kPhotoInLayerAlready)});
        } else if (Fill(photo, feature)) {
            ++result_->replaced;
        }
    }
    bool AddNew() {
        for (std::size_t i = 0; i < photos_.size(); ++i) {
            if (!Advance()) {
                return false;
            }
            const OGRFeatureUniquePtr feature(OGRFeature::CreateFeature(layer_->GetLayerDefn()));
            if (!isDone_[i] && Fill(photos_[i], *feature)) {
                ++result_->added;
                Keep(*feature);
            }
        }
        return true;
    }
    void Keep(OGRFeature& record) {
        hasFailed_ = layer_->CreateFeature(&record) != OGRERR_NONE || hasFailed_;
    }
    bool Advance() {
        progress_.SetPosition(++steps_);
        return !progress_.IsCancelled();
    }

    bool Fill(const PhotoRecord& photo, OGRFeature& feature) {
        const auto point = photo.position ? points_.At(*photo.position) : std::nullopt;
        if (!point) {
            const StringId cause = photo.position ? text::kPhotoOutsideLayerCrs : text::kPhotoWithoutPosition;
            result_->notWritten.push_back({photo.path, Text(cause)});
            return false;
        }
        const auto& [longitude, latitude, altitude] = *photo.position;
        feature.SetGeometry(&*point);
        feature.SetField("Longitude", longitude);
        feature.SetField("Latitude", latitude);
        feature.SetField("Altitude", std::abs(altitude) < kHighest ? altitude : 0);
        feature.SetField("MasterTick", photo.masterTick);
        SetText(photo, feature, "TimeUTC", photo.timeUtc);
        SetText(photo, feature, "CameraID", photo.camera);
        const auto stored = StoredPath(photo.path, FolderOf(target_.path));
        SetText(photo, feature, kPathField, stored.value_or(FileNameOf(photo.path)), stored.has_value());
        return true;
    }
    void SetText(const PhotoRecord& photo, OGRFeature& feature, const char* field, const std::wstring& text,
                 bool isWhole = true) {
        const int index = feature.GetFieldIndex(field);
        const int width = layer_->GetLayerDefn()->GetFieldDefn(index)->GetWidth();
        const std::string whole = ToUtf8(text);
        const std::string held = Cut(whole, width > 0 ? static_cast<std::size_t>(width) : whole.size());
        feature.SetField(index, held.c_str());
        if (!isWhole || held.size() < whole.size()) {
            result_->shortened.push_back(
                {photo.path, FormatText(Text(text::kPhotoTextTooLong), {FromUtf8(field), FromUtf8(held)})});
        }
    }

    const std::vector<PhotoRecord>& photos_;
    const PhotoTarget& target_;
    const OldLayer* old_;
    Kst::ProgressIf& progress_;
    PointMaker points_;
    std::vector<bool> isDone_;  ///< photos that the layer has had already
    GDALDatasetUniquePtr dataset_;
    OGRLayer* layer_ = nullptr;
    PhotoLayerResult* result_ = nullptr;
    std::uint64_t steps_ = 0;
    bool hasFailed_ = false;
};

/// A layer as the component asks about it. The file is not held open: it may be replaced meanwhile.
class LayerAnswers final : public OrvexLayer {
  public:
    explicit LayerAnswers(const std::wstring& path) {
        const OldLayer layer(path);
        const GdalErrorScope errors;
        const bool hasZ = wkbHasZ(layer.Layer().GetGeomType()) != 0;
        type_ = !layer.IsOfPoints() ? 0 : hasZ ? kPointZLayer : kPointLayer;
        for (int i = 0; i < layer.Definition().GetFieldCount(); ++i) {
            fields_.insert(ToUpper(FromUtf8(layer.Definition().GetFieldDefn(i)->GetNameRef())));
        }
        if (layer.HasField(kPathField)) {
            for (const auto& feature : layer.Layer()) {
                photos_.Insert(layer.PhotoPathOf(*feature));
            }
        }
    }

    /// A shapefile does not state what it is for; its fields tell.
    std::int32_t IsPhotoLayer(bool& isPhotoLayer) override {
        isPhotoLayer = false;
        return kHostOk;
    }
    std::int32_t GetGeometryType(std::int32_t& type) override {
        type = type_;
        return kHostOk;
    }
    std::int32_t HasField(const std::wstring& name, bool& hasField) override {
        hasField = fields_.contains(ToUpper(name));
        return kHostOk;
    }
    std::int32_t HasPhoto(const std::wstring& path, bool& hasPhoto) override {
        hasPhoto = photos_.Contains(NativePath(path));
        return kHostOk;
    }

  private:
    std::int32_t type_ = 0;
    std::set<std::wstring> fields_;  ///< upper case
    PathSet photos_;
};

/// Null for a new layer.
std::unique_ptr<OldLayer> OpenOld(const PhotoTarget& target) {
    if (!target.append) {
        return nullptr;
    }
    auto old = std::make_unique<OldLayer>(target.path);
    for (const Field& field : kFields) {
        if (!old->HasField(field.name) || !old->IsOfPoints()) {
            Fail(target.path, Text(text::kPhotoLayerFieldsMissing));
        }
    }
    return old;
}

}  // namespace

PhotoLayerResult WritePhotoLayer(const std::vector<PhotoRecord>& photos, const PhotoTarget& target,
                                 Kst::ProgressIf& progress) {
    SetUpGdal();
    std::unique_ptr<OldLayer> old = OpenOld(target);
    const GIntBig records = old == nullptr ? 0 : old->Layer().GetFeatureCount();
    progress.SetRange(photos.size() + static_cast<std::uint64_t>(std::max<GIntBig>(records, 0)));
    if (const SystemError error = CreateFolders(FolderOf(target.path)); error != 0) {
        Fail(target.path, SystemErrorText(error));
    }
    PhotoLayerResult result;
    NewShapefile file(target.append ? target.path : NewShapefile::FreeTarget(target.path));
    LayerWriter writer(photos, target, old.get(), progress);
    result.stopped = !writer.Write(file.Path(), result);
    if (result.stopped || result.added + result.replaced == 0) {
        return result;
    }
    result.path = file.Target();
    const std::vector<std::wstring> replaced = old ? old->DataFiles() : std::vector<std::wstring>();
    old.reset();  // an open file cannot be renamed everywhere
    file.Commit(replaced);
    return result;
}

std::unique_ptr<OrvexLayer> OpenPhotoLayer(const std::wstring& path) {
    return std::make_unique<LayerAnswers>(path);
}

}  // namespace orvex
