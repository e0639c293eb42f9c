#include "host/app/ProjectFile.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <cmath>
#include <limits>

#include "host/app/HostText.h"

namespace orvex {

namespace {

constexpr int kFormatVersion = 1;
constexpr const char* kAccessNames[] = {"readOnly", "readWrite", "notAtAll"};

QString FilePath(const QString& folder) {
    return QDir(folder).filePath(QString::fromLatin1(kProjectFileName));
}

/// Extents that are no numbers are kept as null and read back as NaN.
QJsonArray ToJson(const std::array<double, 3>& values) {
    QJsonArray array;
    for (const double value : values) {
        array.append(std::isfinite(value) ? QJsonValue(value) : QJsonValue());
    }
    return array;
}

std::array<double, 3> TripleFromJson(const QJsonValue& value) {
    std::array<double, 3> values{};
    const QJsonArray array = value.toArray();
    for (int i = 0; i < 3; ++i) {
        values[static_cast<std::size_t>(i)] = array.at(i).toDouble(std::numeric_limits<double>::quiet_NaN());
    }
    return values;
}

QJsonObject ToJson(const LayerFile& file) {
    return {
        // Percent-encoded bytes: names that are no text survive.
        {"path", QString::fromLatin1(PathBytes(file.path).toPercentEncoding(" /\\:"))},
        // A JSON number holds 53 bits exactly; counts can have 64.
        {"points", QString::number(file.points)},
        {"min", ToJson(file.min)},
        {"max", ToJson(file.max)},
        {"version", file.version},
        {"pointFormat", file.pointFormat},
        {"readOnly", file.readOnly},
        {"footprintOnly", file.footprintOnly},
    };
}

LayerFile FileFromJson(const QJsonObject& json) {
    LayerFile file;
    file.path = PathFromBytes(QByteArray::fromPercentEncoding(json["path"].toString().toUtf8()));
    file.points = json["points"].toString().toULongLong();
    file.min = TripleFromJson(json["min"]);
    file.max = TripleFromJson(json["max"]);
    file.version = json["version"].toInt();
    file.pointFormat = json["pointFormat"].toInt();
    file.readOnly = json["readOnly"].toBool(true);
    file.footprintOnly = json["footprintOnly"].toBool();
    return file;
}

QJsonObject ToJson(const Layer& layer) {
    QJsonArray files;
    for (const LayerFile& file : layer.files) {
        files.append(ToJson(file));
    }
    return {{"name", ToQString(layer.name)},
            {"kind", "las"},
            {"wkt", QString::fromStdString(layer.wkt)},
            {"files", files}};
}

Layer LayerFromJson(const QJsonObject& json) {
    Layer layer;
    layer.name = ToWide(json["name"].toString());
    layer.wkt = json["wkt"].toString().toStdString();
    const QJsonArray files = json["files"].toArray();
    for (const auto& file : files) {
        layer.files.push_back(FileFromJson(file.toObject()));
    }
    return layer;
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

bool IsProjectFolder(const QString& folder) {
    return QFile::exists(FilePath(folder));
}

std::optional<Project> LoadProject(const QString& folder, QString& problem) {
    QFile file(FilePath(folder));
    if (!file.open(QIODevice::ReadOnly)) {
        problem = HostText(40821_lsid, {ToWide(file.fileName()), ToWide(file.errorString())});
        return std::nullopt;
    }
    QJsonParseError error;
    const QJsonObject json = QJsonDocument::fromJson(file.readAll(), &error).object();
    if (error.error != QJsonParseError::NoError || json["format"].toString() != "orvex-project") {
        problem = HostText(40822_lsid, {ToWide(file.fileName())});
        return std::nullopt;
    }
    if (json["version"].toInt() > kFormatVersion) {
        problem = HostText(40823_lsid, {ToWide(file.fileName())});
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
    for (const Layer& layer : project.layers) {
        layers.append(ToJson(layer));
    }
    const QJsonObject json{{"format", "orvex-project"},
                           {"version", kFormatVersion},
                           {"lidarAccess", kAccessNames[static_cast<int>(project.lidarAccess)]},
                           {"layers", layers}};
    QDir().mkpath(folder);
    QSaveFile file(FilePath(folder));
    const QByteArray bytes = QJsonDocument(json).toJson();
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        problem = HostText(40824_lsid, {ToWide(file.fileName()), ToWide(file.errorString())});
        return false;
    }
    return true;
}

}  // namespace orvex
