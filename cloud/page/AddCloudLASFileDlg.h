#pragma once
#include <QDialog>
#include <string>

#include "dialog/DialogServices.h"
#include "support/DesktopQt.h"

class QLabel;
class QLineEdit;

namespace orvex {

/// Asks for the pre-signed URL of one layer. Controls are named "c" and their ids: 358 OK, 359 Cancel,
/// 360 Help; the field is "url", what is said of its text "urlNotes".
class AddCloudLASFileDlg : public QDialog {
    Q_OBJECT

  public:
    AddCloudLASFileDlg(DialogServices& services, QWidget* parent);

    /// Text of the field before the dialog is shown. Without one, Shift held while it opens enters an
    /// example.
    void SetUrl(const std::wstring& url);
    /// The URL as typed, trimmed; empty until OK has accepted it.
    std::wstring Url() const { return url_; }

  public slots:
    void accept() override;
    void reject() override;

  private:
    QWidget* BuildGroup();
    QLayout* BuildButtons();
    void OnOk();
    void OnHelp();
    void ShowNotes();

    DialogServices services_;
    QLineEdit* field_;
    QLabel* notes_;
    std::wstring url_;
    const ParentGuard guard_{*this};
};

}  // namespace orvex
