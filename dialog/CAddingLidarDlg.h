#pragma once
#include <QDialog>

#include "dialog/AddingLidar.h"
#include "support/DesktopQt.h"

class QButtonGroup;
class QCheckBox;

namespace orvex {

/// Asks whether LiDAR data is added read-only, read-write or not at all. Child objects: "explanation",
/// "readOnly", "readWrite", "notAtAll", "doNotAskAgain", "ok", "cancel".
class CAddingLidarDlg : public QDialog {
    Q_OBJECT

  public:
    explicit CAddingLidarDlg(bool readWriteAllowed, QWidget* parent = nullptr);

    /// The answer confirmed with OK; otherwise the initial choice.
    LidarAnswer Answer() const { return answer_; }

  public slots:
    void accept() override;

  private:
    void BuildChoices(bool readWriteAllowed);

    const ParentGuard guard_{*this};
    QButtonGroup* choices_;
    QCheckBox* doNotAskAgain_;
    LidarAnswer answer_;
};

}  // namespace orvex
