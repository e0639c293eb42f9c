#pragma once
#include <QDialog>
#include <QIcon>
#include <QPointer>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "dialog/DialogServices.h"
#include "dialog/ReviewPrompt.h"
#include "dialog/page/AddFilesPage.h"
#include "support/DesktopQt.h"

class QHBoxLayout;
class QLabel;
class QProgressBar;
class QPushButton;
class QToolButton;

namespace orvex {

class CTabCtrlEx;
class DialogProgress;
class FileDistribution;
class RunInputFilter;

/// The tabbed dialog for adding data to the project. Its pages come from a table; it knows nothing of any one
/// of them. The record is as the host gave it unless the dialog has ended with OK: pages write their results
/// into it at each OK, and closing in any other way restores it. Child objects carry the names "tabs",
/// "progress", "stop", "ok", "cancel" and "page<template id>".
class AddFilesDlg : public QDialog {
    Q_OBJECT

  public:
    /// Makes the pages that `params` switches on. `params` and `services` outlive the dialog.
    AddFilesDlg(AddFilesParams& params, DialogServices& services, std::span<const PageDescription> pages,
                QWidget* parent = nullptr);
    ~AddFilesDlg() override;

    /// Prepares the dialog for its first show. Returns 0, or the result code of the host's application object
    /// if that cannot be created or fails; the dialog must not be shown then.
    std::int32_t Initialise();

    /// Initialises the dialog and runs it modally. True if it was closed with OK and pages have written
    /// anything to add; if it was closed in any other way, every page has released its objects. If it cannot
    /// be opened, throws LDataError after the user was told.
    bool Run();

    /// Makes every page release the objects of its rows, and restores the record as the host gave it.
    void ReleasePages();

    CTabCtrlEx& Tabs() { return *tabs_; }

  public slots:
    /// OK: each page validates and stores in turn; the first that refuses keeps the dialog open.
    void accept() override;
    /// The Cancel button, and a host that goes. Stops a running operation instead, and is ignored for a
    /// moment after one was stopped. Escape and the window's close button ask first, see closeEvent.
    void reject() override;
    /// Stores the current tab and the window's placement; every way of closing ends here.
    void done(int result) override;

  protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    /// Asks before a list is discarded.
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

  private:
    void BuildWindow();
    QHBoxLayout* BuildBottomRow();
    void OnRunningChanged(bool running);
    void RestoreFocus();
    bool StorePages();
    void RestoreRecord() noexcept;
    void AddInitialPaths();
    void AddDropped(AddFilesPage& page, std::vector<std::wstring> paths);
    bool MayDiscard();
    bool MayAdd();
    void SelectOddRows(const std::vector<PageReview>& reviews);
    void ArrangeTabOrder();
    void AssignAllMnemonics();
    std::int32_t AskHostApplication();

    const ParentGuard guard_{*this};
    AddFilesParams& params_;
    const AddFilesParams before_;  ///< the record as the host gave it
    std::wstring hostFault_;       ///< why AskHostApplication has failed, for the host's developers
    DialogServices& services_;
    std::vector<QIcon> images_;
    CTabCtrlEx* tabs_;
    QProgressBar* bar_;
    QLabel* outcome_;
    QToolButton* stop_;
    QPushButton* ok_;
    QPushButton* cancel_;
    DialogProgress* progress_;
    RunInputFilter* inputFilter_;
    std::unique_ptr<FileDistribution> files_;
    QPointer<QWidget> focusBeforeRun_;
    bool hasAddedInitialPaths_ = false;
    bool hasResults_ = false;  ///< pages have written some at the last OK
};

}  // namespace orvex
