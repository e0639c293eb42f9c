#pragma once
#include <QKeySequence>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "dialog/DialogProgress.h"
#include "dialog/page/FileAdder.h"
#include "dialog/page/FolderScan.h"
#include "dialog/page/ListHistory.h"
#include "dialog/page/ListModel.h"
#include "dialog/page/ListPage.h"
#include "dialog/page/ProjectFiles.h"
#include "support/FilePickers.h"

class QAction;

namespace orvex {

/// What differs between pages that list files.
struct FileListPageDescription : ListPageDescription {
    Button addFiles = {0, text::kAddFiles, {}};
    Button addFolder = {0, text::kAddFolder, {}};
    Button refresh = {0, {}, text::kRefreshTooltip};

    StringId pickTitle = {};             ///< 0: the system's own
    bool startsInInitialFolder = false;  ///< the first picker opens where the record says
    const wchar_t* folderName = L"";     ///< under which the folder of the last picker is stored
    std::vector<FileFilter> filters;
    FixedText tooManyFiles = text::kLasTooManySelected;  ///< the names do not fit the picker's buffer
    FixedText noMemory = text::kPickerOutOfMemory;       ///< for that buffer
    FixedText pickFailed = {};                           ///< for another reason; empty: nothing is said
    StringId pickCaption = text::kPickerCaption;

    StringId folderTitle = text::kFolderTitle;
    FixedText folderQuestion = {};  ///< whether subfolders are to be searched too
    StringId folderCaption = text::kAddFolderCaption;
    StringId scanProgress = text::kFolderSearchProgress;
    ScanTexts scanTexts = {};
    /// Of files that are named (dropped, or given by the host), upper-cased with their dot.
    std::vector<std::wstring> extensions;
    /// Of files that a folder is searched for; empty: the same.
    std::vector<std::wstring> folderExtensions;

    bool passesUnreadable = true;  ///< the host gets files that cannot be loaded too

    AddingDescription adding;
    /// The files that the project has already, of the kind that the page adds; null: the page marks none.
    std::vector<std::wstring> AddFilesParams::*existingFiles = nullptr;
    StringId refreshProgress = text::kRefreshProgress;  ///< as AddingDescription::progressText
};

/// A page that lists files: picking, searching folders, dropping, reading them with progress, undoing and
/// redoing what changed the list.
class FileListPage : public ListPage {
    Q_OBJECT

  public:
    void AddPaths(const std::vector<std::wstring>& paths) override;
    bool Accepts(const std::wstring& path) const override;
    void Release() override;
    AddingReview Review() const override;

  protected:
    FileListPage(const PageContext& context, const FileListPageDescription& description, QWidget* parent);

    std::vector<PageButton> Buttons() override;
    const FileListPageDescription& Description() const { return description_; }

    /// A request to add files to those listed.
    virtual AddingRequest RequestFor(std::vector<std::wstring> paths) const = 0;
    /// Inspects files and appends their rows; `appended` is called after each batch. Within a run.
    virtual AddingSummary AddRows(AddingRequest request, const std::function<void()>& appended) = 0;
    /// Removes the rows of files that are not read yet, after a run that failed.
    virtual void RemoveAwaited() = 0;
    struct Rereading {
        AddingSummary summary;
        bool isNew = false;  ///< a row has something new to say
    };
    /// Inspects the files of all rows again, the last one first, which Escape may stop: rows of files that
    /// are not read stay as they are. Within a run.
    virtual Rereading RereadRows() = 0;
    virtual std::size_t RowCount() const = 0;
    virtual const ListRows& Rows() const = 0;
    virtual const std::wstring& PathOf(std::size_t record) const = 0;
    /// Record `r` becomes record `newIndexOf[r]`.
    virtual void MoveRows(const std::vector<std::size_t>& newIndexOf) = 0;
    virtual void RemoveRows(std::vector<std::size_t> records) = 0;
    /// What rows that are shown already still wait for: searches that would delay them. Called on a worker
    /// thread, one after the other, when files have been read; Escape stops after the current one. Each must
    /// own what it touches and be safe to call beside the page.
    virtual std::vector<std::function<void()>> LateWork() const { return {}; }
    /// What becomes of files with errors, as a sentence; empty: they are added like others.
    virtual std::wstring DamagedNote() const { return {}; }

