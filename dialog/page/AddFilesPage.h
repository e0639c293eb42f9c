#pragma once
#include <QIcon>
#include <QWidget>
#include <vector>

#include "dialog/DialogServices.h"

class AddFilesParams;

namespace orvex {

class DialogProgress;

/// What the dialog gives each page when it makes it.
struct PageContext {
    DialogServices& services;
    AddFilesParams* params;            ///< never null; only read and written by a page whose switch is on
    DialogProgress& progress;          ///< the shared bar
    const std::vector<QIcon>& images;  ///< the dialog's image list
};

/// One page of the Add Files dialog.
class AddFilesPage : public QWidget {
    Q_OBJECT

  public:
    using QWidget::QWidget;

    /// Checks the input and writes the page's members of the record. False keeps the dialog open; the page
    /// has said why. May be called again: the dialog stays open when a later page refuses.
    virtual bool ValidateAndStore() = 0;
    /// Frees what the page holds behind its rows, empties its grid, and takes back what ValidateAndStore
    /// wrote. May be called more than once.
    virtual void Release() = 0;
    /// Files named from outside (the host's command line, a drop on the dialog) are added as if picked.
    virtual void AddPaths(const std::vector<std::wstring>& paths) = 0;
    /// Whether a file or folder of this path could be one of this page's.
    virtual bool Accepts(const std::wstring& path) const = 0;
    /// True when the files on the page will need companion files built (LAS page).
    virtual bool NeedsCompanionFiles() const { return false; }
};

}  // namespace orvex
