// What the host's window does with layers and files: selecting, changing and undoing.
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QItemSelectionModel>
#include <QMenu>
#include <QStatusBar>
#include <QTreeView>
#include <QUndoCommand>
#include <QUndoStack>
#include <algorithm>
#include <functional>
#include <iterator>
#include <utility>

#include "host/app/HostText.h"
#include "host/app/HostWindow.h"
#include "host/app/LayerTreeModel.h"
#include "host/app/MapView.h"
#include "host/app/RecordCloud.h"
#include "support/FilePickers.h"

namespace orvex {

namespace {

/// A change of the project: holds the state that is not the current one.
class ProjectChange final : public QUndoCommand {
  public:
    /// `shown` is called after each exchange of the states.
    ProjectChange(Project& project, Project changed, const QString& name, std::function<void()> shown)
        : QUndoCommand(name), project_(project), other_(std::move(changed)), shown_(std::move(shown)) {}

    void undo() override { Exchange(); }
    void redo() override { Exchange(); }

  private:
    void Exchange() {
        std::swap(project_, other_);
        shown_();
    }

    Project& project_;
    Project other_;
    std::function<void()> shown_;
};

}  // namespace

void HostWindow::Change(Project changed, StringId name) {
    undo_->push(new ProjectChange(project_, std::move(changed), HostText(name), [this] {
        statusBar()->clearMessage();  // which would tell of the change before
        ProjectChanged();
        SaveNow();
    }));
}

void HostWindow::RemoveSelected() {
    const FilePlaces files = SelectedFiles();
    if (files.empty()) {
        return;
    }
    Project changed = project_;
    changed.Remove(files);
    Change(std::move(changed), text::kChangeRemove);
    statusBar()->showMessage(HostText(text::kStatusRemoved, {files.size()}), 8000);
}

/// Files of the selected rows; a layer stands for all of its files.
FilePlaces HostWindow::SelectedFiles() const {
    FilePlaces files;
    for (const QModelIndex& index : tree_->selectionModel()->selectedRows()) {
        const std::size_t layer = LayerTreeModel::LayerOf(index);
        if (!LayerTreeModel::IsLayer(index)) {
            files.emplace(layer, LayerTreeModel::FileOf(index));
            continue;
        }
        for (std::size_t file = 0; file < project_.layers[layer].files.size(); ++file) {
            files.emplace(layer, file);
        }
    }
    return files;
}

/// The map changes to the coordinate system of a selected file, unless one of them has that of now.
void HostWindow::SelectionChanged() {
    const FilePlaces files = SelectedFiles();
    std::set<int> selected;
    for (const auto& [layer, file] : files) {
        if (project_.layers[layer].kind == LayerKind::Cloud) {
            continue;
        }
        selected.insert(CrsIndexOf(project_.layers[layer].wkt));
    }
    if (!selected.empty() && !selected.contains(crsChoice_->currentIndex())) {
        crsChoice_->setCurrentIndex(*selected.begin());
    }
    map_->SetSelected(files);
    const bool isOnDisk = std::ranges::any_of(
        files, [this](const auto& place) { return project_.layers[place.first].kind != LayerKind::Cloud; });
    for (QAction* action : fileActions_) {
        action->setEnabled(action->objectName() == "showInFolder" ? isOnDisk : !files.empty());
    }
}

/// Selects files in the tree and on the map.
void HostWindow::SelectFiles(const FilePlaces& files) {
    QItemSelection rows;
    for (auto first = files.begin(); first != files.end();) {
        // One range for files that follow each other: thousands of ranges take seconds.
        auto last = first;
        auto next = std::next(first);
        while (next != files.end() && *next == std::pair(last->first, last->second + 1)) {
            last = next++;
        }
        rows.select(layers_->IndexOf(first->first, first->second),
                    layers_->IndexOf(last->first, last->second));
        first = next;
    }
    tree_->selectionModel()->select(rows, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    if (!files.empty()) {
        const auto& [layer, file] = *files.begin();
        tree_->selectionModel()->setCurrentIndex(layers_->IndexOf(layer, file),
                                                 QItemSelectionModel::NoUpdate);
        tree_->scrollTo(layers_->index(static_cast<int>(layer), 0), QTreeView::PositionAtTop);
    }
}

void HostWindow::SelectFile(std::size_t layer, std::size_t file) {
    const QModelIndex index = layers_->IndexOf(layer, file);
    tree_->setCurrentIndex(index);
    tree_->scrollTo(index);
}

void HostWindow::ShowFileMenu(const QPoint& place) {
    if (SelectedFiles().empty()) {
        return;
    }
    QMenu menu;
    menu.setObjectName("fileMenu");
    menu.addActions(fileActions_);
    menu.exec(place);
}

void HostWindow::CopyPaths() {
    QStringList paths;
    for (const auto& [layer, file] : SelectedFiles()) {
        const Layer& from = project_.layers[layer];
        paths.append(ToQString(ShownPath(from.kind, from.files[file].path)));
    }
    QApplication::clipboard()->setText(paths.join('\n'));
}

void HostWindow::ShowInFolder() {
    for (const auto& [layer, file] : SelectedFiles()) {
        if (project_.layers[layer].kind == LayerKind::Cloud) {
            continue;
        }
        const std::wstring& path = project_.layers[layer].files[file].path;
        if (!MakeFilePickers()->ShowInFolder(path)) {
            statusBar()->showMessage(HostText(text::kListFolderNotShown, {FolderOf(path)}), 8000);
        }
        return;
    }
}

}  // namespace orvex