    /// Reads the files of all rows again, with progress.
    void ReadAgain();
    /// Shows how many files are awaited, with what skips them.
    void TellAwaited(std::size_t files);
    /// True once after the user has asked not to wait for them.
    bool TakeSkip() { return std::exchange(mustSkip_, false); }

    void BeforeRemoval(std::span<const std::size_t> records) override;
    void Cleared() override;

    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    void OnAddFiles();
    void OnAddFolder();
    std::wstring FirstFolder() const;
    void RememberFolder(const std::wstring& folder);
    void ShowPickFailure(const FixedText& text) const;

    void AddFound(std::vector<std::wstring> paths, bool recursive);
    ScanResult Search(ScanRequest request);
    void AddFiles(const std::vector<std::wstring>& paths);
    void ContinueReading();
    void TellOutcome(const AddingSummary& summary);
    void TellRereading(const AddingSummary& summary);
    /// Reads files and appends their rows, as a change of its own or as part of one.
    AddingSummary ReadNew(AddingRequest request);
    AddingSummary ReadFiles(AddingRequest request);
    void RecordAdded(std::size_t first);
    void FilesAdded(bool wasEmpty);
    void DoLateWork();
    void KeepUnread(const std::vector<std::wstring>& asked, const AddingSummary& summary);

    void MakeHistoryActions();
    QAction* AddHistoryAction(StringId caption, const QList<QKeySequence>& keys);
    void OnUndo();
    void OnRedo();
    void Record(ListChange::Kind kind, std::span<const std::size_t> records);
    /// Makes a change of the list, or reverses it, and tells of it.
    void Apply(const ListChange& change, bool adds, StringId outcome);
    void EnableHistory();
    void Restore(const ListChange& change);
    void TakeOut(const ListChange& change);

    const FileListPageDescription& description_;
    FileOffers* offers_;
    std::wstring outcome_;       ///< of the last adding
    std::wstring pickedFolder_;  ///< in this dialog; empty: none yet
    ListHistory history_;
    QAction* undo_ = nullptr;
    QAction* redo_ = nullptr;
    std::vector<std::wstring> unread_;  ///< that runs which were stopped have not looked at
    std::size_t readBeside_ = 0;        ///< files that those runs have read, or found listed
    bool mustSkip_ = false;
};

/// Gives up a row's detail object if it is the one in the host's record.
template <typename Details, typename Row>
void ReleaseIfIn(const Details& details, Row& row) {
    const auto found = details.find(row.path);
    if (found != details.end() && found->second == row.file.get()) {
        static_cast<void>(row.file.release());
    }
}

/// A file page with rows of one type: movable, with the `path` of its file and a one-line `summary`.
template <typename RowType>
class TypedFileListPage : public FileListPage {
  public:
    using Row = RowType;

    const ListModel<Row>& Model() const { return *model_; }

  protected:
    /// `description` and `columns` outlive the page.
    TypedFileListPage(const PageContext& context, const FileListPageDescription& description,
                      std::span<const Column<Row>> columns, FileReader<Row> reader, QWidget* parent)
        : FileListPage(context, description, parent),
          model_(new ListModel<Row>(columns, this)),
          reader_(std::move(reader)) {
        if constexpr (FileRow<Row>) {
            MarkExisting();
        }
    }

    ListModel<Row>& EditModel() { return *model_; }
    /// Rows from `first` on have been appended, or read again.
    virtual void RowsRead(std::size_t /*first*/) {}

    std::size_t RowCount() const override { return model_->Count(); }
    const ListRows& Rows() const override { return *model_; }
    const std::wstring& PathOf(std::size_t record) const override { return model_->Rows()[record].path; }
    void MoveRows(const std::vector<std::size_t>& newIndexOf) override { model_->Permute(newIndexOf); }
    void RemoveRows(std::vector<std::size_t> records) override { model_->Remove(std::move(records)); }

    AddingRequest RequestFor(std::vector<std::wstring> paths) const override {
        AddingRequest request{.paths = std::move(paths), .listed = {}, .rowsBefore = model_->Count()};
        request.drives = Services().drives;
        for (const Row& row : model_->Rows()) {
            request.listed.emplace(PathKey(row.path), row.path);
        }
        return request;
    }

