#include "host/vector/ShapefileWriter.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string_view>

#include "host/vector/ShapefileNames.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {

namespace {

constexpr std::size_t kMostTextBytes = 254;
/// Numbers have 24 characters, of which those behind the point may be cut. NaN is not below it either.
constexpr double kTooLarge = 1e22;
constexpr int kMostFields = 255;  // of dBase; some readers take no more

enum TextField { kText = -3, kHeight, kAngle };

/// What shapefiles have a type for; anything else becomes text.
OGRFieldType TypeFor(const OGRFieldDefn& source) {
    switch (source.GetType()) {
        case OFTInteger:
        case OFTInteger64:
        case OFTReal:
        case OFTDate:
            return source.GetType();
        default:
            return OFTString;
    }
}

OGRwkbGeometryType GeometryOf(ShapeKind kind) {
    switch (kind) {
        case ShapeKind::Lines:
            return wkbMultiLineString25D;
        case ShapeKind::Polygons:
            return wkbMultiPolygon25D;
        default:
            return wkbPoint25D;
    }
}

bool IsFull(const GdalErrorScope& errors) {
    const std::string text = errors.Text();
    return text.find("2GB") != std::string::npos || text.find("maximum file size") != std::string::npos;
}

}  // namespace

ShapefileFields::ShapefileFields(const OGRFeatureDefn& source, bool withText) {
    if (withText) {
        fields_ = {{kText, "TEXT", OFTString}, {kHeight, "HEIGHT", OFTReal}, {kAngle, "ANGLE", OFTReal}};
    }
    for (int i = 0; i < source.GetFieldCount(); ++i) {
        const OGRFieldDefn& field = *source.GetFieldDefn(i);
        if (withText && EqualNoCase(FromUtf8(field.GetNameRef()), L"TEXT")) {
            continue;  // the first of its own fields
        }
        if (fields_.size() == kMostFields) {
            ++leftOut_;
            continue;
        }
        fields_.push_back({i, field.GetNameRef(), TypeFor(field)});
    }
    std::vector<std::string> names;
    std::ranges::transform(fields_, std::back_inserter(names), &Field::name);
    const std::vector<std::string> safe = SafeFieldNames(names);
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        if (safe[i] != names[i]) {
            renamed_.push_back(FromUtf8(names[i] + " -> " + safe[i]));
            fields_[i].name = safe[i];
        }
    }
}

bool ShapefileFields::AddTo(OGRLayer& layer) const {
    // The format has no table without a field.
    const std::vector<Field> numberOnly = {{0, "ID", OFTInteger}};
    return std::ranges::all_of(fields_.empty() ? numberOnly : fields_, [&layer](const Field& field) {
        OGRFieldDefn definition(field.name.c_str(), field.type);
        return layer.CreateField(&definition) == OGRERR_NONE;
    });
}

void ShapefileFields::Copy(const OGRFeature& from, const std::optional<DrawingText>& text, OGRFeature& to,
                           Losses& losses) const {
    const auto setText = [&](int target, std::string_view value) {
        const std::string fitting = CutUtf8(value, kMostTextBytes);
        losses.textsCut += value.size() > kMostTextBytes ? 1 : 0;
        to.SetField(target, fitting.c_str());
    };
    const auto setNumber = [&](int target, double value) {
        if (std::abs(value) < kTooLarge) {
            to.SetField(target, value);
        } else {
            ++losses.numbers;
        }
    };
    for (int target = 0; target < static_cast<int>(fields_.size()); ++target) {
        const auto& [source, name, type] = fields_[static_cast<std::size_t>(target)];
        if (source == kText) {
            setText(target, text->text);
        } else if (source < 0) {
            setNumber(target, source == kHeight ? text->height : text->angle);
        } else if (!from.IsFieldSetAndNotNull(source)) {
            continue;
        } else if (type == OFTString) {
            setText(target, from.GetFieldAsString(source));
        } else if (type == OFTReal) {
            setNumber(target, from.GetFieldAsDouble(source));
        } else {
            to.SetField(target, from.GetRawFieldRef(source));
        }
    }
}

