#include "support/FilePickersQt.h"

#include <QFileDialog>

#include "support/ActiveWindowQt.h"
#include "support/GuardedPick.h"
#include "support/QtText.h"
#include "support/Text.h"

namespace orvex {
namespace {

// "LAS Files (*.las)" and "*.las;*.laz" become "LAS Files (*.las *.laz)": the dialog takes its patterns from
// the last parentheses.
QString NameFilter(const FileFilter& filter) {
    QString caption = ToQString(filter.caption);
    if (const auto parenthesis = caption.lastIndexOf(QLatin1Char('(')); parenthesis >= 0) {
        caption.truncate(parenthesis);
    }
    const QString patterns = ToQString(filter.patterns).replace(QLatin1Char(';'), QLatin1Char(' '));
    return QStringLiteral("%1 (%2)").arg(caption.trimmed(), patterns);
}

PickedFiles Pick(const OpenFilesRequest& request) {
    QFileDialog dialog(ActiveQtWindow(), ToQString(request.title), ToQString(request.initialFolder));
    dialog.setFileMode(QFileDialog::ExistingFiles);
    QStringList filters;
    for (const FileFilter& filter : request.filters) {
        filters.append(NameFilter(filter));
    }
    dialog.setNameFilters(filters);
    if (dialog.exec() != QDialog::Accepted) {
        return {};
    }
    PickedFiles picked{PickOutcome::Picked, {}};
    for (const QString& path : dialog.selectedFiles()) {
        picked.paths.push_back(ToWidePath(path));
    }
    if (SelectionCharacters(picked.paths) > request.bufferCharacters) {
        return {PickOutcome::BufferTooSmall, {}};
    }
    return picked;
}

}  // namespace

std::size_t SelectionCharacters(const std::vector<std::wstring>& paths) {
    std::size_t characters = paths.empty() ? 0 : FolderOf(paths.front()).size() + 1;
    for (const std::wstring& path : paths) {
        characters += FileNameOf(path).size() + 1;
    }
    return characters;
}

PickedFiles FilePickersQt::PickFiles(const OpenFilesRequest& request) {
    return GuardedPick([&] { return Pick(request); });
}

std::optional<std::wstring> FilePickersQt::PickFolder(const std::wstring& title) {
    const QString folder = QFileDialog::getExistingDirectory(ActiveQtWindow(), ToQString(title));
    return folder.isEmpty() ? std::nullopt : std::optional(ToWidePath(folder));
}

}  // namespace orvex