    AddingSummary AddRows(AddingRequest request, const std::function<void()>& appended) override {
        const std::size_t before = model_->Count();
        typename FileReader<Row>::Rows rows = AwaitedRows();
        rows.append = [&](std::vector<Row> batch) {
            const std::size_t first = model_->Count();
            model_->Append(std::move(batch));
            appended();
            RowsRead(first);
        };
        rows.replace = [&](auto read) {
            model_->Change([&](std::vector<Row>& all) {
                for (auto& [row, record] : read) {
                    all[before + row] = std::move(record);
                }
            });
            RowsRead(before + read.front().first);
        };
        rows.remove = [&](std::vector<std::size_t> gone) {
            std::ranges::for_each(gone, [&](std::size_t& row) { row += before; });
            model_->Remove(std::move(gone));
        };
        return reader_.Add(Description().adding, std::move(request), rows, Services().prompts, Progress());
    }

    void RemoveAwaited() override {
        std::vector<std::size_t> records;
        for (std::size_t record = 0; record < model_->Count(); ++record) {
            if (model_->Rows()[record].place.isAwaited) {
                records.push_back(record);
            }
        }
        model_->Remove(std::move(records));
    }

    Rereading RereadRows() override {
        AddingRequest request;
        request.drives = Services().drives;
        for (auto row = model_->Rows().rbegin(); row != model_->Rows().rend(); ++row) {
            request.paths.push_back(row->path);
        }
        std::vector<Row> fresh;
        AddingDescription again;
        again.progressText = Description().refreshProgress;
        AddingSummary summary =
            reader_.Add(again, std::move(request), RowsIn(fresh), Services().prompts, Progress());
        return {std::move(summary), TakeFresh(std::move(fresh))};
    }

  private:
    typename FileReader<Row>::Rows AwaitedRows() {
        typename FileReader<Row>::Rows rows;
        rows.await = [](Row& row, const std::wstring& text) {
            row.summary = text;
            row.findings.clear();
            row.place.isAwaited = true;
            if constexpr (requires { row.threw; }) {
                row.threw = false;
            }
        };
        rows.tellAwaited = [this](std::size_t files) { TellAwaited(files); };
        rows.mustSkip = [this] { return TakeSkip(); };
        return rows;
    }

    typename FileReader<Row>::Rows RowsIn(std::vector<Row>& fresh) {
        typename FileReader<Row>::Rows rows = AwaitedRows();
        rows.append = [&](std::vector<Row> batch) { std::ranges::move(batch, std::back_inserter(fresh)); };
        rows.replace = [&](auto read) {
            for (auto& [row, record] : read) {
                fresh[row] = std::move(record);
            }
        };
        rows.remove = [&](const std::vector<std::size_t>& gone) { EraseAt(fresh, gone); };
        return rows;
    }

    /// Takes rows that were read again, some or all. True if one has something new to say.
    bool TakeFresh(std::vector<Row> fresh) {
        bool isNew = false;
        model_->Change([&](std::vector<Row>& rows) {
            std::unordered_map<std::wstring_view, Row*> rowOf;
            for (Row& row : fresh) {
                rowOf.emplace(row.path, &row);
            }
            for (Row& row : rows) {
                if (const auto read = rowOf.find(row.path); read != rowOf.end()) {
                    isNew = isNew || read->second->summary != row.summary;
                    Row taken = std::move(*read->second);
                    rowOf.erase(read);
                    row = std::move(taken);
                }
            }
        });
        RowsRead(0);
        return isNew;
    }

    /// The files are compared where they are read: a drive that does not answer holds up nothing else.
    void MarkExisting() {
        if (const auto member = Description().existingFiles;
            member != nullptr && !(Params().*member).empty()) {
            const auto files = std::make_shared<ProjectFiles>(Params().*member, Description().adding.buddy);
            reader_.AddStep([files](Row& row) { row.place.inProject = files->Has(row.path); });
        }
    }

    ListModel<Row>* model_;
    FileReader<Row> reader_;
};

}  // namespace orvex