ShapefileWriter::ShapefileWriter(std::wstring temporaryPath, std::wstring shownPath, ShapeKind kind,
                                 const ShapefileFields& fields, const OGRSpatialReference* crs)
    : temporaryPath_(std::move(temporaryPath)),
      shownPath_(std::move(shownPath)),
      kind_(kind),
      fields_(fields) {
    try {
        Create(crs);
    } catch (...) {
        dataset_.reset();
        for (const wchar_t* part : kShapefileParts) {
            RemoveFile(temporaryPath_ + part);
        }
        throw;
    }
}

ShapefileWriter::~ShapefileWriter() {
    const GdalErrorScope errors;
    dataset_.reset();
    for (const wchar_t* part : kShapefileParts) {
        RemoveFile(temporaryPath_ + part);
    }
}

void ShapefileWriter::Create(const OGRSpatialReference* crs) {
    const GdalErrorScope errors;
    ForgetStreamError();
    GDALDriver* const driver = GetGDALDriverManager()->GetDriverByName("ESRI Shapefile");
    if (driver == nullptr) {
        throw LDataError(FormatText(Text(text::kRasterDriverMissing), {L"SHP"}));
    }
    const std::string path = ToUtf8(temporaryPath_ + L".shp");
    dataset_.reset(driver->Create(path.c_str(), 0, 0, 0, GDT_Unknown, nullptr));
    const GdalList options({"ENCODING=UTF-8", "RESIZE=YES", "2GB_LIMIT=YES", "SPATIAL_INDEX=NO"});
    OGRLayer* const layer =
        dataset_ == nullptr
            ? nullptr
            : dataset_->CreateLayer(CPLGetBasename(path.c_str()), const_cast<OGRSpatialReference*>(crs),
                                    GeometryOf(kind_), const_cast<char**>(options.Get()));
    if (layer == nullptr || !fields_.AddTo(*layer)) {
        Fail(errors);
    }
}

void ShapefileWriter::Reopen() {
    const GdalErrorScope errors;
    ForgetStreamError();
    constexpr std::array<const char*, 2> kDriver = {"ESRI Shapefile", nullptr};
    dataset_.reset(GDALDataset::Open(ToUtf8(temporaryPath_ + L".shp").c_str(),
                                     GDAL_OF_VECTOR | GDAL_OF_UPDATE, kDriver.data()));
    if (dataset_ == nullptr || dataset_->GetLayer(0) == nullptr) {
        Fail(errors);
    }
}

void ShapefileWriter::Add(const OGRFeature& from, OGRGeometryUniquePtr geometry,
                          const std::optional<DrawingText>& text) {
    if (dataset_ == nullptr) {
        Reopen();
    }
    const GdalErrorScope errors;
    ForgetStreamError();
    OGRLayer& layer = *dataset_->GetLayer(0);
    OGRFeature feature(layer.GetLayerDefn());
    fields_.Copy(from, text, feature, losses_);
    OGREnvelope box;
    geometry->getEnvelope(&box);
    feature.SetGeometryDirectly(geometry.release());
    if (layer.CreateFeature(&feature) != OGRERR_NONE || errors.HasError()) {
        Fail(errors);
    }
    box_.Merge(box);
    ++count_;
}

void ShapefileWriter::Suspend() {
    const GdalErrorScope errors;
    ForgetStreamError();
    dataset_.reset();
    if (errors.HasError()) {
        Fail(errors);
    }
}

bool ShapefileWriter::RenameTo(const std::wstring& path) {
    std::vector<const wchar_t*> renamed;
    for (const wchar_t* part : kShapefileParts) {
        if (KindOf(temporaryPath_ + part) == FileKind::Missing) {
            continue;  // no CRS
        }
        bool taken = false;
        const SystemError error = RenameToFreeName(temporaryPath_ + part, path + part, taken);
        if (error == 0) {
            renamed.push_back(part);
            continue;
        }
        for (const wchar_t* done : renamed) {
            RenameFile(path + done, temporaryPath_ + done);
        }
        if (!taken) {
            throw LDataError(FormatText(Text(text::kDemWriteFailed), {path + part, SystemErrorText(error)}));
        }
        return false;
    }
    return true;
}

void ShapefileWriter::Fail(const GdalErrorScope& errors) const {
    const SystemError system = LastStreamError();
    if (IsFull(errors)) {
        throw LDataError(FormatText(Text(text::kVectorShapefileFull), {shownPath_}));
    }
    throw LDataError(FormatText(Text(text::kDemWriteFailed), {shownPath_, SystemErrorText(system)}));
}

}  // namespace orvex
