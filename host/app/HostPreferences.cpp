#include "host/app/HostPreferences.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>
#include <utility>

#include "host/app/ProjectFile.h"

namespace orvex {

namespace {

constexpr int kMostRecent = 10;

QByteArray BytesFrom(const QJsonValue& value) {
    return QByteArray::fromBase64(value.toString().toLatin1());
}

}  // namespace

HostPreferences::HostPreferences(QString path) : path_(std::move(path)) {
    QFile file(path_);
    if (path_.isEmpty() || !file.open(QIODevice::ReadOnly)) {
        return;
    }
    const QJsonObject json = QJsonDocument::fromJson(file.readAll()).object();
    const QJsonArray recent = json["recentProjects"].toArray();
    for (const auto& folder : recent) {
        if (recent_.size() < kMostRecent && !folder.toString().isEmpty()) {
            recent_.append(folder.toString());
        }
    }
    dataFolder = json["dataFolder"].toString();
    windowGeometry = BytesFrom(json["windowGeometry"]);
    windowState = BytesFrom(json["windowState"]);
    dark = json["dark"].toBool();
    if (json["cloudService"].isString()) {
        cloudService = json["cloudService"].toString();
    }
}

QString HostPreferences::DefaultPath() {
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) + "/host.json";
}

void HostPreferences::AddRecentProject(const QString& folder) {
    recent_.removeAll(folder);
    recent_.prepend(folder);
    while (recent_.size() > kMostRecent) {
        recent_.removeLast();
    }
}

void HostPreferences::RemoveRecentProject(const QString& folder) {
    recent_.removeAll(folder);
}

void HostPreferences::Save() const {
    if (path_.isEmpty()) {
        return;
    }
    const QJsonObject json{{"recentProjects", QJsonArray::fromStringList(recent_)},
                           {"dataFolder", dataFolder},
                           {"windowGeometry", QString::fromLatin1(windowGeometry.toBase64())},
                           {"windowState", QString::fromLatin1(windowState.toBase64())},
                           {"dark", dark},
                           {"cloudService", cloudService ? QJsonValue(*cloudService) : QJsonValue()}};
    QDir().mkpath(QFileInfo(path_).path());
    (void)WriteWholeFile(path_, QJsonDocument(json).toJson());
}

}  // namespace orvex
