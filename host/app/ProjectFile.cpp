#include "host/app/ProjectFile.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include "host/app/HostText.h"
#include "support/SignedUrl.h"
#include "support/TemporaryFile.h"

namespace orvex {

namespace {

constexpr int kFormatVersion = 4;
/// A kind of layer in the file, and the least version that holds it: a project is written as the least
/// version that holds all of its layers, which older programs read.
struct KindInFile {
    LayerKind kind;
    const char* name;
    int version;
};
constexpr KindInFile kKinds[] = {{LayerKind::Las, "las", 1},
                                 {LayerKind::Raster, "raster", 2},
                                 {LayerKind::Feature, "feature", 3},
                                 {LayerKind::Photo, "photo", 3},
                                 {LayerKind::Cloud, "cloud", 4}};
constexpr const char* kAccessNames[] = {"readOnly", "readWrite", "notAtAll"};

QString FilePath(const QString& folder) {
    return QDir(folder).filePath(QString::fromLatin1(kProjectFileName));
}

/// Numbers that are none are kept as null and read back as NaN.
template <std::size_t Count>
QJsonArray ToJson(const std::array<double, Count>& values) {
    QJsonArray array;
    for (const double value : values) {
        array.append(std::isfinite(value) ? QJsonValue(value) : QJsonValue());
    }
    return array;
}

template <std::size_t Count>
std::array<double, Count> NumbersFromJson(const QJsonValue& value) {
    std::array<double, Count> values{};
    const QJsonArray array = value.toArray();
    for (std::size_t i = 0; i < Count; ++i) {
        values[i] = array.at(static_cast<qsizetype>(i)).toDouble(std::numeric_limits<double>::quiet_NaN());
    }
    return values;
}

template <std::size_t Count>
QJsonValue ToJson(const std::optional<std::array<double, Count>>& values) {
    return values ? QJsonValue(ToJson(*values)) : QJsonValue();
}

template <std::size_t Count>
std::optional<std::array<double, Count>> OptionalFromJson(const QJsonValue& value) {
    return value.isArray() ? std::optional(NumbersFromJson<Count>(value)) : std::nullopt;
}

/// Percent-encoded bytes: names that are no text survive.
QString PathToJson(const std::wstring& path) {
    return QString::fromLatin1(QByteArray::fromStdString(ToUtf8(path)).toPercentEncoding(" /\\:"));
}

std::wstring PathFromJson(const QJsonValue& value) {
    return FromUtf8(QByteArray::fromPercentEncoding(value.toString().toUtf8()).toStdString());
}

QJsonObject LasToJson(const LayerFile& file) {
    return {
        {"path", PathToJson(file.path)},
        // A JSON number holds 53 bits exactly; counts can have 64.
        {"points", QString::number(file.points)},
        {"min", ToJson(file.min)},
        {"max", ToJson(file.max)},
        {"version", file.version},
        {"pointFormat", file.pointFormat},
        {"readOnly", file.readOnly},
        {"footprintOnly", file.footprintOnly},
        {"thinning", file.thinning},
        {"opened", PathToJson(file.opened)},
    };
}

LayerFile LasFromJson(const QJsonObject& json) {
    LayerFile file;
    file.path = PathFromJson(json["path"]);
    file.points = json["points"].toString().toULongLong();
    file.min = NumbersFromJson<3>(json["min"]);
    file.max = NumbersFromJson<3>(json["max"]);
    file.version = json["version"].toInt();
    file.pointFormat = json["pointFormat"].toInt();
    file.readOnly = json["readOnly"].toBool(true);
    file.footprintOnly = json["footprintOnly"].toBool();
    file.thinning = json["thinning"].toInt();
    file.opened = PathFromJson(json["opened"]);
    return file;
}

QJsonObject RasterToJson(const LayerFile& file) {
    const RasterInfo& raster = file.raster;
    return {{"path", PathToJson(file.path)},
            {"width", raster.width},
            {"height", raster.height},
            {"bands", raster.bands},
            {"driver", ToQString(raster.driver)},
            {"extent", ToJson(raster.extent)},
            {"transform", ToJson(raster.transform)}};
}

LayerFile RasterFromJson(const QJsonObject& json) {
    LayerFile file;
    file.path = PathFromJson(json["path"]);
    file.raster = {json["width"].toInt(),
                   json["height"].toInt(),
                   json["bands"].toInt(),
                   ToWide(json["driver"].toString()),
                   OptionalFromJson<4>(json["extent"]),
                   OptionalFromJson<6>(json["transform"])};
    return file;
}

QJsonObject FeatureToJson(const LayerFile& file) {
    return {{"path", PathToJson(file.path)},
            {"shapeType", file.feature.shapeType},
            {"count", QString::number(file.feature.count)},
            {"extent", ToJson(file.feature.extent)}};
}

LayerFile FeatureFromJson(const QJsonObject& json) {
    LayerFile file;
    file.path = PathFromJson(json["path"]);
    file.feature = {json["shapeType"].toInt(), json["count"].toString().toULongLong(),
                    OptionalFromJson<4>(json["extent"])};
    return file;
}

QJsonObject PhotoToJson(const LayerFile& file) {
    const PhotoInfo& photo = file.photo;
    return {{"path", PathToJson(file.path)},
            {"position", ToJson(photo.position)},
            {"heading", photo.heading ? QJsonValue(*photo.heading) : QJsonValue()},
            {"timeUtc", ToQString(photo.timeUtc)}};
}

LayerFile PhotoFromJson(const QJsonObject& json) {
    LayerFile file;
    file.path = PathFromJson(json["path"]);
    const QJsonValue heading = json["heading"];
    file.photo = {OptionalFromJson<3>(json["position"]),
                  heading.isDouble() ? std::optional(heading.toDouble()) : std::nullopt,
                  ToWide(json["timeUtc"].toString())};
    return file;
}

QJsonObject CloudToJson(const LayerFile& file) {
    return {{"url", ToQString(file.path)},
            {"presigned", file.cloud.isPresigned},
            {"id", ToQString(file.cloud.id)},
            {"project", ToQString(file.cloud.project)}};
}

LayerFile CloudFromJson(const QJsonObject& json) {
    LayerFile file;
    file.path = ToWide(json["url"].toString());
    file.cloud = {json["presigned"].toBool(), ToWide(json["id"].toString()),
                  ToWide(json["project"].toString())};
    return file;
}

const KindInFile& InFile(LayerKind kind) {
    return *std::ranges::find(kKinds, kind, &KindInFile::kind);
}

/// LAS for a name that is none.
LayerKind KindFromName(const std::string& name) {
    const auto* const found =
        std::ranges::find_if(kKinds, [&name](const KindInFile& kind) { return name == kind.name; });
    return found == std::end(kKinds) ? LayerKind::Las : found->kind;
}

QJsonObject FileToJson(LayerKind kind, const LayerFile& file) {
    switch (kind) {
        case LayerKind::Las:
            return LasToJson(file);
        case LayerKind::Raster:
            return RasterToJson(file);
        case LayerKind::Photo:
            return PhotoToJson(file);
        case LayerKind::Cloud:
            return CloudToJson(file);
        default:
            return FeatureToJson(file);
    }
}

LayerFile FileFromJson(LayerKind kind, const QJsonObject& json) {
    switch (kind) {
        case LayerKind::Las:
            return LasFromJson(json);
        case LayerKind::Raster:
            return RasterFromJson(json);
        case LayerKind::Photo:
            return PhotoFromJson(json);
        case LayerKind::Cloud:
            return CloudFromJson(json);
        default:
            return FeatureFromJson(json);
    }
}

QJsonObject ToJson(const Layer& layer) {
    QJsonArray files;
    for (const LayerFile& file : layer.files) {
        files.append(FileToJson(layer.kind, file));
    }
    return {{"name", ToQString(layer.name)},
            {"kind", InFile(layer.kind).name},
            {"wkt", QString::fromStdString(layer.wkt)},
            {"files", files}};
}

Layer LayerFromJson(const QJsonObject& json) {
    Layer layer;
    layer.name = ToWide(json["name"].toString());
    layer.kind = KindFromName(json["kind"].toString().toStdString());
    layer.wkt = json["wkt"].toString().toStdString();
    const QJsonArray files = json["files"].toArray();
    for (const auto& file : files) {
        layer.files.push_back(FileFromJson(layer.kind, file.toObject()));
    }
    return layer;
}

/// True if a layer's URL says more than may be shown.
bool HoldsSignedUrl(const Project& project) {
    const std::vector<std::wstring> urls = project.PathsOf(LayerKind::Cloud);
    return std::ranges::any_of(urls, [](const std::wstring& url) { return ShownUrl(url) != url; });
}

LidarAccess AccessFromName(const QString& name) {
    for (int i = 0; i < 3; ++i) {
        if (name == QLatin1String(kAccessNames[i])) {
            return static_cast<LidarAccess>(i);
        }
    }
    return LidarAccess::ReadOnly;
}

}  // namespace

std::wstring WriteWholeFile(const QString& path, const QByteArray& bytes, bool isSecret) {
    TemporaryFile temporary(ToWide(path));
    QFile file(ToQString(temporary.Path()));
    if (isSecret) {
        // A file system without permissions keeps no secrets; that is no reason to lose the project.
        (void)file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    }
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush()) {
        return ToWide(file.errorString());
    }
    file.close();
    const SystemError error = temporary.Commit();
    return error == 0 ? std::wstring() : SystemErrorText(error);
}

