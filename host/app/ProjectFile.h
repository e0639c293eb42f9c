#pragma once
#include <QString>
#include <optional>

#include "host/app/Project.h"

namespace orvex {

/// Name of the file that makes a folder a project.
inline constexpr const char* kProjectFileName = "project.orvex.json";

/// What a project folder holds. None when there is no project in it or the file cannot be read; `problem`
/// then says why, in the user's words.
std::optional<Project> LoadProject(const QString& folder, QString& problem);

/// Writes the project to a temporary name beside its file and renames it when complete: a failure leaves the
/// old file. With signed URLs in it the file is for its user only. Makes the folder when it is missing. False
/// with the reason in `problem`.
bool SaveProject(const QString& folder, const Project& project, QString& problem);

/// Writes a file under a temporary name and renames it; what a killed process has left of that is removed by
/// the next call. `isSecret`: readable by its user only, where the file system knows users. Returns the
/// reason of a failure, which leaves the old file; else an empty text.
std::wstring WriteWholeFile(const QString& path, const QByteArray& bytes, bool isSecret = false);

/// True when the folder holds a project.
bool IsProjectFolder(const QString& folder);

}  // namespace orvex
