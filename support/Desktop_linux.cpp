#include <QDesktopServices>
#include <QFileDialog>
#include <QGuiApplication>
#include <QUrl>

#include "support/DesktopQt.h"
#include "support/FilePickers.h"
#include "support/OpenFileText.h"
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
    const ParentGuard guard(dialog);
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

class FilePickersQt final : public FilePickers {
  public:
    PickedFiles PickFiles(const OpenFilesRequest& request) override {
        return GuardedPick([&] { return Pick(request); });
    }
    std::optional<std::wstring> PickFolder(const std::wstring& title,
                                           const std::wstring& initialFolder) override {
        const QString folder =
            QFileDialog::getExistingDirectory(ActiveQtWindow(), ToQString(title), ToQString(initialFolder));
        return folder.isEmpty() ? std::nullopt : std::optional(ToWidePath(folder));
    }
    std::optional<std::wstring> PickSaveFile(const SaveFileRequest& request) override {
        return PickSaveFileQt(request);
    }
    bool ShowInFolder(const std::wstring& path) override {
        return QDesktopServices::openUrl(QUrl::fromLocalFile(ToQString(FolderOf(path))));
    }
};

}  // namespace

std::unique_ptr<FilePickers> MakeFilePickers() {
    return std::make_unique<FilePickersQt>();
}

std::unique_ptr<HelpViewer> MakeHelpViewer(const std::filesystem::path& folder) {
    return std::make_unique<HelpViewerQt>(folder);
}

bool IsControlKeyHeld() {
    return QGuiApplication::queryKeyboardModifiers().testFlag(Qt::ControlModifier);
}

bool IsShiftKeyHeld() {
    return QGuiApplication::queryKeyboardModifiers().testFlag(Qt::ShiftModifier);
}

}  // namespace orvex
