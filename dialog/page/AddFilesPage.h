#pragma once
#include <QIcon>
#include <QWidget>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "dialog/DialogServices.h"
#include "dialog/page/AddingReview.h"
#include "dialog/page/FixedText.h"
#include "orvexcommon/AddFilesParams.h"
#include "support/ImageIndex.h"

namespace orvex {

class AddFilesPage;
class DialogProgress;

/// Takes the files that a page has found and does not list itself.
class FileOffers {
  public:
    virtual ~FileOffers() = default;
    /// Those of `files` that a page of the dialog lists; the others stay in `files`.
    virtual std::vector<std::wstring> TakeListed(std::vector<std::wstring>& files) const = 0;
    /// Asks the user whether they are to be added to their pages, and adds them. `finder` is shown
    /// afterwards.
    virtual void Offer(AddFilesPage& finder, const std::vector<std::wstring>& files) = 0;
};

/// What the dialog gives each page when it makes it.
struct PageContext {
    DialogServices& services;
    AddFilesParams* params;            ///< never null; only read and written by a page whose switch is on
    DialogProgress& progress;          ///< the shared bar
    const std::vector<QIcon>& images;  ///< the dialog's image list
    FileOffers* offers = nullptr;      ///< null: files of other pages are left out
};

/// One page of the Add Files dialog.
class AddFilesPage : public QWidget {
    Q_OBJECT

  public:
    using QWidget::QWidget;

    /// Checks the input and writes the page's members of the record, which are as the host gave them. False
    /// keeps the dialog open; the page has said why. May be called again.
    virtual bool ValidateAndStore() = 0;
    /// The dialog ends with OK: the detail objects in the record belong to the host from here on.
    virtual void HandOver() noexcept {}
    /// Frees what the page holds behind its rows and empties its grid. May be called more than once.
    virtual void Release() = 0;
    /// Adds files named from outside (by the host, or dropped on the dialog) as if they were picked. Folders
    /// among them are searched with their subfolders.
    virtual void AddPaths(const std::vector<std::wstring>& paths) = 0;
    /// True if a file or folder of this path could be one of this page's.
    virtual bool Accepts(const std::wstring& path) const = 0;
    /// True if the user has collected anything that closing the dialog would discard.
    virtual bool HasRows() const { return false; }
    /// What is odd about the files, before ValidateAndStore.
    virtual AddingReview Review() const { return {}; }
    /// Selects rows by record, as a review names them, and scrolls to the first.
    virtual void SelectRecords(std::span<const std::size_t> /*records*/) {}
    /// True if files on the page will need companion files built (LAS page).
    virtual bool NeedsCompanionFiles() const { return false; }
};

/// Kinds of pages, in the order of OK and of the tabs.
enum class PageKind { Las = 0, Raster = 1, Feature = 2, Dem = 3, Photo = 4, CloudLas = 5 };

/// One row of the table that the dialog is built from.
struct PageDescription {
    PageKind kind;
    StringId caption;
    FixedText insertFailure;                     ///< said when the tab cannot be added
    FixedText createFailure;                     ///< said when the page cannot be made
    int templateId = 0;                          ///< the page's widget is named "page<templateId>"
    ImageIndex image;                            ///< of its tab while selected
    bool AddFilesParams::*pageSwitch = nullptr;  ///< null: the page always exists
    std::function<std::unique_ptr<AddFilesPage>(const PageContext&)> create;
};

}  // namespace orvex