bool IsProjectFolder(const QString& folder) {
    return QFile::exists(FilePath(folder));
}

std::optional<Project> LoadProject(const QString& folder, QString& problem) {
    QFile file(FilePath(folder));
    if (!file.open(QIODevice::ReadOnly)) {
        problem = HostText(text::kProjectReadFailed, {ToWide(file.fileName()), ToWide(file.errorString())});
        return std::nullopt;
    }
    QJsonParseError error;
    const QJsonObject json = QJsonDocument::fromJson(file.readAll(), &error).object();
    if (error.error != QJsonParseError::NoError || json["format"].toString() != "orvex-project") {
        problem = HostText(text::kProjectDamaged, {ToWide(file.fileName())});
        return std::nullopt;
    }
    if (json["version"].toInt() > kFormatVersion) {
        problem = HostText(text::kProjectTooNew, {ToWide(file.fileName())});
        return std::nullopt;
    }
    Project project;
    project.lidarAccess = AccessFromName(json["lidarAccess"].toString());
    const QJsonArray layers = json["layers"].toArray();
    for (const auto& layer : layers) {
        project.layers.push_back(LayerFromJson(layer.toObject()));
    }
    return project;
}

bool SaveProject(const QString& folder, const Project& project, QString& problem) {
    QJsonArray layers;
    int version = 1;
    for (const Layer& layer : project.layers) {
        layers.append(ToJson(layer));
        version = std::max(version, InFile(layer.kind).version);
    }
    const QJsonObject json{{"format", "orvex-project"},
                           {"version", version},
                           {"lidarAccess", kAccessNames[static_cast<int>(project.lidarAccess)]},
                           {"layers", layers}};
    QDir().mkpath(folder);
    const std::wstring reason =
        WriteWholeFile(FilePath(folder), QJsonDocument(json).toJson(), HoldsSignedUrl(project));
    if (!reason.empty()) {
        problem = HostText(text::kProjectSaveFailed, {ToWide(FilePath(folder)), reason});
    }
    return reason.empty();
}

}  // namespace orvex
